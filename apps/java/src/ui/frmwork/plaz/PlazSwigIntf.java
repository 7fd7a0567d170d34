package ui.frmwork.plaz;

import static ui.frmwork.plaz.NativeObject.handleOf;

/**
 * The hub. Only one thread may use it and what it gives: the one that started it. Another one may call
 * {@link TaskStatus#cancel}.
 *
 * <p>What fails throws {@link ui.frmwork.cmd.CommandFailedException} with the hub's message.
 */
public final class PlazSwigIntf {
    private static final Lifetime HUB = new Lifetime();

    private interface Action<S> {
        boolean on(long subject, S proxy, long status, TaskStatus statusProxy, long record, PlazException recordProxy);
    }

    private PlazSwigIntf() {}

    /** The stores, in the hub's order. */
    public static PlazQStoreVec getStores() {
        return new PlazQStoreVec(plazi.PlazSwigIntf_getStores(), HUB);
    }

    /** The store of that name; null when there is none. */
    public static PlazStore getStore(String name) {
        long store = plazi.PlazSwigIntf_getStore(name);
        return store == 0 ? null : new PlazStore(store, HUB);
    }

    /** The items of the store of that name, every revision, in catalog order; none for an unknown store. */
    public static PlazItemIter getItems(String storeName) {
        PlazStore store = getStore(storeName);
        Lifetime lifetime = store == null ? HUB : store.contents();
        return new PlazItemIter(plazi.PlazSwigIntf_getItems(storeName), item -> new PlazItem(item, lifetime));
    }

    /** Installs an item, by its name and in its latest revision, with all that it needs. */
    public static boolean install(PlazItem item, TaskStatus status, PlazException exception) {
        return act(plazi::PlazSwigIntf_install, item, status, exception);
    }

    /** Removes an item with all that nothing else needs. */
    public static boolean uninstall(PlazItem item, TaskStatus status, PlazException exception) {
        return act(plazi::PlazSwigIntf_uninstall, item, status, exception);
    }

    /** Brings an item up to date. */
    public static boolean update(PlazItem item, TaskStatus status, PlazException exception) {
        return act(plazi::PlazSwigIntf_update, item, status, exception);
    }

    /** Fetches a store's catalog. All items and categories that were got from it before are gone afterwards. */
    public static boolean refreshCatalog(PlazStore store, TaskStatus status, PlazException exception) {
        try {
            return act(plazi::PlazSwigIntf_refreshCatalog, store, status, exception);
        } finally {
            if (store != null) store.endContents();
        }
    }

    /** Whether the remote has moved since the last refresh. A failure stands in the exception record. */
    public static boolean hasUpdate(PlazStore store, TaskStatus status, PlazException exception) {
        return act(plazi::PlazSwigIntf_hasUpdate, store, status, exception);
    }

    /** Whether the store's working copy is on disk. */
    public static boolean isInstalled(PlazStore store) {
        return plazi.PlazSwigIntf_isInstalled(handleOf(store), store);
    }

    /** Whether the store was refreshed ever. */
    public static boolean isRefreshed(PlazStore store) {
        return plazi.PlazSwigIntf_isRefreshed(handleOf(store), store);
    }

    /** When the store was refreshed, in seconds since 1970; 0 for never. */
    public static long getLastRefreshTime(PlazStore store) {
        return plazi.PlazSwigIntf_getLastRefreshTime(handleOf(store), store);
    }

    /** Whether the store's repository answers. */
    public static boolean canAccessRepo(PlazStore store) {
        return plazi.PlazSwigIntf_canAccessRepo(handleOf(store), store);
    }

    /**
     * Keeps the store's working copy and items below another directory from now on. All items and categories that were
     * got from it before are gone afterwards.
     */
    public static boolean setQStoreLocalRootDir(PlazStore store, String dir, PlazException exception) {
        try {
            return plazi.PlazSwigIntf_setQStoreLocalRootDir(
                    handleOf(store), store, dir, handleOf(exception), exception);
        } finally {
            if (store != null) store.endContents();
        }
    }

    /** The user's proxy; empty for none. */
    public static String getHttpProxy() {
        return plazi.PlazSwigIntf_getHttpProxy();
    }

    /** Sets the user's proxy and saves it. */
    public static void setHttpProxy(String proxy) {
        plazi.PlazSwigIntf_setHttpProxy(proxy);
    }

    /** The directory below which the user keeps stores; empty for the default. */
    public static String getQStoresPath() {
        return plazi.PlazSwigIntf_getQStoresPath();
    }

    /** Sets the directory below which the user keeps stores, and saves it. */
    public static boolean setQStoresPath(String path) {
        return plazi.PlazSwigIntf_setQStoresPath(path);
    }

    private static <S extends NativeObject> boolean act(
            Action<S> action, S subject, TaskStatus status, PlazException exception) {
        return action.on(handleOf(subject), subject, handleOf(status), status, handleOf(exception), exception);
    }
}
