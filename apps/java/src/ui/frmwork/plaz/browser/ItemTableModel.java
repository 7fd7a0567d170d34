package ui.frmwork.plaz.browser;

import java.util.List;
import java.util.function.Function;
import javax.swing.table.AbstractTableModel;
import ui.frmwork.plaz.browser.Snapshot.Item;

/** One line for each item. */
final class ItemTableModel extends AbstractTableModel {
    private static final long serialVersionUID = 1;

    enum Column {
        TITLE("Name", Item::title),
        STATE("State", item -> item),
        REVISION("Revision", Item::revision),
        NAME("Item", item -> item.key().name()),
        STORE("Store", item -> item.key().store()),
        COMPANY("Company", Item::company);

        final String heading;
        private final Function<Item, Object> value;

        Column(String heading, Function<Item, Object> value) {
            this.heading = heading;
            this.value = value;
        }
    }

    private static final List<Column> COLUMNS = List.of(Column.values());

    private transient List<Item> items = List.of();

    void show(List<Item> shown) {
        items = shown;
        fireTableDataChanged();
    }

    Item item(int row) {
        return items.get(row);
    }

    List<Item> items() {
        return items;
    }

    @Override
    public int getRowCount() {
        return items.size();
    }

    @Override
    public int getColumnCount() {
        return COLUMNS.size();
    }

    @Override
    public String getColumnName(int column) {
        return COLUMNS.get(column).heading;
    }

    @Override
    public Class<?> getColumnClass(int column) {
        return COLUMNS.get(column) == Column.STATE ? Item.class : String.class;
    }

    @Override
    public Object getValueAt(int row, int column) {
        return COLUMNS.get(column).value.apply(items.get(row));
    }
}
