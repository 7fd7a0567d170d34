package ui.frmwork.plaz.browser;

import java.util.ArrayList;
import java.util.Collections;
import java.util.Comparator;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import ui.frmwork.plaz.PlazCategory;
import ui.frmwork.plaz.PlazItem;
import ui.frmwork.plaz.PlazItemDependency;
import ui.frmwork.plaz.PlazStore;
import ui.frmwork.plaz.PlazSwigIntf;
import ui.frmwork.plaz.browser.Snapshot.Category;
import ui.frmwork.plaz.browser.Snapshot.Dependency;
import ui.frmwork.plaz.browser.Snapshot.Hub;
import ui.frmwork.plaz.browser.Snapshot.Item;
import ui.frmwork.plaz.browser.Snapshot.Key;
import ui.frmwork.plaz.browser.Snapshot.Revision;
import ui.frmwork.plaz.browser.Snapshot.Standing;
import ui.frmwork.plaz.browser.Snapshot.State;
import ui.frmwork.plaz.browser.Snapshot.Store;
import ui.frmwork.plaz.host.PlazHost;
import ui.frmwork.plaz.host.PlazHost.Fact;

/** Reads the hub. Part of {@link HubThread}: used there alone. */
final class SnapshotReader {
    /** By item and revision. */
    private final Map<String, List<Fact>> facts = PlazHost.facts().stream().collect(Collectors.groupingBy(Fact::item));

    private SnapshotReader() {}

    static Snapshot read() {
        SnapshotReader reader = new SnapshotReader();
        List<Store> stores = new ArrayList<>(map(PlazSwigIntf.getStores(), reader::store));
        stores.removeIf(store -> !store.isListed() && store.items().isEmpty()); // the next start has none of them
        return new Snapshot(
                List.copyOf(stores), PlazSwigIntf.getHttpProxy(), PlazSwigIntf.getQStoresPath(), hub(PlazHost.hub()));
    }

    private static Hub hub(PlazHost.Hub hub) {
        return new Hub(hub.url(), hub.chooser(), hub.metadata(), hub.ownStores());
    }

    /** The entries of one item, the latest revision first; none when the hub has no such item. */
    static List<PlazItem> entries(Key key) {
        List<PlazItem> entries = new ArrayList<>();
        PlazSwigIntf.getItems(key.store()).forEachRemaining(entry -> {
            if (entry.getName().equals(key.name())) entries.add(entry);
        });
        return latestFirst(entries);
    }

    private Store store(PlazStore store) {
        Map<String, List<PlazItem>> entries = new LinkedHashMap<>();
        for (PlazItem entry : store.getItems())
            entries.computeIfAbsent(entry.getName(), name -> new ArrayList<>()).add(entry);
        boolean isListed = isListed(store);
        List<Item> items =
                entries.values().stream().map(this::item).filter(item -> isListed || item.isInstalled()).toList();
        return new Store(store.getName(), either(store.getDisplayName(), store.getName()), store.getLocalRootDir(),
                isListed, PlazSwigIntf.isRefreshed(store), map(store.getCategories(), SnapshotReader::category), items);
    }

    /** What the hub does not list any more has lost what it is fetched by. */
    private static boolean isListed(PlazStore store) {
        return !store.getUrl().isEmpty() || !store.getMetadataFile().isEmpty();
    }

    private static Category category(PlazCategory category) {
        return new Category(category.getName(), either(category.getDisplayName(), category.getName()),
                map(category.getSubCategories(), SnapshotReader::category));
    }

    private Item item(List<PlazItem> unordered) {
        List<PlazItem> entries = latestFirst(unordered);
        PlazItem latest = entries.get(0);
        return new Item(new Key(latest.getStoreName(), latest.getName()),
                either(latest.getDisplayName(), latest.getName()), Readable.of(latest.getDescription()),
                latest.getRevision(), standing(entries), either(latest.getCompanyDisplayName(), latest.getCompany()),
                Readable.of(latest.getAuthor()), Readable.of(latest.getWebsite()), latest.getLogo(),
                map(latest.getCategories(), Function.identity()), map(latest.getItemSearchKeywords(), Readable::of),
                entries.stream().map(SnapshotReader::revision).toList(),
                map(latest.getItemDependencies(), SnapshotReader::dependency));
    }

    private Standing standing(List<PlazItem> entries) {
        List<PlazItem> installed = entries.stream().filter(PlazItem::IsInstalled).toList();
        List<Fact> known = installed.stream().flatMap(entry -> facts(entry.toString())).toList();
        State state = isAny(known, "outdated") ? State.OUTDATED : State.INSTALLED;
        return new Standing(installed.isEmpty() ? State.NONE : state,
                installed.stream().map(PlazItem::getRevision).toList(), isAny(known, "tool") && !isAny(known, "user"),
                isAny(known, "held"), isAny(facts(entries.get(0).toString()).toList(), "inactive"),
                known.stream()
                        .filter(fact -> fact.kind().equals("needed by"))
                        .map(fact -> reference(fact.other()))
                        .distinct()
                        .toList());
    }

    private static boolean isAny(List<Fact> known, String kind) {
        return known.stream().anyMatch(fact -> fact.kind().equals(kind));
    }

    private Stream<Fact> facts(String entry) {
        return facts.getOrDefault(entry, List.of()).stream();
    }

    /** @param text such as "boards::aurora@2.0" */
    private static Dependency reference(String text) {
        int store = text.indexOf("::");
        int revision = text.lastIndexOf('@');
        return new Dependency(
                new Key(text.substring(0, store), text.substring(store + 2, revision)), text.substring(revision + 1));
    }

    private static String either(String forPeople, String plain) {
        return Readable.of(forPeople.isBlank() ? plain : forPeople);
    }

    private static Revision revision(PlazItem entry) {
        return new Revision(entry.getRevision(), entry.IsInstalled() ? entry.getLocalRootDir() : "");
    }

    private static Dependency dependency(PlazItemDependency needed) {
        return new Dependency(new Key(needed.getStore(), needed.getItem()), needed.getRevision());
    }

    /** The hub's order among equals counts from behind: catalogs add what is new at the end. */
    private static List<PlazItem> latestFirst(List<PlazItem> entries) {
        List<PlazItem> ordered = new ArrayList<>(entries);
        ordered.sort(Comparator.comparing(PlazItem::getRevision, Revisions.ORDER));
        Collections.reverse(ordered);
        return ordered;
    }

    private static <E, R> List<R> map(Iterable<E> elements, Function<E, R> toView) {
        List<R> views = new ArrayList<>();
        for (E element : elements) views.add(toView.apply(element));
        return List.copyOf(views);
    }
}
