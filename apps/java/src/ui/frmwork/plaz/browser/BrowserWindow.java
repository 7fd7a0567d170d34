package ui.frmwork.plaz.browser;

import java.awt.Dimension;
import java.awt.Rectangle;
import java.awt.Window;
import java.awt.event.WindowAdapter;
import java.awt.event.WindowEvent;
import java.io.IOException;
import java.nio.file.Path;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.Optional;
import java.util.function.Function;
import javax.swing.JComponent;
import javax.swing.JFrame;
import javax.swing.KeyStroke;
import javax.swing.SwingUtilities;
import javax.swing.event.DocumentEvent;
import javax.swing.event.DocumentListener;
import javax.swing.event.ListSelectionEvent;
import ui.frmwork.plaz.browser.Look.Theme;
import ui.frmwork.plaz.browser.Snapshot.Item;
import ui.frmwork.plaz.browser.Snapshot.Key;
import ui.frmwork.plaz.browser.Snapshot.Store;
import ui.frmwork.plaz.host.PlazHost.Change;
import ui.frmwork.plaz.host.PlazHost.Entry;
import ui.frmwork.plaz.host.PlazHost.Severity;
import ui.frmwork.plaz.host.PlazHost.Step;

/** The window: shows the newest {@link Snapshot}, and hands what is to be done to the {@link HubThread}. */
final class BrowserWindow extends JFrame implements HubListener {
    private static final long serialVersionUID = 1;
    private static final String TITLE = "Catalog browser";
    private static final int LEAST_TEXT_SIZE = 60;
    private static final int MOST_TEXT_SIZE = 250;

    private final transient HubThread hub;
    private final transient DesktopSettings desktop;
    private final transient WindowState state;
    private final transient BrowserActions actions;
    private final BrowserPanes panes;
    private final transient Map<String, String> compared = new HashMap<>();
    private transient Snapshot snapshot;
    private int textSize;
    private Theme theme;
    private boolean isWorking;
    private boolean isEnding;
    private boolean isChanging;

    /** @param directory where the window's state is kept */
    BrowserWindow(HubThread hub, Path directory, DesktopSettings desktop) {
        super(TITLE);
        this.hub = hub;
        this.desktop = desktop;
        state = new WindowState(directory);
        textSize = state.number("text", LEAST_TEXT_SIZE, MOST_TEXT_SIZE).orElse(100);
        theme = Theme.values()[state.number("theme", 0, Theme.values().length - 1).orElse(0)];
        Look.apply(desktop, theme, textSize);
        actions = new BrowserActions(this);
        panes = new BrowserPanes(actions, this::jump,
                page -> told(WebLink.open(page)), failures -> GuideDialog.showAdvice(this, failures));
        setIconImages(ProgramIcon.sizes());
        setContentPane(panes);
        setJMenuBar(actions.menus());
        SwingUtilities.updateComponentTreeUI(this); // what was made before the look was set
        listen();
        bindKeys();
    }

    /** Shows the window and starts the hub. */
    void open() {
        Dimension screen = getToolkit().getScreenSize();
        int width = Math.min(1200, screen.width);
        int height = Math.min(800, screen.height);
        setBounds(state.bounds(new Rectangle((screen.width - width) / 2, (screen.height - height) / 2, width, height)));
        panes.place(state);
        filter();
        setVisible(true);
        panes.search.requestFocusInWindow();
        hub.start(this);
    }

    private void listen() {
        setDefaultCloseOperation(DO_NOTHING_ON_CLOSE);
        addWindowListener(new WindowAdapter() {
            @Override
            public void windowClosing(WindowEvent event) {
                close();
            }
        });
        panes.stores.addTreeSelectionListener(event -> filter());
        panes.items.getSelectionModel().addListSelectionListener(this::chosen);
        panes.installed.addActionListener(event -> filter());
        panes.outdated.addActionListener(event -> filter());
        panes.search.getDocument().addDocumentListener(new DocumentListener() {
            @Override
            public void insertUpdate(DocumentEvent event) {
                filter();
            }

            @Override
            public void removeUpdate(DocumentEvent event) {
                filter();
            }

            @Override
            public void changedUpdate(DocumentEvent event) {
                filter();
            }
        });
    }

    private void bindKeys() {
        bind("ESCAPE", this::escape);
        for (String plus : List.of("control PLUS", "control ADD", "control shift EQUALS"))
            bind(plus, () -> resizeText(10));
        bind("control SUBTRACT", () -> resizeText(-10));
    }

    private void bind(String key, Runnable work) {
        getRootPane().registerKeyboardAction(
                event -> work.run(), KeyStroke.getKeyStroke(key), JComponent.WHEN_IN_FOCUSED_WINDOW);
    }

    // What a person does.

    void submitForItem(Function<Key, Operation> operation) {
        panes.items.chosen().ifPresent(item -> submit(operation.apply(item.key())));
    }

    /** What changes more than the item is shown first. */
    void planForItem(Change change, Function<Key, Operation> operation) {
        panes.items.chosen().ifPresent(item -> hub.plan(change, item.key(), operation.apply(item.key())));
    }

    @Override
    public void planned(Operation operation, List<Step> steps) {
        if (isEnding) return;
        if (steps.size() < 2) submit(operation);
        else new PlanDialog(this, operation.title(), steps).ask(() -> submit(operation));
    }

    void updateAll() {
        hub.planUpdateAll(Operation.updateAll());
    }

    /** Holds the chosen item, or does so no longer. */
    void toggleHold() {
        panes.items.chosen().ifPresent(
                item -> submit(item.standing().isHeld() ? Operation.unhold(item.key()) : Operation.hold(item.key())));
    }

