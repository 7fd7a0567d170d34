package ui.frmwork.plaz.browser;

import java.awt.Rectangle;
import java.awt.Window;
import java.awt.event.KeyEvent;
import java.io.File;
import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.stream.Stream;
import javax.imageio.ImageIO;
import javax.swing.BorderFactory;
import javax.swing.JDialog;

/** Takes pictures of what a person sees, from state to state; for scripts/screenshots, which knows what is needed. */
final class Screenshots extends Person {
    private static final Path SCRATCH = Path.of(System.getProperty("scratch"));

    private static Path pictures;
    private static String kind;

    private Screenshots() {}

    /** @param arguments where the pictures go, how they differ from others of that name, and which are taken */
    public static void main(String[] arguments) {
        pictures = Path.of(arguments[0]);
        kind = arguments[1];
        try {
            take(arguments[2]);
        } catch (Exception | AssertionError e) {
            e.printStackTrace();
            System.exit(1); // the window would stay
        }
        System.exit(0);
    }

    private static void take(String states) throws Exception {
        switch (states) {
            case "empty" -> takeEmptyHub();
            case "small" -> takeSmallWindow();
            default -> takeAll();
        }
    }

    private static void takeEmptyHub() throws Exception {
        open(0);
        await("hint", () -> text("What to do").startsWith("The hub has no stores."));
        keep("empty");
    }

    private static void takeSmallWindow() throws Exception {
        openRefreshed();
        choose("boards", "aurora");
        keep("small-list");
        click(find("install"));
        await("the plan", () -> exists("plan"));
        keep("small-plan");
        click(find("go"));
        awaitRest("Installed \"Aurora Entwicklungsplatine\".");
        takeRefusal("small-settings");
    }

    private static void takeAll() throws Exception {
        openRefreshed();
        keep("list");
        choose("boards", "aurora");
        keep("details");
        click(find("install"));
        await("the plan", () -> exists("plan"));
        keep("plan");
        click(find("go"));
        awaitRest("Installed \"Aurora Entwicklungsplatine\".");
        keep("installed");
        takeQuestions();
        takeProgress();
        takeFailure();
        takeRefusal("settings");
        takeOwnStore();
        perform(window::showAbout);
        await("dialog", () -> dialogs().findAny().isPresent());
        keep("about");
    }

    private static void openRefreshed() throws Exception {
        open(16);
        press(KeyEvent.VK_F5);
        awaitRest("Refreshed \"tclscripts\".");
    }

    private static void takeQuestions() {
        perform(window::openHistory);
        await("what was done", () -> exists("history"));
        keep("history");
        press(KeyEvent.VK_ESCAPE);
        focusSearch();
        openSettings();
        fill("storesPath", SCRATCH.resolve("elsewhere").toString());
        click(find("apply"));
        await("what it means", () -> exists("leaveItems"));
        keep("leave-items");
        press(KeyEvent.VK_ESCAPE);
        await("no question", () -> !exists("leaveItems"));
        click(find("leave"));
        await("no dialog", () -> !exists("settings"));
    }

    /** While git stands still. */
    private static void takeProgress() throws IOException {
        choose("tclscripts", "clocking");
        Path hang = Files.createFile(SCRATCH.resolve("hang"));
        click(find("install"));
        await("git", () -> Files.exists(SCRATCH.resolve("pid")));
        keep("progress");
        click(find("cancel"));
        await("rest", () -> !find("cancel").isEnabled());
        Files.delete(hang);
        Files.delete(SCRATCH.resolve("pid"));
    }

    /** Of a store whose branch has another name by now. */
    private static void takeFailure() throws Exception {
        ask(() -> stores().choose(Scope.of("boards")));
        rename("main", "trunk");
        press(KeyEvent.VK_F5);
        await("failure", () -> find("error").isShowing() && !find("cancel").isEnabled());
        rename("trunk", "main");
        keep("failure");
        click(find("advice"));
        await("advice", () -> exists("guideDialog"));
        keep("advice");
        click(find("closeGuide"));
        click(find("read"));
        ask(() -> stores().choose(Scope.ALL));
    }

    private static void rename(String branch, String name) throws Exception {
        String repository = SCRATCH.resolve("repos/boards-store.git").toString();
        new ProcessBuilder("git", "-C", repository, "branch", "-m", branch, name).inheritIO().start().waitFor();
    }

    private static void takeRefusal(String name) {
        focusSearch();
        openSettings();
        fill("proxy", "none such");
        click(find("apply"));
        await("why not", () -> !text("proxyRefusal").isEmpty());
        keep(name);
        press(KeyEvent.VK_ESCAPE);
        await("no dialog", () -> !exists("settings"));
    }

    private static void takeOwnStore() {
        focusSearch();
        openSettings();
        fill("newStoreName", "mine");
        fill("newStoreUrl", "file://" + SCRATCH.resolve("repos/tcl-store.git"));
        fill("newStoreFile", "tcl_store.json");
        click(find("addStore"));
        await("one's own store", () -> stores().choose(Scope.of("mine")) && !find("cancel").isEnabled());
        ask(() -> stores().choose(Scope.ALL));
        focusSearch();
        openSettings();
        fill("newStoreName", "yours");
        fill("newStoreUrl", "https://example.org/stores/yours.git");
        keep("stores");
        press(KeyEvent.VK_ESCAPE);
        await("no dialog", () -> !exists("settings"));
    }

    private static Stream<JDialog> dialogs() {
        return Stream.of(Window.getWindows()).filter(JDialog.class ::isInstance).map(JDialog.class ::cast)
                .filter(JDialog::isShowing);
    }

    /** Dialogs get the line around them that a window manager would draw. */
    private static void keep(String name) {
        perform(() -> dialogs().forEach(each -> {
            each.getRootPane().setBorder(BorderFactory.createLineBorder(Look.colours().quiet()));
            each.setSize(each.getWidth() + 2, each.getHeight() + 2);
            each.validate();
        }));
        Rectangle screen = new Rectangle(window.getToolkit().getScreenSize());
        robot.mouseMove(screen.width - 1, screen.height - 1);
        robot.delay(500); // pictures of items may come late
        robot.waitForIdle();
        File file = pictures.resolve(name + "-" + kind + ".png").toFile();
        try {
            ImageIO.write(robot.createScreenCapture(screen), "png", file);
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
    }
}
