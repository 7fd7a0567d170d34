package ui.frmwork.plaz.browser;

import java.util.ArrayList;
import java.util.Collections;
import java.util.Comparator;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Function;
import ui.frmwork.plaz.PlazCategory;
import ui.frmwork.plaz.PlazItem;
import ui.frmwork.plaz.PlazItemDependency;
import ui.frmwork.plaz.PlazStore;
import ui.frmwork.plaz.PlazSwigIntf;
import ui.frmwork.plaz.browser.Snapshot.Category;
import ui.frmwork.plaz.browser.Snapshot.Dependency;
import ui.frmwork.plaz.browser.Snapshot.Item;
import ui.frmwork.plaz.browser.Snapshot.Key;
import ui.frmwork.plaz.browser.Snapshot.Revision;
import ui.frmwork.plaz.browser.Snapshot.State;
import ui.frmwork.plaz.browser.Snapshot.Store;

/** Reads the hub. Part of {@link HubThread}: used there alone. */
final class SnapshotReader {
    private SnapshotReader() {}

    static Snapshot read() {
        return new Snapshot(map(PlazSwigIntf.getStores(), SnapshotReader::store), PlazSwigIntf.getHttpProxy(),
                PlazSwigIntf.getQStoresPath());
    }

    /** The entries of one item, the latest revision first; none when the hub has no such item. */
    static List<PlazItem> entries(Key key) {
        List<PlazItem> entries = new ArrayList<>();
        PlazSwigIntf.getItems(key.store()).forEachRemaining(entry -> {
            if (entry.getName().equals(key.name())) entries.add(entry);
        });
        return latestFirst(entries);
    }

    private static Store store(PlazStore store) {
        Map<String, List<PlazItem>> entries = new LinkedHashMap<>();
        for (PlazItem entry : store.getItems())
            entries.computeIfAbsent(entry.getName(), name -> new ArrayList<>()).add(entry);
        return new Store(store.getName(), either(store.getDisplayName(), store.getName()), store.getLocalRootDir(),
                PlazSwigIntf.isRefreshed(store), map(store.getCategories(), SnapshotReader::category),
                entries.values().stream().map(SnapshotReader::item).toList());
    }

    private static Category category(PlazCategory category) {
        return new Category(category.getName(), either(category.getDisplayName(), category.getName()),
                map(category.getSubCategories(), SnapshotReader::category));
    }

    private static Item item(List<PlazItem> unordered) {
        List<PlazItem> entries = latestFirst(unordered);
        PlazItem latest = entries.get(0);
        return new Item(new Key(latest.getStoreName(), latest.getName()),
                either(latest.getDisplayName(), latest.getName()), Readable.of(latest.getDescription()),
                latest.getRevision(), state(entries), latest.IsInstalled(),
                either(latest.getCompanyDisplayName(), latest.getCompany()), Readable.of(latest.getAuthor()),
                Readable.of(latest.getWebsite()), latest.getLogo(), map(latest.getCategories(), Function.identity()),
                map(latest.getItemSearchKeywords(), Readable::of),
                entries.stream().map(SnapshotReader::revision).toList(),
                map(latest.getItemDependencies(), SnapshotReader::dependency));
    }

    /** An older revision is out of date only while the latest one is not there beside it. */
    private static State state(List<PlazItem> entries) {
        PlazItem latest = entries.get(0);
        if (latest.IsInstalled()) return latest.NeedsRefresh() ? State.OUTDATED : State.INSTALLED;
        List<PlazItem> installed = entries.stream().filter(PlazItem::IsInstalled).toList();
        if (installed.isEmpty()) return State.NONE;
        return installed.stream().anyMatch(PlazItem::NeedsRefresh) ? State.OUTDATED : State.INSTALLED;
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
