package ui.frmwork.plaz.browser;

import java.awt.AWTError;
import java.awt.GraphicsEnvironment;
import java.awt.HeadlessException;
import java.nio.file.Path;
import java.util.concurrent.ExecutionException;
import javax.swing.SwingUtilities;

/** The catalog browser: a window on the hub. */
public final class Browser {
    private static final String HELP = """
            Usage: plaz-browser [--help | --version] [MACHINE-OPTION...]

            Opens a window on the hub: look for items, install, update and remove them.

              --help          show this and end
              --version       show the version and end
              MACHINE-OPTION  for the Java virtual machine, such as -Dswing.plaf.metal.controlFont=SansSerif-16

            JAVA names another virtual machine. The hub is that of the program "plaz".""";

    private Browser() {}

    /** Opens the window. Ends with status 1 where that cannot be, and with 2 for unknown arguments. */
    public static void main(String[] arguments) throws InterruptedException {
        if (arguments.length > 0) tell(arguments[0]);
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

    private static void tell(String argument) {
        switch (argument) {
            case "--help" -> System.out.println(HELP);
            case "--version" -> System.out.println("plaz-browser " + Version.TEXT);
            default -> {
                System.err.println("\"" + argument + "\" is no option of plaz-browser: see plaz-browser --help.");
                System.exit(2);
            }
        }
        System.exit(0);
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
