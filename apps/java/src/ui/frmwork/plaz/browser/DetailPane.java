package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import java.awt.Component;
import java.awt.Font;
import java.awt.GridBagConstraints;
import java.awt.GridBagLayout;
import java.awt.Insets;
import java.awt.Rectangle;
import java.awt.event.ComponentAdapter;
import java.awt.event.ComponentEvent;
import java.net.URI;
import java.util.List;
import java.util.Map;
import java.util.Optional;
import java.util.function.Consumer;
import java.util.stream.Collectors;
import javax.swing.BorderFactory;
import javax.swing.JComponent;
import javax.swing.JLabel;
import javax.swing.JPanel;
import javax.swing.JTextArea;
import javax.swing.SwingConstants;
import ui.frmwork.plaz.browser.Snapshot.Dependency;
import ui.frmwork.plaz.browser.Snapshot.Item;
import ui.frmwork.plaz.browser.Snapshot.Key;
import ui.frmwork.plaz.browser.Snapshot.Revision;

/** Everything that is known of the chosen item. */
final class DetailPane extends ScrolledPanel {
    private static final long serialVersionUID = 1;

    private static final int NARROW_LINES = 24;
    private static final int TIGHT_LINES = 14;

    private final transient Consumer<Key> jump;
    private final transient Consumer<URI> openPage;
    private final transient LogoCache logos;
    private final JTextArea history = Look.readOnlyText("Change log", "");
    private transient Optional<Item> shown = Optional.empty();
    private String comparison = "";
    private transient Snapshot snapshot = Snapshot.NOTHING;
    private transient Runnable picture = () -> {};
    private boolean isNarrow;
    private boolean isTight;
    private int row;

    /**
     * @param jump called for a dependency that is followed
     * @param openPage called for a web page that is followed
     */
    DetailPane(LogoCache logos, Consumer<Key> jump, Consumer<URI> openPage) {
        super(new GridBagLayout());
        this.logos = logos;
        logos.whenLoaded(() -> picture.run());
        this.jump = jump;
        this.openPage = openPage;
        getAccessibleContext().setAccessibleName("Details of the chosen item");
        addComponentListener(new ComponentAdapter() {
            @Override
            public void componentResized(ComponentEvent event) {
                widthChanged();
            }
        });
        build(Snapshot.NOTHING);
    }

    /**
     * @param compared how the files of items compare with those that were installed, by item and revision
     * @return whether there is another item, or the same one changed, so that its change log is to be read
     */
    boolean show(Snapshot newestSnapshot, Optional<Item> item, Map<String, String> compared) {
        String newest = item.map(found -> comparison(found, compared)).orElse("");
        if (item.equals(shown) && newest.equals(comparison)) return false;
        if (!item.map(Item::key).equals(shown.map(Item::key))) {
            history.setText("");
            scrollRectToVisible(new Rectangle(1, 1));
        }
        shown = item;
        comparison = newest;
        build(newestSnapshot);
        return item.isPresent();
    }

    /** The one that was shown last. */
    Snapshot snapshot() {
        return snapshot;
    }

    void showHistory(Key key, String text) {
        if (shown.filter(item -> item.key().equals(key)).isPresent()) history.setText(text.strip());
    }

    /** Builds the same again, in fonts of another size. */
    void build(Snapshot newest) {
        snapshot = newest;
        removeAll();
        setBackground(Look.colours().surface());
        row = 0;
        int gap = 2 * Look.gap(this);
        setBorder(BorderFactory.createEmptyBorder(gap, gap, gap, gap));
        if (shown.isPresent()) build(shown.get());
        else addWide(Look.readOnlyText("Details", "Choose an item."));
        GridBagConstraints rest = new GridBagConstraints();
        rest.gridy = row;
        rest.weighty = 1;
        add(new JLabel(), rest);
        revalidate();
        repaint();
    }

    private void build(Item item) {
        addHead(item);
        if (!item.description().isBlank()) addWide(Look.readOnlyText("Description", item.description()));
        addField("State", item.stateText());
        addField("Company", item.company());
        addField("Author", item.author());
        WebLink.of(item.website())
                .ifPresentOrElse(page
                        -> addField("Web page", link(item.website(), page)),
                        () -> addField("Web page", item.website()));
        addField("Revisions", revisions(item.revisions()));
        addField("Installed in", directories(item.revisions()));
        addField("Verified", comparison);
        addField("Needs", dependencies("Needs", item.dependencies()));
        if (item.isInstalled()) addField("Needed by", dependencies("Needed by", item.standing().neededBy()));
        addField("Change log", history);
    }

