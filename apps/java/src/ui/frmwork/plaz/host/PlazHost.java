package ui.frmwork.plaz.host;

import java.util.ArrayList;
import java.util.Iterator;
import java.util.List;
import java.util.Locale;
import java.util.Objects;
import java.util.function.Supplier;

/**
 * The design tool's part, for programs in Java that are no design tool: starts the hub in this process and tells what
 * it says and does.
 *
 * <p>The thread that starts the hub is the hub's: only it may use {@link ui.frmwork.plaz.PlazSwigIntf} and what that
 * gives. The exception is {@link #cancel}.
 */
public final class PlazHost {
    /** How grave a message is, the worst last. */
    public enum Severity { INFO, WARNING, CRITICAL_WARNING, ERROR }

    /** Told on the hub's thread, in the midst of its work: must not use the hub. What it throws is printed. */
    public interface Listener {
        /**
         * A message was sent.
         *
         * @param id its number, such as "17-1567"
         * @param text the whole sentence
         */
        void message(Severity severity, String id, String text);

        /**
         * A command has come further.
         *
         * @param text what it does
         * @param percent how far it is: 0 to 100
         */
        void progress(String text, double percent);
    }

    /** What {@link #verify} finds of an item (the first two) or of one of its files. */
    public enum FileState { WHOLE, UNKNOWN, CHANGED, MISSING, UNREADABLE, ADDITIONAL }

    /**
     * What is known of an installed item, or of one of its files.
     *
     * @param item such as "boards::aurora@2.0"
     * @param file its path in the item's directory; empty for what is known of the item
     */
    public record Finding(String item, FileState state, String file) {}

    /**
     * What became of one revision of an item.
     *
     * @param item such as "boards::aurora@2.0"
     * @param change such as "installed", "removed" or "becomes a dependency"
     */
    public record ItemChange(String item, String change) {}

    /**
     * What one command has made of what is installed.
     *
     * @param time such as "2026-11-28T08:01:56+0100"
     * @param command as a person would write it; empty where it was interrupted, or something else made the changes
     * @param isUndone whether it was taken back
     * @param isUndo whether it took back another one
     */
    public record Entry(
            int number, String time, String command, boolean isUndone, boolean isUndo, List<ItemChange> changes) {}

    /**
     * What the hub's objects do not tell of an item: that it is "inactive", that it is installed because a "user" asked
     * for it or as the "tool" of others, that it is "outdated", so that an update would do something, or "held" in its
     * revision, or the installed item that it is "needed by".
     *
     * @param item such as "boards::aurora@2.0"
     * @param other an item likewise; empty where there is none to tell of
     */
    public record Fact(String kind, String item, String other) {}

    /** What a person may be asked for. */
    public enum Input { PROXY, URL, DIRECTORY, STORE_NAME }

    /**
     * Which hub is in force.
     *
     * @param url where it is fetched from, without secrets; empty where that is not known
     * @param chooser what chose it, such as "parameter plaz.hub"
     * @param metadata the file that says which stores it has
     * @param ownStores the names of those that the user has added
     */
    public record Hub(String url, String chooser, String metadata, List<String> ownStores) {}

    /** What {@link #plan} looks into. */
    public enum Change { INSTALL, UNINSTALL, UPDATE }

    /**
     * One thing that a change would do.
     *
     * @param kind "install", "update", "take over" (its files are there already), "restore", "remove", "adopt" (from
     *     now on the user's own), "keep" (for others), "hold" or "unhold" (of an undo)
     * @param item such as "boards::aurora@2.0"
     * @param before the revision in whose place it comes; empty for none
     * @param bytes of its files; below 0 where that would have to be fetched
     * @param neededBy who needs it, for people; empty for nobody
     */
    public record Step(String kind, String item, String before, long bytes, String neededBy, boolean isAskedFor) {}

    /**
     * What a refresh would change of what is known of an item.
     *
     * @param kind "new", "changed" (another revision takes its place, or the same one was published anew) or
     *         "withdrawn"
     * @param previousRevision of a change: what is offered now; else empty
     * @param isInstalled whether this revision is installed; of a store that keeps one of each item, whether any is
     */
    public record CatalogChange(
            String kind, String name, String revision, String previousRevision, boolean isInstalled) {}

    /**
     * What a refresh would change of what is known of a store.
     *
     * @param outcome "up-to-date", "outdated", or of what the hub would begin, or cease, to list, "new" and "withdrawn"
     * @param url without secrets, of a store that is new, or is fetched from there from then on; else empty
     * @param previousCommit that the catalog in force is of; empty where that is not known
     * @param commit that it would be of; empty where nothing was fetched, as of a store that was never refreshed
     * @param subjects of the commits between them, the newest first, 20 at most
     */
    public record StorePlan(String store, String outcome, String url, String previousCommit, String commit,
            List<String> subjects, List<CatalogChange> items) {}

    private static Listener listener;

    static {
        System.loadLibrary("plazijvm");
    }

    private PlazHost() {}

