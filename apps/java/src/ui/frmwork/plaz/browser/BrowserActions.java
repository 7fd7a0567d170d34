package ui.frmwork.plaz.browser;

import java.awt.event.ActionEvent;
import java.util.List;
import java.util.Locale;
import java.util.Optional;
import java.util.function.Function;
import javax.swing.AbstractAction;
import javax.swing.Action;
import javax.swing.ButtonGroup;
import javax.swing.JButton;
import javax.swing.JCheckBoxMenuItem;
import javax.swing.JMenu;
import javax.swing.JMenuBar;
import javax.swing.JMenuItem;
import javax.swing.JRadioButtonMenuItem;
import javax.swing.KeyStroke;
import ui.frmwork.plaz.browser.Look.Theme;
import ui.frmwork.plaz.browser.Snapshot.Item;
import ui.frmwork.plaz.browser.Snapshot.Key;
import ui.frmwork.plaz.host.PlazHost.Change;

/** What a person can do, each once for button, menu and key. */
final class BrowserActions {
    final Action install;
    final Action uninstall;
    final Action update;
    final Action updateAll;
    final Action hold;
    final Action undo;
    final Action verify;
    final Action repair;
    final Action verifyAll;
    final Action refresh;
    final Action check;
    final Action cancel;
    final Action settings;
    private final JMenuBar menus = new JMenuBar();

    BrowserActions(BrowserWindow window) {
        install = action("Install", 'N', "control I", () -> window.planForItem(Change.INSTALL, Operation::install));
        uninstall = action(
                "Uninstall", 'U', "control DELETE", () -> window.planForItem(Change.UNINSTALL, Operation::uninstall));
        update = action("Update", 'P', "control U", () -> window.planForItem(Change.UPDATE, Operation::update));
        updateAll = action("Update all", 'L', "control shift A", window::updateAll);
        hold = action("Hold", 'H', "control K", window::toggleHold);
        undo = action("Undo ...", 'D', "control Z", window::openHistory);
        verify = action("Verify", 'V', "F7", () -> window.submitForItem(Operation::verify));
        repair = action("Repair", 'R', "control R", () -> window.submitForItem(Operation::repair));
        verifyAll = action("Verify all", 'A', "shift F7", window::verifyAll);
        refresh = action("Refresh", 'R', "F5", () -> window.submitForStores(Operation::refresh));
        check = action("Check", 'K', "F6", () -> window.submitForStores(Operation::check));
        cancel = action("Cancel", 'C', "", window::cancel); // Esc, which also clears the search
        settings = action("Settings ...", 'S', "control COMMA", window::openSettings);
        addMenu("File", 'F', settings, action("Quit", 'Q', "control Q", window::close));
        JMenu item = addMenu("Item", 'I', action("Find", 'F', "control F", window::find), install, uninstall, update);
        item.add(new JCheckBoxMenuItem(hold));
        for (Action each : new Action[] {verify, repair}) item.add(each);
        item.addSeparator();
        for (Action each : new Action[] {updateAll, verifyAll, undo}) item.add(each);
        addMenu("Store", 'T', refresh, check, cancel);
        JMenu view = addMenu("View", 'V', action("Larger text", 'L', "control EQUALS", () -> window.resizeText(10)),
                action("Smaller text", 'S', "control MINUS", () -> window.resizeText(-10)));
        view.addSeparator();
        ButtonGroup themes = new ButtonGroup();
        addTheme(view, themes, window, "As the desktop", 'D', Theme.SYSTEM);
        addTheme(view, themes, window, "Light", 'I', Theme.LIGHT);
        addTheme(view, themes, window, "Dark", 'K', Theme.DARK);
        addMenu("Help", 'H', action("User guide", 'G', "F1", window::openGuide),
                action("About", 'A', "", window::showAbout));
    }

    JMenuBar menus() {
        return menus;
    }

    static JButton button(Action action) {
        JButton button = Look.plain(new JButton(action));
        button.setName(((String) action.getValue(Action.ACTION_COMMAND_KEY)).toLowerCase(Locale.ROOT));
        return button;
    }

    /** Enables what makes sense now. */
    void enable(HubThread hub, Optional<Item> item, List<String> chosenStores, boolean isWorking) {
        enableItem(install, hub, item.filter(it -> !it.isLatestInstalled() && !it.isKeptBack()), Operation::install);
        enableItem(uninstall, hub, item.filter(Item::isInstalled), Operation::uninstall);
        enableItem(update, hub, item.filter(Item::isUpdatable), Operation::update);
        boolean isHeld = item.filter(it -> it.standing().isHeld()).isPresent();
        enableItem(hold, hub, item.filter(Item::isInstalled), isHeld ? Operation::unhold : Operation::hold);
        hold.putValue(Action.SELECTED_KEY, isHeld); // what is so, not what was clicked
        String reason = item.filter(Item::isKeptBack).map(BrowserActions::describeHold).orElse(null);
        for (Action each : List.of(install, update)) each.putValue(Action.SHORT_DESCRIPTION, reason);
        updateAll.setEnabled(!hub.isUnderway(Operation.updateAll().title()));
        enableItem(verify, hub, item.filter(Item::isInstalled), Operation::verify);
        enableItem(repair, hub, item.filter(Item::isInstalled), Operation::repair);
        verifyAll.setEnabled(!hub.isUnderway(Operation.verifyAll().title()));
        refresh.setEnabled(chosenStores.stream().anyMatch(it -> !hub.isUnderway(Operation.refresh(it).title())));
        check.setEnabled(chosenStores.stream().anyMatch(it -> !hub.isUnderway(Operation.check(it).title())));
        cancel.setEnabled(isWorking);
    }

    private static String describeHold(Item item) {
        return "\"" + item.title() + "\" stays in the revision \"" + item.standing().installed().get(0)
                + "\", because you hold it there. To let it change: Hold, in the menu Item.";
    }

    /** Nothing can be begun any more. */
    void disable() {
        List<Action> all = List.of(install, uninstall, update, updateAll, hold, undo, verify, repair, verifyAll,
                refresh, check, cancel, settings);
        for (Action each : all) each.setEnabled(false);
    }

    private static void enableItem(
            Action action, HubThread hub, Optional<Item> item, Function<Key, Operation> operation) {
        action.setEnabled(item.filter(it -> !hub.isUnderway(operation.apply(it.key()).title())).isPresent());
    }

    private static void addTheme(
            JMenu menu, ButtonGroup group, BrowserWindow window, String text, char mnemonic, Theme theme) {
        JMenuItem item = new JRadioButtonMenuItem(action(text, mnemonic, "", () -> window.choose(theme)));
        item.setSelected(window.theme() == theme);
        group.add(item);
        menu.add(item);
    }

    private JMenu addMenu(String name, char mnemonic, Action... actions) {
        JMenu menu = new JMenu(name);
        menu.setMnemonic(mnemonic);
        for (Action action : actions) menu.add(action);
        menus.add(menu);
        return menu;
    }

    private static Action action(String name, char mnemonic, String key, Runnable work) {
        Action action = new AbstractAction(name) {
            private static final long serialVersionUID = 1;

            @Override
            public void actionPerformed(ActionEvent event) {
                work.run();
            }
        };
        action.putValue(Action.ACTION_COMMAND_KEY, name);
        action.putValue(Action.MNEMONIC_KEY, (int) mnemonic);
        if (!key.isEmpty()) action.putValue(Action.ACCELERATOR_KEY, KeyStroke.getKeyStroke(key));
        return action;
    }
}
