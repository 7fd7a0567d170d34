package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import java.awt.CardLayout;
import java.awt.Component;
import java.awt.FlowLayout;
import java.awt.KeyboardFocusManager;
import java.awt.Rectangle;
import java.awt.event.ComponentAdapter;
import java.awt.event.ComponentEvent;
import java.net.URI;
import java.util.List;
import java.util.function.Consumer;
import javax.swing.Action;
import javax.swing.BorderFactory;
import javax.swing.Box;
import javax.swing.JButton;
import javax.swing.JCheckBox;
import javax.swing.JComponent;
import javax.swing.JLabel;
import javax.swing.JPanel;
import javax.swing.JScrollPane;
import javax.swing.JSplitPane;
import javax.swing.JTextArea;
import javax.swing.JTextField;
import javax.swing.KeyStroke;
import javax.swing.SwingUtilities;
import ui.frmwork.plaz.browser.Snapshot.Key;

/** What the window is made of, and where it stands. */
final class BrowserPanes extends JPanel {
    private static final long serialVersionUID = 1;
    private static final int CRAMPED_LINES = 54;
    private static final int MESSAGE_LINES = 6;

    private final LogoCache logos = new LogoCache();
    final StoreTree stores = Look.named("stores", new StoreTree());
    final ItemTable items = Look.named("items", new ItemTable(logos));
    final JTextField search = Look.named("search", new JTextField(12));
    final JCheckBox installed = Look.named("installed", new JCheckBox("Installed"));
    final JCheckBox outdated = Look.named("outdated", new JCheckBox("Outdated"));
    final MessagePane messages = new MessagePane();
    final ErrorBar failure;
    final DetailPane details;
    final StatusBar status;
    private final JLabel summary = Look.plain(new JLabel());
    private final JTextArea hint = Look.readOnlyText("What to do", "");
    private final JButton chooseHub;
    private final JPanel itemCards = new JPanel(new CardLayout());
    private final BrowserActions actions;
    private final JPanel below = new JPanel(new BorderLayout());
    private JPanel tools;
    private JSplitPane left;
    private JSplitPane right;
    private JSplitPane bottom;
    private int raisedBottom = -1;
    private int wantedBottom;
    private int gap;
    private boolean isCramped;
    private boolean haveColumnsWidths;

    BrowserPanes(BrowserActions actions, Consumer<Key> jump, Consumer<URI> openPage, Consumer<List<Message>> advise) {
        super(new BorderLayout());
        this.actions = actions;
        details = new DetailPane(logos, jump, openPage);
        status = new StatusBar(actions.cancel);
        failure = new ErrorBar(advise);
        chooseHub = Look.named("chooseHub", new JButton(actions.settings));
        chooseHub.setText("Choose a hub ...");
        installed.setMnemonic('L');
        outdated.setMnemonic('D');
        arrange();
        addComponentListener(new ComponentAdapter() {
            @Override
            public void componentResized(ComponentEvent event) {
                if (isWidthCramped() != isCramped) arrangeAnew(details.snapshot());
            }
        });
    }

    /** Puts everything into its place, with distances that go with the size of the texts. */
    private void arrange() {
        removeAll();
        itemCards.removeAll();
        gap = Look.gap(this);
        isCramped = isWidthCramped();
        itemCards.add(new JScrollPane(items), "items");
        itemCards.add(hintPlace(), "hint");
        JPanel itemPlace = new JPanel(new BorderLayout());
        itemPlace.add(filters(), BorderLayout.PAGE_START);
        itemPlace.add(itemCards);
        right = split(JSplitPane.HORIZONTAL_SPLIT, pane("Items", 'E', items, itemPlace, summary),
                pane("Details", 'A', details, scrolled(details), null), 0.6);
        left = split(JSplitPane.HORIZONTAL_SPLIT, pane("Stores", 'O', stores, scrolled(stores), null), right, 0);
        bottom = split(JSplitPane.VERTICAL_SPLIT, left, pane("Messages", 'M', messages, scrolled(messages), null), 1);
        below.removeAll();
        below.add(failure); // where it comes and goes without moving what one is about to click on
        below.add(status, BorderLayout.PAGE_END);
        tools = toolBar();
        add(tools, BorderLayout.PAGE_START);
        add(bottom);
        add(below, BorderLayout.PAGE_END);
        setBorder(BorderFactory.createEmptyBorder(0, gap, gap, gap));
    }

    private boolean isWidthCramped() {
        return getWidth() > 0 && getWidth() < CRAMPED_LINES * Look.lineHeight(this);
    }