    /**
     * Starts the hub for the thread that calls. Once in a process.
     *
     * @throws IllegalStateException the second time
     */
    public static synchronized void start(Listener told) {
        if (listener != null) throw new IllegalStateException("the hub is started already");
        listener = Objects.requireNonNull(told);
        startHub();
    }

    /** Forgets that an operation was cancelled and how far it came: the next one begins. */
    public static native void begin();

    /** Cancels what the hub is at, and all that comes before {@link #begin}. May be called from any thread. */
    public static native void cancel();

    /** Where git has failed since {@link #begin}: tells who looks for the cause. For the end of what has failed. */
    public static native void nameDoctor();

    /** The directory of the user's own files: preferences, history, stores. */
    public static native String getUserDirectory();

    /**
     * Compares the files of installed items with those of the commits that were installed. Changes nothing and needs
     * no network. What is wrong is told, too.
     *
     * @param items such as "boards::aurora", for each revision that is installed, or "boards::aurora@2.0"; none for all
     * @return in their order, WHOLE, UNKNOWN or its damaged files for each item; files that were added do no harm
     * @throws ui.frmwork.cmd.CommandFailedException when one is not installed, or it was cancelled
     */
    public static List<Finding> verify(String... items) {
        String[] triples = compare(items);
        List<Finding> findings = new ArrayList<>();
        for (int i = 0; i < triples.length; i += 3) {
            FileState state = FileState.valueOf(triples[i + 1].toUpperCase(Locale.ROOT));
            findings.add(new Finding(triples[i], state, triples[i + 2]));
        }
        return List.copyOf(findings);
    }

    /**
     * Brings back what {@link #verify} finds changed or missing. What a user had changed is kept aside, which is told;
     * what was added stays.
     *
     * @param items as for {@link #verify}
     * @throws ui.frmwork.cmd.CommandFailedException when it failed, or was cancelled
     */
    public static native void repair(String... items);

    /**
     * Keeps installed items in the revision that they are in: they are not updated, nor replaced by another one, until
     * {@link #unhold}. They can be uninstalled, which ends it.
     *
     * @param items such as "boards::aurora"
     * @throws ui.frmwork.cmd.CommandFailedException when one is not installed, or that cannot be recorded
     */
    public static native void hold(String... items);

    /**
     * Lets items that are held change again.
     *
     * @param items as for {@link #hold}
     * @throws ui.frmwork.cmd.CommandFailedException when one is not held, or that cannot be recorded
     */
    public static native void unhold(String... items);

    /**
     * Whether an item of the hub is held, installed or not.
     *
     * @throws ui.frmwork.cmd.CommandFailedException when there is no such item, or that is not known
     */
    public static native boolean isHeld(String item);

    /**
     * What was done to what is installed, the newest first.
     *
     * @throws ui.frmwork.cmd.CommandFailedException when that is not known
     */
    public static List<Entry> history() {
        Iterator<String> texts = List.of(readHistory()).iterator();
        List<Entry> entries = new ArrayList<>();
        while (texts.hasNext()) {
            int number = Integer.parseInt(texts.next());
            String time = texts.next();
            String command = texts.next();
            String standing = texts.next();
            List<ItemChange> changes = readList(texts, () -> new ItemChange(texts.next(), texts.next()));
            entries.add(new Entry(number, time, command, standing.equals("undone"), standing.equals("undo"), changes));
        }
        return List.copyOf(entries);
    }

    /** As many as the next text says. */
    private static <E> List<E> readList(Iterator<String> texts, Supplier<E> readOne) {
        List<E> list = new ArrayList<>();
        for (int left = Integer.parseInt(texts.next()); left > 0; --left) list.add(readOne.get());
        return List.copyOf(list);
    }

    /** Takes back the newest command that is neither taken back nor took back another; see {@link #undo(int)}. */
    public static native void undo();

    /**
     * Takes back what a command has changed of what is installed.
     *
     * @param number of its entry in the history
     * @throws ui.frmwork.cmd.CommandFailedException when later commands have changed the same items, files are not to
     *         be had (nothing is changed then), or not all of it could be taken back
     */
    public static native void undo(int number);

    /**
     * Whether a store's remote has moved since the last refresh; so it counts as well where the store was never
     * refreshed. Fetches nothing.
     *
     * @throws ui.frmwork.cmd.CommandFailedException when that is not known, with the reason, which is told, too; or
     *         when it was cancelled
     */
    public static native boolean check(String store);

    /**
     * What a refresh of stores would change. Fetches for that, and leaves in force what is known and installed.
     *
     * @param stores their names; empty for all
     * @return one for each, in their order
     * @throws ui.frmwork.cmd.CommandFailedException when there is no such store, or that is not known of one, with the
     *         reason, which is told, too; or when it was cancelled
     */
    public static List<StorePlan> planRefresh(List<String> stores) {
        return storePlans(planStores(stores.toArray(String[] ::new)));
    }

    /**
     * The same of a refresh of the hub itself and with it of all stores, those that it would begin, or cease, to list
     * included.
     *
     * @throws ui.frmwork.cmd.CommandFailedException as {@link #planRefresh}
     */
    public static List<StorePlan> planRefreshHub() {
        return storePlans(planHub());
    }

