package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import java.awt.Dimension;
import java.awt.FlowLayout;
import java.awt.Frame;
import java.awt.event.ItemEvent;
import java.awt.event.KeyEvent;
import java.awt.event.WindowAdapter;
import java.awt.event.WindowEvent;
import java.io.File;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Consumer;
import javax.swing.BorderFactory;
import javax.swing.JButton;
import javax.swing.JCheckBox;
import javax.swing.JComboBox;
import javax.swing.JComponent;
import javax.swing.JDialog;
import javax.swing.JFileChooser;
import javax.swing.JPanel;
import javax.swing.JScrollPane;
import javax.swing.JTextField;
import javax.swing.KeyStroke;
import javax.swing.plaf.basic.BasicComboBoxRenderer;
import ui.frmwork.plaz.browser.Snapshot.Item;
import ui.frmwork.plaz.browser.Snapshot.Store;
import ui.frmwork.plaz.host.PlazHost.Input;

/**
 * Hub, own stores, proxy and directories. What is given is looked at first; what is changed becomes operations, whose
 * outcome stands among the messages.
 */
final class SettingsDialog extends JDialog {
    private static final long serialVersionUID = 1;
    private static final String SAMPLE = "sample";
    private static final String STORES_PATH_NOTE =
            "Holds from the next start on. What is installed now stays in the old place and is not listed from the new "
            + "one; leave the field empty, and from the start after that it is again.";

    private final transient Snapshot snapshot;
    private final transient Consumer<Operation> submit;
    private final CheckedField hub = new CheckedField("hub", Input.URL);
    private final CheckedField newName = new CheckedField("newStoreName", Input.STORE_NAME);
    private final CheckedField newUrl = new CheckedField("newStoreUrl", Input.URL);
    private final JTextField newFile = Look.named("newStoreFile", new JTextField());
    private final JCheckBox ofBoards = Look.named("newStoreOfBoards", new JCheckBox("It holds boards"));
    private final JComboBox<String> ownStores = Look.named("ownStores", new JComboBox<>());
    private final CheckedField proxy = new CheckedField("proxy", Input.PROXY);
    private final CheckedField storesPath = new CheckedField("storesPath", Input.DIRECTORY);
    private final JComboBox<String> store = new JComboBox<>();
    private final CheckedField directory = new CheckedField("storeDirectory", Input.DIRECTORY);
    private final transient Map<String, String> typed = new HashMap<>();
    private final SettingsForm form = new SettingsForm();
    private final JScrollPane scrolled = new JScrollPane(form);

    SettingsDialog(Frame owner, Snapshot snapshot, Consumer<Operation> submit) {
        super(owner, "Settings", true);
        this.snapshot = snapshot;
        this.submit = submit;
        setName("settings");
        fill();
        addHubRows();
        addPlaceRows();
        scrolled.setBorder(null);
        scrolled.getVerticalScrollBar().setUnitIncrement(Look.lineHeight(this));
        add(scrolled);
        add(buttons(), BorderLayout.PAGE_END);
        getRootPane().registerKeyboardAction(
                event -> dispose(), KeyStroke.getKeyStroke(KeyEvent.VK_ESCAPE, 0), JComponent.WHEN_IN_FOCUSED_WINDOW);
        addWindowListener(new WindowAdapter() {
            @Override
            public void windowOpened(WindowEvent event) {
                hub.field().requestFocusInWindow();
            }
        });
        pack();
        Dimension screen = getToolkit().getScreenSize();
        setSize(Math.min(getWidth() + 2 * Look.lineHeight(this), screen.width), Math.min(getHeight(), screen.height));
        showWhole();
        setLocationRelativeTo(owner);
    }

    /** Gets as high as its texts need, which wrap as wide as it is, where the screen has room. */
    private void showWhole() {
        validate();
        int hidden = form.getPreferredSize().height - scrolled.getViewport().getHeight();
        int room = getToolkit().getScreenSize().height - getY() - getHeight();
        if (hidden > 0) setSize(getWidth(), getHeight() + Math.max(0, Math.min(hidden, room)));
    }

