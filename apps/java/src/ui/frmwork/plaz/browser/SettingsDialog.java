package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import java.awt.FlowLayout;
import java.awt.Frame;
import java.awt.GridBagConstraints;
import java.awt.GridBagLayout;
import java.awt.Insets;
import java.awt.event.ItemEvent;
import java.awt.event.KeyEvent;
import java.io.File;
import java.util.HashMap;
import java.util.Map;
import java.util.function.Consumer;
import javax.swing.BorderFactory;
import javax.swing.JButton;
import javax.swing.JComboBox;
import javax.swing.JComponent;
import javax.swing.JDialog;
import javax.swing.JFileChooser;
import javax.swing.JPanel;
import javax.swing.JTextField;
import javax.swing.KeyStroke;
import javax.swing.plaf.basic.BasicComboBoxRenderer;
import ui.frmwork.plaz.browser.Snapshot.Store;

/** Proxy and directories. What is changed there becomes operations, whose outcome stands among the messages. */
final class SettingsDialog extends JDialog {
    private static final long serialVersionUID = 1;

    private final transient Snapshot snapshot;
    private final transient Consumer<Operation> submit;
    private final JTextField proxy = field("proxy");
    private final JTextField storesPath = field("storesPath");
    private final JComboBox<String> store = new JComboBox<>();
    private final JTextField directory = field("storeDirectory");
    private final transient Map<String, String> typed = new HashMap<>();
    private final JPanel form = new JPanel(new GridBagLayout());
    private int row;

    SettingsDialog(Frame owner, Snapshot snapshot, Consumer<Operation> submit) {
        super(owner, "Settings", true);
        this.snapshot = snapshot;
        this.submit = submit;
        setName("settings");
        proxy.setText(snapshot.proxy());
        storesPath.setText(snapshot.storesPath());
        snapshot.stores().forEach(each -> store.addItem(each.name()));
        store.setRenderer(Look.plain(new BasicComboBoxRenderer()));
        snapshot.stores().forEach(each -> typed.put(each.name(), each.directory()));
        store.addItemListener(this::changeStore);
        directory.setText(typed.getOrDefault(store.getSelectedItem(), ""));
        addRow("Proxy:", 'P', proxy, null);
        addRow("Keep all stores below:", 'A', storesPath, browse('B', storesPath));
        addRow("Store:", 'S', store, null);
        addRow("Keep it in:", 'I', directory, browse('R', directory));
        int gap = 2 * Look.gap(form);
        form.setBorder(BorderFactory.createEmptyBorder(gap, gap, 0, gap));
        add(form);
        add(buttons(), BorderLayout.PAGE_END);
        getRootPane().registerKeyboardAction(
                event -> dispose(), KeyStroke.getKeyStroke(KeyEvent.VK_ESCAPE, 0), JComponent.WHEN_IN_FOCUSED_WINDOW);
        pack();
        setLocationRelativeTo(owner);
    }

    private static JTextField field(String name) {
        return Look.named(name, new JTextField(36));
    }

    private void addRow(String text, char mnemonic, JComponent field, JButton button) {
        GridBagConstraints place = new GridBagConstraints();
        place.gridy = row++;
        place.insets = new Insets(Look.gap(form), 0, Look.gap(form), Look.gap(form));
        place.anchor = GridBagConstraints.LINE_START;
        form.add(Look.label(text, mnemonic, field), place);
        place.fill = GridBagConstraints.HORIZONTAL;
        place.weightx = 1;
        form.add(field, place);
        place.weightx = 0;
        if (button != null) form.add(button, place);
    }

    private JButton browse(char mnemonic, JTextField field) {
        JButton button = new JButton("Browse ...");
        button.setMnemonic(mnemonic);
        button.addActionListener(event -> {
            JFileChooser chooser = new JFileChooser(field.getText());
            chooser.setFileSelectionMode(JFileChooser.DIRECTORIES_ONLY);
            if (chooser.showDialog(this, "Choose") == JFileChooser.APPROVE_OPTION)
                field.setText(chooser.getSelectedFile().getPath().replace(File.separatorChar, '/'));
        });
        return button;
    }

    private JPanel buttons() {
        JButton apply = Look.named("apply", new JButton("OK"));
        apply.addActionListener(event -> {
            apply();
            dispose();
        });
        getRootPane().setDefaultButton(apply);
        JButton leave = new JButton("Cancel");
        leave.addActionListener(event -> dispose());
        int gap = 2 * Look.gap(form);
        JPanel buttons = new JPanel(new FlowLayout(FlowLayout.TRAILING, gap, gap));
        buttons.add(apply);
        buttons.add(leave);
        return buttons;
    }

    private void apply() {
        if (isChanged(proxy, snapshot.proxy())) submit.accept(Operation.setProxy(proxy.getText().strip()));
        if (isChanged(storesPath, snapshot.storesPath()))
            submit.accept(Operation.setStoresPath(storesPath.getText().strip()));
        typed.put((String) store.getSelectedItem(), directory.getText().strip());
        for (Store each : snapshot.stores()) {
            String wanted = typed.get(each.name());
            if (!wanted.isEmpty() && !wanted.equals(each.directory()))
                submit.accept(Operation.move(each.name(), wanted));
        }
    }

    private static boolean isChanged(JTextField field, String before) {
        return !field.getText().strip().equals(before);
    }

    /** What was typed for one store is there again when that one is chosen again, and counts in the end. */
    private void changeStore(ItemEvent event) {
        String name = (String) event.getItem();
        if (event.getStateChange() == ItemEvent.DESELECTED) typed.put(name, directory.getText().strip());
        else directory.setText(typed.get(name));
    }
}
