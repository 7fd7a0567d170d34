package ui.frmwork.plaz.browser;

import java.util.ArrayList;
import java.util.List;
import java.util.Set;
import java.util.stream.Collectors;
import ui.frmwork.plaz.browser.Snapshot.Category;
import ui.frmwork.plaz.browser.Snapshot.Item;

/**
 * Part of the hub: all of it, a store, or a category of a store.
 *
 * @param store empty for all stores
 * @param path the categories that lead there, by name
 * @param categories those that belong to it; empty for no restriction
 */
record Scope(String store, List<String> path, Set<String> categories) {
    static final Scope ALL = new Scope("", List.of(), Set.of());

    static Scope of(String store) {
        return new Scope(store, List.of(), Set.of());
    }

    Scope below(Category category) {
        List<String> names = new ArrayList<>(path);
        names.add(category.name());
        return new Scope(store, List.copyOf(names), category.names().collect(Collectors.toUnmodifiableSet()));
    }

    /** Whether it is part of the store of that name, or more. */
    boolean isOf(String name) {
        return store.isEmpty() || store.equals(name);
    }

    boolean holds(Item item) {
        return isOf(item.key().store())
                && (categories.isEmpty() || item.categories().stream().anyMatch(categories::contains));
    }

    /** Whether both are the same place, whatever belongs to it by now. */
    boolean isPlaceOf(Scope other) {
        return store.equals(other.store) && path.equals(other.path);
    }
}