    private static List<StorePlan> storePlans(String[] all) {
        Iterator<String> texts = List.of(all).iterator();
        List<StorePlan> plans = new ArrayList<>();
        while (texts.hasNext())
            plans.add(new StorePlan(texts.next(), texts.next(), texts.next(), texts.next(), texts.next(),
                    readList(texts, texts::next), readList(texts, () -> readCatalogChange(texts))));
        return List.copyOf(plans);
    }

    private static CatalogChange readCatalogChange(Iterator<String> texts) {
        return new CatalogChange(texts.next(), texts.next(), texts.next(), texts.next(), !texts.next().isEmpty());
    }

    private static native String[] planStores(String... stores);

    private static native String[] planHub();

    private static native String[] readHistory();

    /** All facts of all items. Needs no network. */
    public static List<Fact> facts() {
        String[] triples = describeItems();
        List<Fact> facts = new ArrayList<>();
        for (int i = 0; i < triples.length; i += 3) facts.add(new Fact(triples[i], triples[i + 1], triples[i + 2]));
        return List.copyOf(facts);
    }

    /** Which hub is in force. Needs no network. */
    public static Hub hub() {
        List<String> texts = List.of(describeHub());
        return new Hub(texts.get(0), texts.get(1), texts.get(2), texts.subList(3, texts.size()));
    }

    /**
     * Why a value that a person gave is of no use. May be called from any thread.
     *
     * @return a sentence; empty where the value may be
     */
    public static String refusal(Input kind, String value) {
        return findRefusal(kind.name(), value);
    }

    /**
     * Has the hub of that URL (or "sample") be the user's from now on, and fetches it. Where that fails, the one before
     * stays. All objects that were got before are gone afterwards, with this and the next three, and must not be used.
     *
     * @throws ui.frmwork.cmd.CommandFailedException when it failed, or was cancelled
     */
    public static native void chooseHub(String url);

    /**
     * Has the installation's hub be in force again.
     *
     * @throws ui.frmwork.cmd.CommandFailedException as {@link #chooseHub}
     */
    public static native void leaveHub();

    /**
     * Adds a store of the user's own and fetches its catalog.
     *
     * @param metadataFile in its repository; empty where it has one of the usual names
     * @throws ui.frmwork.cmd.CommandFailedException as {@link #chooseHub}
     */
    public static native void addStore(String name, String url, String metadataFile, boolean isOfBoards);

    /**
     * Takes one away; what is installed from it stays.
     *
     * @throws ui.frmwork.cmd.CommandFailedException as {@link #chooseHub}
     */
    public static native void removeStore(String name);

    /**
     * Keeps the proxy for later runs, the program's as well. What it is then is told.
     *
     * @param proxy empty for none
     * @throws ui.frmwork.cmd.CommandFailedException when it is of no use or cannot be kept
     */
    public static native void setProxy(String proxy);

    /** What the hub's git says of its version, or why it says nothing. */
    public static native String gitVersion();

    /**
     * What a change would do. Does nothing, tells nothing and needs no network.
     *
     * @param item such as "boards::aurora"
     * @return in the order in which it would be done
     * @throws ui.frmwork.cmd.CommandFailedException when there is no such item
     */
    public static List<Step> plan(Change change, String item) {
        return steps(planChange(change.name(), item));
    }

    private static List<Step> steps(String[] texts) {
        List<Step> steps = new ArrayList<>();
        for (int i = 0; i < texts.length; i += 6)
            steps.add(new Step(texts[i], texts[i + 1], texts[i + 2],
                    texts[i + 3].isEmpty() ? -1 : Long.parseLong(texts[i + 3]), texts[i + 4], !texts[i + 5].isEmpty()));
        return List.copyOf(steps);
    }

    /** The same of {@link #updateAll}. */
    public static List<Step> planUpdateAll() {
        return steps(planUpdates());
    }

    /** The same of {@link #undo(int)}. */
    public static List<Step> planUndo(int number) {
        return steps(planUndoOf(number));
    }

    /**
     * Updates what is outdated and not held, and brings what installed items lack.
     *
     * @throws ui.frmwork.cmd.CommandFailedException when it failed, or was cancelled
     */
    public static native void updateAll();

    /**
     * Why an installed item is there. Needs no network.
     *
     * @param item such as "boards::aurora"
     * @return a sentence for each reason, such as "You asked for boards::aurora@2.0, which needs boards::io-panel@1.0."
     * @throws ui.frmwork.cmd.CommandFailedException when it is not installed
     */
    public static List<String> why(String item) {
        return List.of(findReasons(item));
    }

    private static native String[] planChange(String change, String item);

    private static native String[] planUpdates();

    private static native String[] planUndoOf(int number);

    private static native String[] findReasons(String item);

    private static native String[] describeHub();

    private static native String findRefusal(String kind, String value);

    private static native String[] describeItems();

    private static native String[] compare(String... items);

    private static native void startHub();

    // Called by the library.
    private static void message(String label, String id, String text) {
        listener.message(Severity.valueOf(label.replace(' ', '_')), id, text);
    }

    private static void progress(String text, double percent) {
        listener.progress(text, percent);
    }
}
