package ui.frmwork.plaz.browser;

import java.nio.file.Path;
import java.util.HashSet;
import java.util.List;
import java.util.Objects;
import java.util.Queue;
import java.util.Set;
import java.util.concurrent.ConcurrentHashMap;
import java.util.concurrent.ConcurrentLinkedQueue;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.concurrent.atomic.AtomicReference;
import java.util.function.Consumer;
import java.util.function.Supplier;
import javax.swing.SwingUtilities;
import ui.frmwork.cmd.CommandFailedException;
import ui.frmwork.plaz.PlazException;
import ui.frmwork.plaz.PlazItem;
import ui.frmwork.plaz.TaskStatus;
import ui.frmwork.plaz.browser.Operation.Outcome;
import ui.frmwork.plaz.browser.Snapshot.Key;
import ui.frmwork.plaz.host.PlazHost;
import ui.frmwork.plaz.host.PlazHost.Change;
import ui.frmwork.plaz.host.PlazHost.Entry;
import ui.frmwork.plaz.host.PlazHost.Input;
import ui.frmwork.plaz.host.PlazHost.Severity;
import ui.frmwork.plaz.host.PlazHost.Step;

/**
 * The one thread that uses the hub. Operations wait their turn; what is only read goes before them. Its methods return
 * at once and may be called from the thread of the windows, on which the {@link HubListener} is told of everything.
 */
final class HubThread {
    private record Progress(String text, double percent) {}

    private final ExecutorService executor = Executors.newSingleThreadExecutor(work -> new Thread(work, "hub"));
    private final Queue<Runnable> reads = new ConcurrentLinkedQueue<>();
    private final Queue<Operation> operations = new ConcurrentLinkedQueue<>();
    private final Set<String> underway = ConcurrentHashMap.newKeySet();
    private final AtomicReference<Progress> progress = new AtomicReference<>();
    private final Object running = new Object();
    private HubListener listener;

    // Of the running operation; what cancels it comes from another thread.
    private boolean isRunning;
    private TaskStatus status;

    // Of the hub's thread alone.
    private final Set<String> toldTexts = new HashSet<>();
    private boolean hasToldError;

    /**
     * The directory of the user's own files. Waits for the answer.
     *
     * @throws ExecutionException when the hub's libraries cannot be loaded
     */
    Path userDirectory() throws ExecutionException, InterruptedException {
        Future<String> directory = executor.submit(PlazHost::getUserDirectory);
        return Path.of(directory.get());
    }

    /** Starts the hub and reads it. Once. */
    void start(HubListener told) {
        listener = Objects.requireNonNull(told);
        read(() -> {
            status = new TaskStatus();
            PlazHost.start(new PlazHost.Listener() {
                @Override
                public void message(Severity severity, String id, String text) {
                    tell(new Message(severity, id, text));
                }

                @Override
                public void progress(String text, double percent) {
                    tellProgress(Readable.of(text), percent);
                }
            });
            tellSnapshot();
        });
    }

    /** Reads an item's change log. */
    void readHistory(Key key) {
        read(() -> {
            List<PlazItem> entries = SnapshotReader.entries(key);
            String text = entries.isEmpty() ? "" : entries.get(0).getHistory();
            post(to -> to.history(key, Readable.of(text)));
        });
    }

    /** Asks what an operation would do to an item. */
    void plan(Change change, Key key, Operation operation) {
        plan(() -> PlazHost.plan(change, key.toString()), operation);
    }

    /** The same of all that is outdated. */
    void planUpdateAll(Operation operation) {
        plan(PlazHost::planUpdateAll, operation);
    }

    /** What is in the way, the operation will tell. */
    private void plan(Supplier<List<Step>> ask, Operation operation) {
        read(() -> {
            List<Step> steps = List.of();
            try {
                steps = ask.get();
            } catch (CommandFailedException e) {
                // There is none then.
            }
            List<Step> found = steps;
            post(to -> to.planned(operation, found));
        });
    }

    /** Reads what was done to what is installed. */
    void readEntries() {
        read(() -> {
            List<Entry> entries = PlazHost.history();
            post(to -> to.entries(entries));
        });
    }

    /** Asks which git the hub runs. */
    void readGit() {
        read(() -> {
            String version = PlazHost.gitVersion();
            post(to -> to.git(version));
        });
    }

