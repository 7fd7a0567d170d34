package ui.frmwork.plaz.browser;

import java.util.List;
import ui.frmwork.plaz.browser.Snapshot.Store;

/** What to do when there is little or nothing to see. */
final class Hints {
    private Hints() {}

    /**
     * Stands in the place of the items.
     *
     * @param snapshot null while the hub is read
     * @return empty when there are items to be seen
     */
    static String instead(Snapshot snapshot, Scope scope, int seen) {
        if (snapshot == null) return "Reading the hub ...";
        if (snapshot.stores().isEmpty())
            return "The hub has no stores. Choose one that has, or add a single store, in the settings; a sample is "
                    + "there to try things out. Whoever maintains your design tool's hub knows its URL. The messages "
                    + "below may say more.";
        if (seen > 0) return "";
        List<Store> stores = snapshot.stores(scope);
        boolean isEmpty = stores.stream().allMatch(store -> store.items().isEmpty());
        if (!isEmpty) return "No item fits. Clear the search (Esc), the boxes beside it, or choose \"All stores\".";
        return stores.stream().allMatch(store -> store.refreshed() || !store.isListed())
                ? "There are no items here. Choose Refresh (F5) to see whether some have been published."
                : "Nothing is known of the items here, because the catalog was never fetched. Choose Refresh (F5).";
    }

    /** Stands above the items. */
    static String above(Snapshot snapshot, Scope scope, int seen) {
        if (snapshot == null) return "";
        List<Store> stores = snapshot.stores(scope);
        int all = stores.stream().mapToInt(store -> store.items().size()).sum();
        List<String> never =
                stores.stream().filter(store -> store.isListed() && !store.refreshed()).map(Store::name).toList();
        String count = seen + " of " + all;
        return never.isEmpty() ? count : count + "; never refreshed: " + String.join(", ", never);
    }
}
