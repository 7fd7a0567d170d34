package ui.frmwork.plaz.browser;

import java.awt.AWTError;
import java.awt.GraphicsEnvironment;
import java.awt.HeadlessException;
import java.nio.file.Path;
import java.util.concurrent.ExecutionException;
import javax.swing.SwingUtilities;

/** The catalog browser: a window on the hub. */
public final class Browser {
    private Browser() {}

    /** Opens the window. Ends with status 1 where that cannot be. */
    public static void main(String[] arguments) throws InterruptedException {
        if (!hasDisplay()) fail("There is no display to open a window on. Set DISPLAY, or use the program \"plaz\".");
        HubThread hub = new HubThread();
        try {
            Path directory = hub.userDirectory();
            DesktopSettings desktop = DesktopSettings.read();
            SwingUtilities.invokeLater(() -> new BrowserWindow(hub, directory, desktop).open());
        } catch (ExecutionException e) {
            fail("The hub cannot be started: " + e.getCause().getMessage()
                    + ". Name the directory of its libraries with -Djava.library.path.");
        }
    }

    private static boolean hasDisplay() {
        try {
            return !GraphicsEnvironment.isHeadless()
                    && GraphicsEnvironment.getLocalGraphicsEnvironment().getScreenDevices().length > 0;
        } catch (AWTError | HeadlessException | LinkageError e) {
            return false;
        }
    }

    private static void fail(String why) {
        System.err.println(why);
        System.exit(1);
    }
}
