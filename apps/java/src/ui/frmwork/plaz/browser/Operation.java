package ui.frmwork.plaz.browser;

import java.util.List;
import ui.frmwork.cmd.CommandFailedException;
import ui.frmwork.plaz.PlazException;
import ui.frmwork.plaz.PlazItem;
import ui.frmwork.plaz.PlazStore;
import ui.frmwork.plaz.PlazSwigIntf;
import ui.frmwork.plaz.TaskStatus;
import ui.frmwork.plaz.browser.Snapshot.Key;

/**
 * Something to be done with the hub, once; {@link HubThread} runs it.
 *
 * @param title for people, while it runs
 * @param isSetting whether it is carried out even when what waits is cancelled
 */
record Operation(String title, boolean isSetting, Action action) {
    /** What is done. */
    interface Action {
        /** @return what there is to tell in the end; empty when the hub has told everything */
        String run(TaskStatus status, PlazException failure);
    }

    private interface ItemCall {
        boolean on(PlazItem item, TaskStatus status, PlazException failure);
    }

    private interface StoreCall {
        String on(PlazStore store, TaskStatus status, PlazException failure);
    }

    static Operation install(Key key) {
        return onItem("Installing", key, PlazSwigIntf::install);
    }

    static Operation uninstall(Key key) {
        return onItem("Uninstalling", key, PlazSwigIntf::uninstall);
    }

    static Operation update(Key key) {
        return onItem("Updating", key, PlazSwigIntf::update);
    }

    static Operation refresh(String store) {
        return onStore("Refreshing", store, false, (found, status, failure) -> {
            PlazSwigIntf.refreshCatalog(found, status, failure);
            return "Refreshed \"" + store + "\".";
        });
    }

    static Operation check(String store) {
        return onStore("Checking", store, false, (found, status, failure) -> {
            boolean hasMoved = PlazSwigIntf.hasUpdate(found, status, failure);
            if (status.isCanceled()) return "Cancelled: \"" + store + "\" was not checked.";
            return hasMoved ? "\"" + store + "\" has a newer catalog: choose Refresh to fetch it."
                            : "\"" + store + "\" is up to date.";
        });
    }

    static Operation move(String store, String directory) {
        return onStore("Moving", store, true, (found, status, failure) -> {
            if (!PlazSwigIntf.setQStoreLocalRootDir(found, directory, failure))
                throw new CommandFailedException("The store \"" + store + "\" was not moved to \"" + directory + "\".");
            return "The store \"" + store + "\" is kept in \"" + directory + "\" from now on.";
        });
    }

    static Operation setProxy(String proxy) {
        return new Operation("Setting the proxy", true, (status, failure) -> {
            try {
                PlazSwigIntf.setHttpProxy(proxy);
            } catch (CommandFailedException e) { // it may repeat the proxy, password and all
                throw proxy.isEmpty() ? e : new CommandFailedException(e.getMessage().replace(proxy, "***"));
            }
            return proxy.isEmpty() ? "No proxy is set any more." : "The proxy is set.";
        });
    }

    static Operation setStoresPath(String path) {
        return new Operation("Setting the directory of the stores", true, (status, failure) -> {
            PlazSwigIntf.setQStoresPath(path);
            return path.isEmpty() ? "Stores lie at their default place." : "Stores lie below \"" + path + "\".";
        });
    }

    private static Operation onItem(String doing, Key key, ItemCall call) {
        return new Operation(doing + " " + key.name(), false, (status, failure) -> {
            List<PlazItem> entries = SnapshotReader.entries(key);
            if (entries.isEmpty())
                throw new CommandFailedException("There is no item \"" + key.name() + "\" any more.");
            call.on(entries.get(0), status, failure);
            return "";
        });
    }

    private static Operation onStore(String doing, String store, boolean isSetting, StoreCall call) {
        return new Operation(doing + " " + store, isSetting, (status, failure) -> {
            PlazStore found = PlazSwigIntf.getStore(store);
            if (found == null) throw new CommandFailedException("There is no store \"" + store + "\" any more.");
            return call.on(found, status, failure);
        });
    }
}
