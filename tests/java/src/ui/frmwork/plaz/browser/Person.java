package ui.frmwork.plaz.browser;

import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertTrue;
import static org.junit.jupiter.api.Assertions.fail;

import java.awt.AWTException;
import java.awt.Component;
import java.awt.Container;
import java.awt.Frame;
import java.awt.Point;
import java.awt.Rectangle;
import java.awt.Robot;
import java.awt.Window;
import java.awt.event.InputEvent;
import java.awt.event.KeyEvent;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.concurrent.Executors;
import java.util.concurrent.FutureTask;
import java.util.concurrent.atomic.AtomicReference;
import java.util.regex.Pattern;
import java.util.stream.IntStream;
import java.util.stream.Stream;
import javax.swing.JComponent;
import javax.swing.SwingUtilities;
import javax.swing.plaf.basic.BasicHTML;
import javax.swing.text.JTextComponent;
import ui.frmwork.plaz.browser.Snapshot.Item;
import ui.frmwork.plaz.browser.Snapshot.Key;
import ui.frmwork.plaz.browser.Snapshot.State;

/** What a person does and sees at the window, for those that extend this. */
abstract class Person {
    static Robot robot;
    static BrowserWindow window;

    /** @param items how many there are at first */
    static void open(int items) throws AWTException, InterruptedException {
        robot = new Robot();
        robot.setAutoDelay(15);
        Browser.main(new String[0]);
        await("window", () -> {
            for (Frame frame : Frame.getFrames())
                if (frame instanceof BrowserWindow found && found.isShowing()) window = found;
            return window != null && find("search").isFocusOwner() && items().getRowCount() == items;
        });
    }

    // What a person does.

    static void click(Component component) {
        click(component, component.getWidth() / 2, component.getHeight() / 2);
    }

    static void click(Component component, int x, int y) {
        perform(() -> {
            if (component instanceof JComponent inside && component.getParent() != null)
                inside.scrollRectToVisible(new Rectangle(0, 0, component.getWidth(), component.getHeight()));
            assertTrue(component.isShowing() && component.isEnabled(), component.getName());
        });
        // Without a window manager the toolkit sometimes takes a dialog to be in the corner, not where it was put.
        // A click that comes while it is put there would miss.
        AtomicReference<Point> before = new AtomicReference<>();
        await("the mouse on " + component.getName(), () -> {
            Point place = component.getLocationOnScreen();
            boolean isStill = place.equals(before.getAndSet(place));
            robot.mouseMove(place.x + x, place.y + y);
            boolean isThere = ((Container) component).getMousePosition(true) != null;
            Window of = SwingUtilities.getWindowAncestor(component);
            if (!isThere && of.getOwner() != null) of.setLocationRelativeTo(of.getOwner());
            return isThere && isStill;
        });
        robot.mousePress(InputEvent.BUTTON1_DOWN_MASK);
        robot.mouseRelease(InputEvent.BUTTON1_DOWN_MASK);
    }

    static void press(int... keys) {
        for (int key : keys) robot.keyPress(key);
        for (int i = keys.length; i-- > 0;) robot.keyRelease(keys[i]);
    }

    static void type(String letters) {
        letters.chars().forEach(letter -> press(KeyEvent.getExtendedKeyCodeForChar(letter)));
    }

    static void search(String letters) {
        focusSearch();
        type(letters);
    }

    /** Without a window manager nobody gives the focus back when a dialog goes. */
    static void focusSearch() {
        click(find("search"));
        awaitFocus("search");
    }

    static void openSettings() {
        press(KeyEvent.VK_CONTROL, KeyEvent.VK_COMMA);
        await("dialog", () -> exists("settings"));
    }

    static void fill(String name, String text) {
        perform(() -> ((JTextComponent) find(name)).setText(text));
    }

    static void choose(String store, String name) {
        await(name, () -> items().choose(new Key(store, name)));
    }

    // What a person sees. Only the thread of the windows may look.

    static void await(String what, Callable<Boolean> isSo) {
        for (int tries = 0; tries < 1200; ++tries) {
            if (ask(isSo)) return;
            robot.delay(50);
        }
        fail("never came: " + what + "\n" + (window == null ? "" : text("messages")));
    }

    static void awaitFocus(String name) {
        await("focus of " + name, () -> find(name).isFocusOwner());
    }

    /** Waits until a message has come and nothing is being done any more. */
    static void awaitRest(String message) {
        await(message, () -> text("messages").contains(message) && !find("cancel").isEnabled());
    }

    static <T> T ask(Callable<T> question) {
        try {
            if (SwingUtilities.isEventDispatchThread()) return question.call();
            FutureTask<T> task = new FutureTask<>(question);
            SwingUtilities.invokeAndWait(task);
            return task.get();
        } catch (Exception e) {
            throw new AssertionError(e);
        }
    }

    static void perform(Runnable work) {
        ask(Executors.callable(work));
    }

    /** Dialogs that were closed linger: these are not looked at. */
    static Component find(String name) {
        return ask(() -> {
            Stream<Window> windows = Stream.of(Window.getWindows()).filter(Window::isDisplayable);
            Stream<Component> found = windows.flatMap(Person::all).filter(each -> name.equals(each.getName()));
            return found.findFirst().orElseThrow(() -> new AssertionError("no component " + name));
        });
    }

    static boolean exists(String window) {
        return Stream.of(Window.getWindows()).anyMatch(each -> each.isShowing() && window.equals(each.getName()));
    }

    static Stream<Component> all(Component top) {
        Stream<Component> below = top instanceof Container box ? Stream.of(box.getComponents()) : Stream.empty();
        return Stream.concat(Stream.of(top), below.flatMap(Person::all));
    }

    static ItemTable items() {
        return (ItemTable) find("items");
    }

    static StoreTree stores() {
        return (StoreTree) find("stores");
    }

    static String text(String name) {
        return ask(() -> ((JTextComponent) find(name)).getText());
    }

    static int count(String part) {
        return text("messages").split(Pattern.quote(part), -1).length - 1;
    }

    static List<String> shown() {
        return ask(() -> {
            IntStream rows = IntStream.range(0, items().getRowCount()).map(items()::convertRowIndexToModel);
            return rows.mapToObj(row -> model().item(row).key().name()).toList();
        });
    }

    static String chosen() {
        return ask(() -> items().chosen().map(item -> item.key().name()).orElse(""));
    }

    static Item item(String store, String name) {
        for (Item item : ask(() -> model().items()))
            if (item.key().equals(new Key(store, name))) return item;
        return fail("no item " + name);
    }

    static State state(String store, String name) {
        return item(store, name).state();
    }

    static ItemTableModel model() {
        return (ItemTableModel) items().getModel();
    }

    /** Of the buttons Install, Uninstall and Update. */
    static List<Boolean> enabled() {
        return Stream.of("install", "uninstall", "update").map(name -> ask(() -> find(name).isEnabled())).toList();
    }

    static void assertNoHtml(Component top) {
        Stream<Component> inside = all(top).filter(JComponent.class ::isInstance);
        inside.forEach(
                each -> assertNull(((JComponent) each).getClientProperty(BasicHTML.propertyKey), each::toString));
    }
}
