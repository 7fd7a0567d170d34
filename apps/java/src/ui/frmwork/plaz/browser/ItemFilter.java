package ui.frmwork.plaz.browser;

import java.util.List;
import java.util.Locale;
import java.util.function.Predicate;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import ui.frmwork.plaz.browser.Snapshot.Item;
import ui.frmwork.plaz.browser.Snapshot.State;

/**
 * Which items are shown.
 *
 * @param words all of which an item must mention, in any letter case
 */
record ItemFilter(Scope scope, List<String> words, boolean installed, boolean outdated) implements Predicate<Item> {
    /** @param search what a person typed */
    static ItemFilter of(Scope scope, String search, boolean installed, boolean outdated) {
        List<String> words = Stream.of(fold(search).split("\\s+")).filter(word -> !word.isEmpty()).toList();
        return new ItemFilter(scope, words, installed, outdated);
    }

    @Override
    public boolean test(Item item) {
        if (!scope.holds(item)) return false;
        if (installed && !item.isInstalled()) return false;
        if (outdated && item.state() != State.OUTDATED) return false;
        String text = words.isEmpty() ? "" : describingText(item);
        return words.stream().allMatch(text::contains);
    }

    private static String describingText(Item item) {
        return fold(Stream.concat(Stream.of(item.key().name(), item.title(), item.description(), item.company()),
                                  item.keywords().stream())
                            .collect(Collectors.joining("\n")));
    }

    /** Both ways, because some letters have one partner only one way. */
    private static String fold(String text) {
        return text.toUpperCase(Locale.ROOT).toLowerCase(Locale.ROOT);
    }
}