    void submit(Operation operation) {
        underway.add(operation.title());
        operations.add(operation);
        awake();
    }

    /** @return a sentence, why a value that a person gave is of no use; empty where it may be */
    static String refusal(Input kind, String value) {
        return PlazHost.refusal(kind, value);
    }

    /** Whether an operation of that title runs or waits. */
    boolean isUnderway(String title) {
        return underway.contains(title);
    }

    /** Ends what runs and drops what waits, but for settings: these are quick, and nobody would miss them in time. */
    void cancel() {
        synchronized (running) {
            operations.removeIf(waiting -> !waiting.isSetting() && underway.remove(waiting.title()));
            if (!isRunning) return;
            status.cancel(); // before the operation can fail of it
            PlazHost.cancel();
        }
    }

    /** Cancels everything and ends the thread. Nothing may be asked for afterwards. */
    void end() {
        cancel();
        executor.execute(() -> post(HubListener::ended));
        executor.shutdown();
    }

    private void read(Runnable work) {
        reads.add(work);
        awake();
    }

    private void awake() {
        if (!executor.isShutdown()) executor.execute(this::runNext);
    }

    private void runNext() {
        Runnable work = reads.poll();
        try {
            if (work != null) work.run();
            else runOperation();
        } catch (RuntimeException | Error e) { // the thread must stay: the hub is entered from no other
            tellFailure(e);
        }
    }

    private void runOperation() {
        Operation operation = begin();
        if (operation != null) run(operation);
        else post(to -> to.working("", 0)); // it was dropped
    }

    /** In one go, so that whatever cancels comes before it or after. */
    private Operation begin() {
        synchronized (running) {
            Operation operation = operations.poll();
            isRunning = operation != null;
            if (isRunning) {
                PlazHost.begin();
                status.setState(0);
            }
            return operation;
        }
    }

    private void run(Operation operation) {
        post(to -> to.working(operation.title(), operations.size()));
        toldTexts.clear();
        hasToldError = false;
        try (PlazException failure = new PlazException()) {
            Outcome outcome = operation.action().run(status, failure);
            if (!failure.getErrorMsg().isEmpty()) tell(Message.error(failure.getErrorMsg().strip()));
            else if (!outcome.text().isEmpty() && !hasToldError) tell(Message.info(outcome.text()));
            if (!outcome.compared().isEmpty()) post(to -> to.compared(outcome.compared()));
        } catch (RuntimeException | Error e) {
            tellFailure(e);
        } finally {
            if (hasToldError && !status.isCanceled()) PlazHost.nameDoctor();
            synchronized (running) {
                isRunning = false;
            }
            underway.remove(operation.title());
            try {
                tellSnapshot();
            } finally {
                post(to -> to.working("", operations.size()));
            }
        }
    }

    private void tellSnapshot() {
        Snapshot snapshot = SnapshotReader.read();
        post(to -> to.changed(snapshot));
    }

    /**
     * What a command fails with has often been told as a message already, but for an explanation behind it. To be
     * cancelled is no failure.
     */
    private void tellFailure(Throwable failure) {
        boolean isOfHub = failure instanceof CommandFailedException;
        Message message = Message.error(isOfHub ? failure.getMessage() : failure.toString());
        int known = toldTexts.stream().filter(message.text()::startsWith).mapToInt(String::length).max().orElse(0);
        String news = message.text().substring(known).strip();
        boolean isExplanation = known > 0 || isOfHub && status.isCanceled();
        if (!news.isEmpty()) tell(isExplanation ? Message.info(news) : message);
    }

    private void tell(Message message) {
        toldTexts.add(message.text());
        hasToldError |= message.severity() == Severity.ERROR;
        post(to -> to.told(message));
    }

    /** Only the newest is of interest to a window that has not come to look at the one before. */
    private void tellProgress(String text, double percent) {
        if (progress.getAndSet(new Progress(text, percent)) != null) return;
        post(to -> {
            Progress newest = progress.getAndSet(null);
            to.progressed(newest.text(), newest.percent());
        });
    }

    private void post(Consumer<HubListener> telling) {
        SwingUtilities.invokeLater(() -> telling.accept(listener));
    }
}