    private void fill() {
        proxy.setText(snapshot.proxy());
        storesPath.setText(snapshot.storesPath());
        snapshot.hub().ownStores().forEach(ownStores::addItem);
        snapshot.listedStores(Scope.ALL).forEach(each -> store.addItem(each.name()));
        ownStores.setRenderer(plainRenderer());
        store.setRenderer(plainRenderer());
        snapshot.stores().forEach(each -> typed.put(each.name(), each.directory()));
        store.addItemListener(this::changeStore);
        directory.setText(typed.getOrDefault(store.getSelectedItem(), ""));
    }

    private static BasicComboBoxRenderer plainRenderer() {
        BasicComboBoxRenderer renderer = Look.plain(new BasicComboBoxRenderer());
        int gap = Look.gap(renderer);
        renderer.setBorder(BorderFactory.createEmptyBorder(gap / 2, gap, gap / 2, gap));
        return renderer;
    }

    private void addHubRows() {
        String url = snapshot.hub().url();
        String shown = url.isEmpty() ? snapshot.hub().metadata() : url + "  (" + snapshot.hub().chooser() + ")";
        form.addHeading("Hub");
        form.addRow("In force:", 'F', Look.readOnlyText("hubInForce", shown),
                button("unsetHub", "Use the installation's", 'I', this::leaveHub));
        form.addRow("URL, or \"sample\":", 'U', hub, button("setHub", "Use this", 'T', this::chooseHub));
        form.addHeading("Your own stores");
        JButton remove = button("removeStore", "Remove", 'M', this::removeStore);
        form.addRow("Added:", 'D', ownStores, remove);
        form.addRow("Name of a new one:", 'N', newName, ofBoards);
        form.addRow("Its URL:", 'L', newUrl, null);
        form.addRow("Its metadata file, if unusual:", 'G', newFile, button("addStore", "Add", 'A', this::addStore));
        boolean areThere = ownStores.getItemCount() > 0;
        ownStores.setEnabled(areThere);
        remove.setEnabled(areThere);
    }

    private void addPlaceRows() {
        form.addHeading("Network and places");
        form.addRow("Proxy:", 'P', proxy, null);
        form.addRow("Keep all stores below:", 'K', storesPath, browse('B', storesPath));
        form.addNote("storesPathNote", STORES_PATH_NOTE);
        form.addRow("Store:", 'S', store, null);
        form.addRow("Keep it in:", 'E', directory, browse('R', directory));
    }

    private static JButton button(String name, String text, char mnemonic, Runnable work) {
        JButton button = Look.named(name, new JButton(text));
        button.setMnemonic(mnemonic);
        button.addActionListener(event -> work.run());
        return button;
    }

    private JButton browse(char mnemonic, CheckedField field) {
        return button("", "Browse ...", mnemonic, () -> {
            JFileChooser chooser = new JFileChooser(field.getText());
            chooser.setFileSelectionMode(JFileChooser.DIRECTORIES_ONLY);
            if (chooser.showDialog(this, "Choose") == JFileChooser.APPROVE_OPTION)
                field.setText(chooser.getSelectedFile().getPath().replace(File.separatorChar, '/'));
        });
    }

    private JPanel buttons() {
        JButton apply = button("apply", "OK", 'O', () -> apply(List.of()));
        getRootPane().setDefaultButton(apply);
        int gap = 2 * Look.gap(form);
        JPanel buttons = new JPanel(new FlowLayout(FlowLayout.TRAILING, gap, gap));
        buttons.setBorder(BorderFactory.createMatteBorder(1, 0, 0, 0, Look.colours().line()));
        buttons.add(apply);
        buttons.add(button("leave", "Cancel", 'C', this::dispose));
        return buttons;
    }

    private void leaveHub() {
        hub.setText(""); // one way or the other
        apply(List.of(Operation.leaveHub()));
    }

    private void chooseHub() {
        if (isHubTyped() || hub.isGiven()) apply(List.of());
        else showWhole();
    }

