package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import java.awt.CardLayout;
import java.awt.Color;
import java.awt.Component;
import java.awt.FlowLayout;
import java.net.URI;
import java.util.function.Consumer;
import javax.swing.Action;
import javax.swing.BorderFactory;
import javax.swing.Box;
import javax.swing.JCheckBox;
import javax.swing.JComponent;
import javax.swing.JLabel;
import javax.swing.JPanel;
import javax.swing.JScrollPane;
import javax.swing.JSplitPane;
import javax.swing.JTextArea;
import javax.swing.JTextField;
import javax.swing.KeyStroke;
import ui.frmwork.plaz.browser.Snapshot.Key;

/** What the window is made of, and where it stands. */
final class BrowserPanes extends JPanel {
    private static final long serialVersionUID = 1;

    final StoreTree stores = Look.named("stores", new StoreTree());
    final ItemTable items = Look.named("items", new ItemTable());
    final JTextField search = Look.named("search", new JTextField(12));
    final JCheckBox installed = Look.named("installed", new JCheckBox("Installed"));
    final JCheckBox outdated = Look.named("outdated", new JCheckBox("Outdated"));
    final MessagePane messages = new MessagePane();
    final DetailPane details;
    final StatusBar status;
    private final JLabel summary = Look.plain(new JLabel());
    private final JTextArea hint = Look.readOnlyText("What to do", "");
    private final JPanel itemCards = new JPanel(new CardLayout());
    private final JSplitPane left;
    private final JSplitPane right;
    private final JSplitPane bottom;
    private final int gap = Look.gap(this);

    BrowserPanes(BrowserActions actions, Consumer<Key> jump, Consumer<URI> openPage) {
        super(new BorderLayout());
        details = new DetailPane(jump, openPage);
        status = new StatusBar(actions.cancel);
        itemCards.add(new JScrollPane(items), "items");
        itemCards.add(hintPlace(), "hint");
        JPanel itemPlace = new JPanel(new BorderLayout());
        itemPlace.add(filters(), BorderLayout.PAGE_START);
        itemPlace.add(itemCards);
        right = split(JSplitPane.HORIZONTAL_SPLIT, pane("Items", 'E', items, itemPlace, summary),
                pane("Details", 'A', details, scrolled(details), null), 0.6);
        left = split(JSplitPane.HORIZONTAL_SPLIT, pane("Stores", 'O', stores, scrolled(stores), null), right, 0);
        bottom = split(JSplitPane.VERTICAL_SPLIT, left, pane("Messages", 'M', messages, scrolled(messages), null), 1);
        add(toolBar(actions), BorderLayout.PAGE_START);
        add(bottom);
        add(status, BorderLayout.PAGE_END);
        setBorder(BorderFactory.createEmptyBorder(gap, gap, gap, gap));
    }

    void place(WindowState state) {
        int width = getTopLevelAncestor().getWidth();
        int height = getTopLevelAncestor().getHeight();
        left.setDividerLocation(state.number("left", 20, 4000).orElse(width / 6));
        right.setDividerLocation(state.number("right", 20, 4000).orElse(width * 54 / 100));
        bottom.setDividerLocation(state.number("bottom", 20, 4000).orElse(height * 66 / 100));
        state.applyColumns(items);
    }

    void keep(WindowState state) {
        state.set("left", left.getDividerLocation());
        state.set("right", right.getDividerLocation());
        state.set("bottom", bottom.getDividerLocation());
        state.setColumns(items);
    }

    /** @param instead shown in the place of the items; empty to show these */
    void showHints(String above, String instead) {
        summary.setText(above);
        hint.setText(instead);
        ((CardLayout) itemCards.getLayout()).show(itemCards, instead.isEmpty() ? "items" : "hint");
    }

    ItemFilter filter() {
        return ItemFilter.of(stores.chosen(), search.getText(), installed.isSelected(), outdated.isSelected());
    }

    private JPanel toolBar(BrowserActions actions) {
        JPanel buttons = new JPanel(new FlowLayout(FlowLayout.LEADING, gap, gap));
        for (Action each : new Action[] {actions.install, actions.uninstall, actions.update})
            buttons.add(BrowserActions.button(each));
        buttons.add(Box.createHorizontalStrut(2 * gap));
        for (Action each : new Action[] {actions.refresh, actions.check}) buttons.add(BrowserActions.button(each));
        return buttons;
    }

    /** The search field gives way where there is little room. */
    private JPanel filters() {
        installed.setMnemonic('L');
        outdated.setMnemonic('D');
        Box boxes = Box.createHorizontalBox();
        boxes.add(installed);
        boxes.add(Box.createHorizontalStrut(gap));
        boxes.add(outdated);
        JPanel filters = new JPanel(new BorderLayout(gap, 0));
        filters.add(Look.label("Search:", 'H', search), BorderLayout.LINE_START);
        filters.add(search);
        filters.add(boxes, BorderLayout.LINE_END);
        filters.setBorder(BorderFactory.createEmptyBorder(0, gap, gap, gap));
        return filters;
    }

    private JScrollPane hintPlace() {
        hint.setBorder(BorderFactory.createEmptyBorder(4 * gap, 4 * gap, 4 * gap, 4 * gap));
        JScrollPane place = scrolled(hint);
        place.getViewport().setBackground(Color.WHITE);
        return place;
    }

    private static JScrollPane scrolled(JComponent component) {
        JScrollPane pane = new JScrollPane(component);
        pane.getVerticalScrollBar().setUnitIncrement(Look.lineHeight(component));
        return pane;
    }

    private JPanel pane(String heading, char mnemonic, JComponent labelled, JComponent content, JComponent beside) {
        JPanel head = new JPanel(new BorderLayout(gap, 0));
        head.add(Look.label(heading, mnemonic, labelled), BorderLayout.LINE_START);
        if (beside != null) head.add(beside, BorderLayout.LINE_END);
        head.setBorder(BorderFactory.createEmptyBorder(0, gap, gap, gap));
        JPanel pane = new JPanel(new BorderLayout());
        pane.add(head, BorderLayout.PAGE_START);
        pane.add(content);
        return pane;
    }

    private JSplitPane split(int orientation, Component first, Component second, double weight) {
        JSplitPane pane = new JSplitPane(orientation, true, first, second);
        pane.setResizeWeight(weight);
        pane.setBorder(null);
        // It would take this key from the menu, for a step to its other side.
        pane.getInputMap(WHEN_ANCESTOR_OF_FOCUSED_COMPONENT).put(KeyStroke.getKeyStroke("F6"), "none");
        return pane;
    }
}