    /** After the look, the size of the texts or that of the window was changed. */
    void arrangeAnew(Snapshot snapshot) {
        Component focused = KeyboardFocusManager.getCurrentKeyboardFocusManager().getFocusOwner();
        int[] dividers = {left.getDividerLocation(), right.getDividerLocation(), bottom.getDividerLocation()};
        boolean areItemsShown = hint.getText().isEmpty();
        int height = bottom.getHeight();
        arrange();
        showCard(areItemsShown);
        left.setDividerLocation(dividers[0]);
        right.setDividerLocation(dividers[1]);
        // What is too low for large texts is as low again for smaller ones.
        if (dividers[2] != raisedBottom) wantedBottom = dividers[2];
        raisedBottom = Math.min(wantedBottom, height - MESSAGE_LINES * Look.lineHeight(this));
        bottom.setDividerLocation(raisedBottom);
        SwingUtilities.updateComponentTreeUI(this);
        details.build(snapshot);
        messages.showAnew();
        revalidate();
        if (focused != null && isAncestorOf(focused)) focused.requestFocusInWindow();
        SwingUtilities.invokeLater(() -> details.scrollRectToVisible(new Rectangle(1, 1)));
    }

    void place(WindowState state) {
        int width = getTopLevelAncestor().getWidth();
        setSize(width, 1); // what is arranged goes by it
        arrange();
        int height = getTopLevelAncestor().getHeight();
        left.setDividerLocation(state.number("left", 20, 4000).orElse(width / 5));
        right.setDividerLocation(state.number("right", 20, 4000).orElse(width * 46 / 100));
        int room = height - tools.getPreferredSize().height - status.getPreferredSize().height;
        int highest = room - (MESSAGE_LINES - 1) * Look.lineHeight(this);
        bottom.setDividerLocation(state.number("bottom", 20, 4000).orElse(Math.min(height * 66 / 100, highest)));
        haveColumnsWidths = state.applyColumns(items);
    }

    /** The first items decide how wide columns are of which nothing is kept. */
    void show(Snapshot snapshot) {
        logos.show(snapshot);
        stores.show(snapshot.stores());
        items.show(snapshot.items().toList());
        if (haveColumnsWidths || items.getRowCount() == 0) return;
        haveColumnsWidths = true;
        items.fitColumns();
    }

    void keep(WindowState state) {
        state.set("left", left.getDividerLocation());
        state.set("right", right.getDividerLocation());
        state.set("bottom", bottom.getDividerLocation() + (failure.isVisible() ? failure.getHeight() : 0));
        state.setColumns(items);
    }

    /** @param instead shown in the place of the items; empty to show these */
    void showHints(String above, String instead, boolean isHubEmpty) {
        chooseHub.setVisible(isHubEmpty);
        summary.setText(above);
        hint.setText(instead);
        showCard(instead.isEmpty());
    }

    private void showCard(boolean areItemsShown) {
        ((CardLayout) itemCards.getLayout()).show(itemCards, areItemsShown ? "items" : "hint");
    }

    ItemFilter filter() {
        return ItemFilter.of(stores.chosen(), search.getText(), installed.isSelected(), outdated.isSelected());
    }

    private JPanel toolBar() {
        JPanel buttons = new JPanel(new FlowLayout(FlowLayout.LEADING, gap, gap));
        for (Action each : new Action[] {actions.install, actions.uninstall, actions.update})
            buttons.add(BrowserActions.button(each));
        buttons.add(Box.createHorizontalStrut(2 * gap));
        for (Action each : new Action[] {actions.refresh, actions.check}) buttons.add(BrowserActions.button(each));
        return buttons;
    }

    /** The boxes stand below the search field where there is little room. */
    private JPanel filters() {
        Box boxes = Box.createHorizontalBox();
        boxes.add(installed);
        boxes.add(Box.createHorizontalStrut(gap));
        boxes.add(outdated);
        JPanel filters = new JPanel(new BorderLayout(gap, gap / 2));
        filters.add(Look.label("Search:", 'H', search), BorderLayout.LINE_START);
        filters.add(search);
        filters.add(boxes, isCramped ? BorderLayout.PAGE_END : BorderLayout.LINE_END);
        filters.setBorder(BorderFactory.createEmptyBorder(0, gap, gap, gap));
        return filters;
    }

    private JScrollPane hintPlace() {
        hint.setBorder(BorderFactory.createEmptyBorder(4 * gap, 4 * gap, 4 * gap, 4 * gap));
        JPanel content = new JPanel(new BorderLayout());
        content.setOpaque(false);
        content.add(hint, BorderLayout.PAGE_START);
        JPanel under = new JPanel(new FlowLayout(FlowLayout.LEADING, 4 * gap, 0));
        under.setOpaque(false);
        under.add(chooseHub);
        content.add(under);
        JScrollPane place = scrolled(content);
        place.getViewport().setBackground(Look.colours().surface());
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