    private void addStore() {
        if (isStoreTyped() || newName.isGiven() & newUrl.isGiven()) apply(List.of());
        else showWhole();
    }

    private void removeStore() {
        if (ownStores.getSelectedItem() instanceof String name) apply(List.of(Operation.removeStore(name)));
    }

    private boolean isHubTyped() {
        return !hub.getText().isEmpty();
    }

    private boolean isStoreTyped() {
        return !(newName.getText() + newUrl.getText() + newFile.getText()).isBlank();
    }

    /**
     * Does all that was typed, whichever button it stands beside, or nothing: what is left out would seem to be done.
     *
     * @param asked what a button does besides
     */
    private void apply(List<Operation> asked) {
        typed.put((String) store.getSelectedItem(), directory.getText());
        if (!areAllFit()) {
            showWhole();
            return;
        }
        if (isStoresPathChanged() && snapshot.items().anyMatch(Item::isInstalled)) askToLeaveItems(() -> take(asked));
        else take(asked);
    }

    private boolean isStoresPathChanged() {
        return !storesPath.getText().equals(snapshot.storesPath());
    }

    private void askToLeaveItems(Runnable go) {
        long count = snapshot.items().filter(Item::isInstalled).count();
        String place = storesPath.getText().isEmpty() ? "at their default place" : "below " + storesPath.getText();
        String before = snapshot.storesPath().isEmpty() ? "an empty field" : "the old directory in the field";
        new DecisionDialog(this, "leaveItems", "Keep all stores elsewhere",
                "From the next start on, stores are kept " + place + ". What is installed now (" + count
                        + (count == 1 ? " item" : " items")
                        + ") stays where it is, and is listed no more from then on, "
                        + "unless its store is kept in a directory of its own. With " + before + " it is listed again.",
                "Go ahead")
                .ask(go);
    }

    private void take(List<Operation> asked) {
        moveStores();
        asked.forEach(submit);
        if (isHubTyped()) submit.accept(Operation.chooseHub(hub.getText()));
        if (isStoreTyped())
            submit.accept(Operation.addStore(
                    newName.getText(), newUrl.getText(), newFile.getText().strip(), ofBoards.isSelected()));
        // Last: another hub that is built by then would look for its stores there already.
        if (isStoresPathChanged()) submit.accept(Operation.setStoresPath(storesPath.getText()));
        dispose();
    }

    private boolean areAllFit() {
        boolean areFit = hub.isUnchangedOrFit(SAMPLE);
        areFit &= isStoreTyped() ? newName.isGiven() & newUrl.isGiven()
                                 : newName.isUnchangedOrFit("") & newUrl.isUnchangedOrFit("");
        areFit &= proxy.isUnchangedOrFit(snapshot.proxy()) & storesPath.isUnchangedOrFit(snapshot.storesPath());
        for (Store each : snapshot.stores()) areFit &= isFit(each);
        return areFit;
    }

    private void moveStores() {
        if (!proxy.getText().equals(snapshot.proxy())) submit.accept(Operation.setProxy(proxy.getText()));
        for (Store each : snapshot.stores())
            if (isMoved(each)) submit.accept(Operation.move(each.name(), typed.get(each.name())));
    }

    private boolean isMoved(Store each) {
        String wanted = typed.get(each.name());
        return !wanted.isEmpty() && !wanted.equals(each.directory());
    }

    /** Shows the store whose directory cannot be. */
    private boolean isFit(Store each) {
        if (!isMoved(each) || HubThread.refusal(Input.DIRECTORY, typed.get(each.name())).isEmpty()) return true;
        store.setSelectedItem(each.name());
        return directory.isUnchangedOrFit(each.directory());
    }

    /** What was typed for one store is there again when that one is chosen again, and counts in the end. */
    private void changeStore(ItemEvent event) {
        String name = (String) event.getItem();
        if (event.getStateChange() == ItemEvent.DESELECTED) typed.put(name, directory.getText());
        else directory.setText(typed.get(name));
    }
}
