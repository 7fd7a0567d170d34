package ui.frmwork.plaz;

/** How long objects live that the hub makes and destroys together. */
final class Lifetime {
    private volatile boolean over;

    void end() {
        over = true;
    }

    boolean lasts() {
        return !over;
    }

    /** @throws IllegalStateException once it is over */
    void check(Class<?> type) {
        if (!over) return;
        throw new IllegalStateException("this " + type.getSimpleName() + " is gone: its store was refreshed or moved");
    }
}
