package ui.frmwork.plaz.browser;

import java.util.List;
import java.util.Map;
import ui.frmwork.plaz.browser.Snapshot.Key;
import ui.frmwork.plaz.host.PlazHost.Entry;
import ui.frmwork.plaz.host.PlazHost.Step;

/** Told by {@link HubThread} what happens, on the thread of the windows. */
interface HubListener {
    void changed(Snapshot snapshot);

    /** @param text for people */
    void history(Key key, String text);

    /** @param texts how the files of items compare with those that were installed, by item and revision */
    void compared(Map<String, String> texts);

    /** @param steps what the operation would do; none where that is not known */
    void planned(Operation operation, List<Step> steps);

    /** @param entries what was done to what is installed, the newest first */
    void entries(List<Entry> entries);

    /** @param version which git it is, and where */
    void git(String version);

    void told(Message message);

    /** An operation has come further. */
    void progressed(String text, double percent);

    /**
     * Operations begin and end.
     *
     * @param title the operation that runs; empty for none
     * @param waiting how many are to come
     */
    void working(String title, int waiting);

    /** The hub is at rest for good. */
    void ended();
}
