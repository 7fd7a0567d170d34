package ui.frmwork.plaz.browser;

import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import ui.frmwork.cmd.CommandFailedException;
import ui.frmwork.plaz.PlazException;
import ui.frmwork.plaz.PlazItem;
import ui.frmwork.plaz.PlazStore;
import ui.frmwork.plaz.PlazSwigIntf;
import ui.frmwork.plaz.TaskStatus;
import ui.frmwork.plaz.browser.Snapshot.Key;
import ui.frmwork.plaz.host.PlazHost;
import ui.frmwork.plaz.host.PlazHost.Fact;

/**
 * Something to be done with the hub, once; {@link HubThread} runs it.
 *
 * @param title for people, while it runs
 * @param isSetting whether it is carried out even when what waits is cancelled
 */
record Operation(String title, boolean isSetting, Action action) {
    /**
     * What came of it.
     *
     * @param text what there is to tell in the end; empty when the hub has told everything
     * @param compared how files compare with those that were installed, in words, by item and revision
     */
    record Outcome(String text, Map<String, String> compared) {
        private static Outcome of(String text) {
            return new Outcome(text, Map.of());
        }
    }

    /** What is done. */
    interface Action {
        Outcome run(TaskStatus status, PlazException failure);
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

    /** What is held the hub would tell with a command of its program. */
    static Operation updateAll() {
        return new Operation("Updating all that is outdated", false, (status, failure) -> {
            PlazHost.updateAll();
            List<Fact> facts = PlazHost.facts();
            String held = itemsOf(facts, "outdated")
                                  .filter(itemsOf(facts, "held").collect(Collectors.toSet())::contains)
                                  .collect(Collectors.joining(", "));
            return Outcome.of(held.isEmpty() ? "" : "Not updated, because you hold them (menu Item, Hold): " + held);
        });
    }

    private static Stream<String> itemsOf(List<Fact> facts, String kind) {
        return facts.stream().filter(fact -> fact.kind().equals(kind)).map(Fact::item);
    }

    static Operation hold(Key key) {
        return new Operation("Holding " + key, false, (status, failure) -> {
            PlazHost.hold(key.toString());
            return Outcome.of("\"" + key + "\" stays in its revision until you no longer hold it.");
        });
    }

    static Operation unhold(Key key) {
        return new Operation("Holding no longer " + key, false, (status, failure) -> {
            PlazHost.unhold(key.toString());
            return Outcome.of("You hold \"" + key + "\" no longer.");
        });
    }

    /** @param number of an entry of the history */
    static Operation undo(int number) {
        return onHub("Taking back the entry " + number, false, () -> PlazHost.undo(number));
    }

    static Operation verify(Key key) {
        return new Operation("Verifying " + key, false, (status, failure) -> compare(key));
    }

    static Operation repair(Key key) {
        return new Operation("Repairing " + key, false, (status, failure) -> {
            PlazHost.repair(key.toString());
            return compare(key);
        });
    }

    static Operation verifyAll() {
        return new Operation("Verifying all that is installed", false, (status, failure) -> {
            Map<String, String> compared = Comparisons.describe(PlazHost.verify());
            String all = compared.isEmpty() ? "Nothing is installed." : "Everything is as it was installed.";
            return new Outcome(all, compared);
        });
    }

    /** What is wrong the hub tells. */
    private static Outcome compare(Key key) {
        return new Outcome(
                "\"" + key + "\" is as it was installed.", Comparisons.describe(PlazHost.verify(key.toString())));
    }

    static Operation refresh(String store) {
        return onStore("Refreshing", store, false, (found, status, failure) -> {
            PlazSwigIntf.refreshCatalog(found, status, failure);
            return "Refreshed \"" + store + "\".";
        });
    }

    static Operation check(String store) {
        return onStore("Checking", store, false, (found, status, failure) -> {
            if (!PlazSwigIntf.isRefreshed(found))
                return "Whether \"" + store + "\" has a newer catalog is not known: it was never refreshed.";
            return PlazHost.check(store) ? "\"" + store + "\" has a newer catalog: choose Refresh to fetch it."
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

    /** What came of it, the hub tells; it masks what is secret. */
    static Operation setProxy(String proxy) {
        return onHub("Setting the proxy", true, () -> PlazHost.setProxy(proxy));
    }

    static Operation chooseHub(String url) {
        return onHub("Fetching the hub", false, () -> PlazHost.chooseHub(url));
    }

    static Operation leaveHub() {
        return onHub("Going back to the installation's hub", false, PlazHost::leaveHub);
    }

    static Operation addStore(String name, String url, String metadataFile, boolean isOfBoards) {
        return onHub("Adding " + name, false, () -> PlazHost.addStore(name, url, metadataFile, isOfBoards));
    }

    static Operation removeStore(String name) {
        return onHub("Taking " + name + " away", false, () -> PlazHost.removeStore(name));
    }

    private static Operation onHub(String title, boolean isSetting, Runnable work) {
        return new Operation(title, isSetting, (status, failure) -> {
            work.run();
            return Outcome.of("");
        });
    }

    static Operation setStoresPath(String path) {
        return new Operation("Setting the directory of the stores", true, (status, failure) -> {
            PlazSwigIntf.setQStoresPath(path);
            String place = path.isEmpty() ? "at their default place" : "below \"" + path + "\"";
            return Outcome.of("From the next start on, stores lie " + place + "; until then, where they are.");
        });
    }

    private static Operation onItem(String doing, Key key, ItemCall call) {
        return new Operation(doing + " " + key, false, (status, failure) -> {
            List<PlazItem> entries = SnapshotReader.entries(key);
            if (entries.isEmpty()) throw new CommandFailedException("There is no item \"" + key + "\" any more.");
            call.on(entries.get(0), status, failure);
            return Outcome.of("");
        });
    }

    private static Operation onStore(String doing, String store, boolean isSetting, StoreCall call) {
        return new Operation(doing + " " + store, isSetting, (status, failure) -> {
            PlazStore found = PlazSwigIntf.getStore(store);
            if (found == null) throw new CommandFailedException("There is no store \"" + store + "\" any more.");
            return Outcome.of(call.on(found, status, failure));
        });
    }
}
