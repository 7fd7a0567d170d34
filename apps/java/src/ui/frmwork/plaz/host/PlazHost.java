package ui.frmwork.plaz.host;

import java.util.Objects;

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

    /** The directory of the user's own files: preferences, history, stores. */
    public static native String getUserDirectory();

    private static native void startHub();

    // Called by the library.
    private static void message(String label, String id, String text) {
        listener.message(Severity.valueOf(label.replace(' ', '_')), id, text);
    }

    private static void progress(String text, double percent) {
        listener.progress(text, percent);
    }
}
