package ui.frmwork.plaz.browser;

import java.awt.Component;
import java.awt.Dimension;
import javax.swing.JTable;
import javax.swing.table.DefaultTableCellRenderer;
import javax.swing.table.DefaultTableModel;
import javax.swing.table.TableColumn;

/** A table of a dialog, to be read. */
final class PlainTable extends JTable {
    private static final long serialVersionUID = 1;
    private static final int LEAST_WIDTH = 44; // in lines' heights, as the next
    private static final int MOST_COLUMN_WIDTH = 12;

    /** @param cut the column that gets the room that is left; where that is little, its texts are cut */
    PlainTable(String meaning, Object[] headings, Object[][] rows, int cut, int mostRows) {
        super(new DefaultTableModel(rows, headings) {
            private static final long serialVersionUID = 1;

            @Override
            public boolean isCellEditable(int row, int column) {
                return false;
            }
        });
        setDefaultRenderer(Object.class, new Cell());
        setRowHeight(Look.lineHeight(this) + 2 * Look.gap(this));
        setFillsViewportHeight(true);
        setBackground(Look.colours().surface());
        getAccessibleContext().setAccessibleName(meaning);
        for (int i = 0; i < getColumnCount(); ++i) {
            TableColumn column = getColumnModel().getColumn(i);
            int width = widest(i) + 2 * Look.gap(this);
            column.setPreferredWidth(width);
            if (i == cut) continue;
            column.setMinWidth(Math.min(width, MOST_COLUMN_WIDTH * Look.lineHeight(this)));
            column.setMaxWidth(width);
        }
        setPreferredScrollableViewportSize(
                new Dimension(Math.max(LEAST_WIDTH * Look.lineHeight(this), getPreferredSize().width),
                        (Math.min(rows.length, mostRows) + 1) * getRowHeight()));
    }

    private int widest(int column) {
        int widest = getFontMetrics(getFont()).stringWidth(getColumnName(column));
        for (int row = 0; row < getRowCount(); ++row) {
            Component cell = prepareRenderer(getCellRenderer(row, column), row, column);
            widest = Math.max(widest, cell.getPreferredSize().width);
        }
        return widest;
    }

    /** Tells the whole of a text for which there is no room. */
    private static final class Cell extends DefaultTableCellRenderer {
        private static final long serialVersionUID = 1;

        Cell() {
            Look.plain(this);
        }

        @Override
        protected void setValue(Object value) {
            super.setValue(value);
            setToolTipText(value.toString().startsWith("<") ? null : value.toString());
        }
    }
}
