package ui.frmwork.plaz.browser;

import java.awt.Color;
import java.awt.Component;
import java.awt.Rectangle;
import java.text.Collator;
import java.util.Collections;
import java.util.Comparator;
import java.util.List;
import java.util.Optional;
import java.util.stream.IntStream;
import javax.swing.BorderFactory;
import javax.swing.JTable;
import javax.swing.ListSelectionModel;
import javax.swing.RowFilter;
import javax.swing.UIManager;
import javax.swing.table.DefaultTableCellRenderer;
import javax.swing.table.TableCellRenderer;
import javax.swing.table.TableColumn;
import javax.swing.table.TableRowSorter;
import ui.frmwork.plaz.browser.ItemTableModel.Column;
import ui.frmwork.plaz.browser.Snapshot.Item;
import ui.frmwork.plaz.browser.Snapshot.Key;
import ui.frmwork.plaz.browser.Snapshot.State;

/** The items, to be filtered, sorted and chosen from. */
final class ItemTable extends JTable {
    private static final long serialVersionUID = 1;

    private static final int MEASURED_ROWS = 1000;
    private static final String USUAL_STATE = "needed by others (1.0)";

    private final transient TableRowSorter<ItemTableModel> sorter;
    private final transient LogoCache logos;

    ItemTable(LogoCache logos) {
        super(new ItemTableModel());
        this.logos = logos;
        logos.whenLoaded(this::repaint);
        sorter = new TableRowSorter<>(items());
        for (Column column : Column.values())
            if (column != Column.STATE) sorter.setComparator(column.ordinal(), Collator.getInstance());
        sorter.setComparator(Column.STATE.ordinal(), Comparator.comparing(Item::state).thenComparing(Item::stateText));
        sorter.setComparator(Column.REVISION.ordinal(), Revisions.ORDER);
        setRowSorter(sorter);
        setDefaultRenderer(String.class, new Cell());
        setDefaultRenderer(Item.class, new Cell());
        setSelectionMode(ListSelectionModel.SINGLE_SELECTION);
        setShowVerticalLines(false);
        setFillsViewportHeight(true);
        setAutoResizeMode(AUTO_RESIZE_SUBSEQUENT_COLUMNS);
        setTransferHandler(null); // what it copies would be read as HTML by others
        getAccessibleContext().setAccessibleName("Items");
        Look.tabLeaves(this);
    }

    /** Where there is no room for what the columns want, one scrolls. */
    @Override
    public boolean getScrollableTracksViewportWidth() {
        return getParent() == null || getPreferredSize().width < getParent().getWidth();
    }

    /** Makes each column as wide as what stands in it, within reason, or soon will. */
    void fitColumns() {
        for (int column = 0; column < getColumnCount(); ++column) {
            int width = widthOf(getTableHeader().getDefaultRenderer(), getColumnName(column), 0, column)
                    + Look.lineHeight(this); // for the arrow of the sorting
            for (int row = 0; row < Math.min(getRowCount(), MEASURED_ROWS); ++row)
                width = Math.max(width, widthOf(getCellRenderer(row, column), getValueAt(row, column), row, column));
            if (getColumnClass(column) == Item.class)
                width = Math.max(width, getFontMetrics(getFont()).stringWidth(USUAL_STATE) + 3 * Look.gap(this));
            getColumnModel().getColumn(column).setPreferredWidth(Math.min(width, 20 * Look.lineHeight(this)));
        }
    }

    private int widthOf(TableCellRenderer renderer, Object value, int row, int column) {
        Component cell = renderer.getTableCellRendererComponent(this, value, false, false, row, column);
        return cell.getPreferredSize().width + Look.gap(this);
    }

    @Override
    public void updateUI() {
        super.updateUI();
        setRowHeight(Look.lineHeight(this) + 3 * Look.gap(this));
    }

    /** What is chosen and where one has scrolled to stays, as far as it is there still. */
    void show(List<Item> shown) {
        Optional<Item> chosen = chosen();
        Rectangle place = getVisibleRect();
        items().show(shown);
        chosen.ifPresent(item -> select(item.key()));
        scrollRectToVisible(place);
    }

    void filter(ItemFilter filter) {
        sorter.setRowFilter(new RowFilter<ItemTableModel, Integer>() {
            @Override
            public boolean include(Entry<? extends ItemTableModel, ? extends Integer> entry) {
                return filter.test(entry.getModel().item(entry.getIdentifier()));
            }
        });
    }

    Optional<Item> chosen() {
        int row = getSelectedRow();
        return row < 0 ? Optional.empty() : Optional.of(items().item(convertRowIndexToModel(row)));
    }

    /** @return whether the filter lets the item be seen */
    boolean choose(Key key) {
        if (!select(key)) return false;
        scrollRectToVisible(getCellRect(getSelectedRow(), 0, true));
        return true;
    }

    void scaleColumns(double factor) {
        for (TableColumn column : Collections.list(getColumnModel().getColumns()))
            column.setPreferredWidth((int) Math.round(column.getWidth() * factor));
    }

    private boolean select(Key key) {
        List<Item> all = items().items();
        int row = IntStream.range(0, all.size())
                          .filter(i -> all.get(i).key().equals(key))
                          .map(this::convertRowIndexToView)
                          .findFirst()
                          .orElse(-1);
        if (row >= 0) setRowSelectionInterval(row, row);
        return row >= 0;
    }

    private ItemTableModel items() {
        return (ItemTableModel) getModel();
    }

    private final class Cell extends DefaultTableCellRenderer {
        private static final long serialVersionUID = 1;

        Cell() {
            Look.plain(this);
        }

        @Override
        public Component getTableCellRendererComponent(
                JTable table, Object value, boolean isSelected, boolean hasFocus, int row, int column) {
            Item item = items().item(convertRowIndexToModel(row));
            boolean isState = value instanceof Item;
            super.getTableCellRendererComponent(
                    table, isState ? item.stateText() : value, isSelected, false, row, column);
            boolean isName = convertColumnIndexToModel(column) == Column.TITLE.ordinal();
            setIcon(isName ? logos.find(item, Look.lineHeight(table) + Look.gap(table)) : null);
            setIconTextGap(Look.gap(table));
            if (isSelected) {
                setForeground(Look.colours().onMark());
                setBackground(Look.colours().mark());
            } else {
                boolean isMarked = isState && item.state() == State.OUTDATED;
                Color text = item.standing().isInactive() ? Look.colours().quiet() : table.getForeground();
                setForeground(isMarked ? Look.colours().warning() : text);
                Color alternate = UIManager.getColor("Table.alternateRowColor");
                setBackground(row % 2 == 1 && alternate != null ? alternate : table.getBackground());
            }
            setBorder(BorderFactory.createEmptyBorder(0, Look.gap(table), 0, Look.gap(table)));
            return this;
        }
    }
}