    void openHistory() {
        hub.readEntries();
    }

    @Override
    public void entries(List<Entry> entries) {
        if (isEnding) return;
        HistoryDialog dialog = new HistoryDialog(this, entries);
        dialog.ask(() -> dialog.chosen().ifPresent(entry -> submit(Operation.undo(entry.number()))));
    }

    void verifyAll() {
        submit(Operation.verifyAll());
    }

    void submitForStores(Function<String, Operation> operation) {
        for (String store : chosenStores()) submit(operation.apply(store));
    }

    private void submit(Operation operation) {
        if (!hub.isUnderway(operation.title())) begin(operation);
        enableActions();
    }

    /** Whoever begins something has read what failed before. */
    private void begin(Operation operation) {
        panes.failure.setVisible(false);
        hub.submit(operation);
    }

    void cancel() {
        hub.cancel();
        panes.status.begin("Cancelling", 0);
    }

    void openSettings() {
        if (snapshot != null) new SettingsDialog(this, snapshot, this::begin).setVisible(true);
    }

    void openGuide() {
        GuideDialog.showUserGuide(this);
    }

    void showAbout() {
        hub.readGit();
    }

    void find() {
        panes.search.requestFocusInWindow();
        panes.search.selectAll();
    }

    void resizeText(int percent) {
        int size = Math.min(Math.max(textSize + percent, LEAST_TEXT_SIZE), MOST_TEXT_SIZE);
        panes.items.scaleColumns((double) size / textSize);
        textSize = size;
        showAnew();
    }

    Theme theme() {
        return theme;
    }

    void choose(Theme chosen) {
        theme = chosen;
        showAnew();
    }

    private void showAnew() {
        Look.apply(desktop, theme, textSize);
        panes.arrangeAnew(snapshot == null ? Snapshot.NOTHING : snapshot);
        SwingUtilities.updateComponentTreeUI(this);
        for (Window each : getOwnedWindows()) SwingUtilities.updateComponentTreeUI(each);
    }

    /** Asks nothing: what runs is cancelled, and the window goes when the hub has come to rest. */
    void close() {
        if (isEnding) return;
        isEnding = true;
        keepState();
        actions.disable();
        setTitle(TITLE + " - ending");
        panes.status.begin("Ending", 0);
        hub.end();
    }

    private void keepState() {
        Rectangle bounds = getBounds();
        state.set("window", bounds.x, bounds.y, bounds.width, bounds.height);
        state.set("text", textSize);
        state.set("theme", theme.ordinal());
        panes.keep(state);
        try {
            state.save();
        } catch (IOException e) {
            System.err.println("How the window was left cannot be kept: " + e);
        }
    }

    private void escape() {
        if (isWorking) cancel();
        else panes.search.setText("");
    }

    /** Chooses an item; when it is filtered away, the filters go. */
    private void jump(Key key) {
        if (!panes.items.choose(key)) {
            panes.search.setText("");
            panes.installed.setSelected(false);
            panes.outdated.setSelected(false);
            panes.stores.choose(Scope.ALL);
            filter();
            panes.items.choose(key);
        }
        panes.items.requestFocusInWindow();
    }

    private void chosen(ListSelectionEvent event) {
        if (!event.getValueIsAdjusting() && !isChanging) showDetails();
    }

    // What the hub tells.

    @Override
    public void changed(Snapshot newest) {
        if (newest.equals(snapshot)) return;
        snapshot = newest;
        compared.clear(); // what was compared may be gone, or other files
        isChanging = true;
        panes.show(newest);
        isChanging = false;
        filter();
        showDetails();
    }

    @Override
    public void history(Key key, String text) {
        panes.details.showHistory(key, text);
    }

    @Override
    public void compared(Map<String, String> texts) {
        compared.putAll(texts);
        showDetails();
    }

    @Override
    public void git(String version) {
        AboutDialog.show(this, version);
    }

    @Override
    public void told(Message message) {
        panes.messages.add(message);
        if (message.severity() == Severity.ERROR) panes.failure.show(message);
        else if (message.namesDoctor()) panes.failure.showDoctor(message);
    }

    @Override
    public void progressed(String text, double percent) {
        if (isWorking && !isEnding) panes.status.show(text, percent);
    }

    @Override
    public void working(String title, int waiting) {
        isWorking = !title.isEmpty() || waiting > 0;
        if (isEnding) return;
        if (!title.isEmpty()) panes.failure.beginOperation();
        if (!title.isEmpty()) panes.status.begin(title, waiting);
        else if (!isWorking) panes.status.rest();
        enableActions();
    }

    @Override
    public void ended() {
        dispose();
    }

    // What follows from both.

    private void filter() {
        if (isChanging) return;
        ItemFilter filter = panes.filter();
        panes.items.filter(filter);
        int seen = panes.items.getRowCount();
        panes.showHints(Hints.above(snapshot, filter.scope(), seen), Hints.instead(snapshot, filter.scope(), seen),
                snapshot != null && snapshot.stores().isEmpty());
        enableActions();
    }

    private void showDetails() {
        Optional<Item> item = panes.items.chosen();
        if (panes.details.show(snapshot, item, compared)) hub.readHistory(item.orElseThrow().key());
        enableActions();
    }

    private void enableActions() {
        if (isEnding) return;
        actions.enable(hub, panes.items.chosen(), chosenStores(), isWorking);
    }

    private List<String> chosenStores() {
        if (snapshot == null) return List.of();
        return snapshot.listedStores(panes.stores.chosen()).stream().map(Store::name).toList();
    }
}