    private void addHead(Item item) {
        int size = (isNarrow ? 2 : 3) * Look.lineHeight(this);
        JLabel logo = new JLabel(logos.find(item, size));
        picture = () -> logo.setIcon(logos.find(item, size));
        logo.setHorizontalAlignment(SwingConstants.LEADING);
        GridBagConstraints place = place(0, 1);
        place.weightx = 0;
        add(logo, place);
        JTextArea title = Look.readOnlyText("Name", item.title());
        title.setFont(title.getFont().deriveFont(Font.BOLD, title.getFont().getSize2D() * 1.2f));
        JPanel names = new JPanel(new BorderLayout(0, Look.gap(this)));
        names.setOpaque(false);
        names.add(title);
        names.add(Look.readOnlyText("Item", item.key().at(item.revision())), BorderLayout.PAGE_END);
        if (isTight) {
            ++row;
            addWide(names);
            return;
        }
        GridBagConstraints beside = place(1, 1);
        beside.anchor = GridBagConstraints.LINE_START;
        add(names, beside);
        ++row;
    }

    private LinkButton link(String address, URI page) {
        return new LinkButton("Web page", address, () -> openPage.accept(page));
    }

    private static String revisions(List<Revision> revisions) {
        return String.join("\n",
                revisions.stream()
                        .map(each -> each.directory().isEmpty() ? each.text() : each.text() + "  (installed)")
                        .toList());
    }

    private static String directories(List<Revision> revisions) {
        return String.join("\n", revisions.stream().map(Revision::directory).filter(path -> !path.isEmpty()).toList());
    }

    private static String comparison(Item item, Map<String, String> compared) {
        return item.revisions()
                .stream()
                .map(Revision::text)
                .filter(revision -> compared.containsKey(item.key().at(revision)))
                .map(revision -> (revision + "  " + compared.get(item.key().at(revision))).strip())
                .collect(Collectors.joining("\n"));
    }

    private JComponent dependencies(String name, List<Dependency> needed) {
        JPanel panel = new JPanel(new GridBagLayout());
        panel.setOpaque(false);
        GridBagConstraints line = new GridBagConstraints();
        line.gridx = 0;
        line.weightx = 1;
        line.fill = GridBagConstraints.HORIZONTAL;
        if (needed.isEmpty()) panel.add(Look.readOnlyText(name, "nothing else"), line);
        for (Dependency each : needed) panel.add(dependency(each), line);
        return panel;
    }

    private JComponent dependency(Dependency needed) {
        Key key = needed.key();
        String id = key.toString();
        String named = key.at(needed.revision());
        return snapshot.item(key)
                .<JComponent>map(item -> new LinkButton(id, named + stateIn(item), () -> jump.accept(key)))
                .orElseGet(() -> Look.readOnlyText(id, named + "  (not in the catalog)"));
    }

    private static String stateIn(Item item) {
        return switch (item.state()) {
            case NONE -> "  (not installed)";
            case INSTALLED -> "";
            case OUTDATED -> "  (outdated)";
        };
    }

    private void addField(String name, String text) {
        if (!text.isEmpty()) addField(name, Look.readOnlyText(name, text));
    }

    private void addField(String name, JComponent value) {
        JLabel label = new JLabel(name);
        label.setForeground(Look.colours().quiet());
        label.setLabelFor(value);
        if (isNarrow) {
            GridBagConstraints above = place(0, 2);
            above.insets.bottom = 0;
            add(label, above);
            ++row;
            addWide(value);
            return;
        }
        GridBagConstraints left = place(0, 1);
        left.weightx = 0;
        add(label, left);
        add(value, place(1, 1));
        ++row;
    }

    /** Where there is little room, names stand above what they name, and the picture above the name of the item. */
    private void widthChanged() {
        boolean wasNarrow = isNarrow;
        boolean wasTight = isTight;
        isNarrow = getWidth() < NARROW_LINES * Look.lineHeight(this);
        isTight = getWidth() < TIGHT_LINES * Look.lineHeight(this);
        if (isNarrow != wasNarrow || isTight != wasTight) build(snapshot);
    }

    private void addWide(Component component) {
        add(component, place(0, 2));
        ++row;
    }

    private GridBagConstraints place(int column, int width) {
        GridBagConstraints place = new GridBagConstraints();
        place.gridx = column;
        place.gridy = row;
        place.gridwidth = width;
        place.weightx = 1;
        place.fill = GridBagConstraints.HORIZONTAL;
        place.anchor = GridBagConstraints.FIRST_LINE_START;
        place.insets = new Insets(0, 0, 2 * Look.gap(this), 0);
        if (column == 0 && width == 1) place.insets.right = 3 * Look.gap(this);
        return place;
    }

    @Override
    public boolean getScrollableTracksViewportHeight() {
        return getParent().getHeight() > getPreferredSize().height;
    }
}
