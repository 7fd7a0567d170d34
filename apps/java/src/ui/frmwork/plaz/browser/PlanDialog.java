package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import java.awt.Component;
import java.awt.Dimension;
import java.awt.FlowLayout;
import java.awt.Frame;
import java.awt.event.KeyEvent;
import java.util.List;
import java.util.Locale;
import javax.swing.BorderFactory;
import javax.swing.JButton;
import javax.swing.JComponent;
import javax.swing.JDialog;
import javax.swing.JPanel;
import javax.swing.JScrollPane;
import javax.swing.JTable;
import javax.swing.JTextArea;
import javax.swing.KeyStroke;
import javax.swing.table.DefaultTableCellRenderer;
import javax.swing.table.DefaultTableModel;
import javax.swing.table.TableColumn;
import ui.frmwork.plaz.host.PlazHost.Step;

/** What a change brings and takes besides the item itself, before it is made. */
final class PlanDialog extends JDialog {
    private static final long serialVersionUID = 1;
    private static final int WHY = 2;

    PlanDialog(Frame owner, String title, List<Step> steps, Runnable go) {
        super(owner, title, true);
        setName("plan");
        int gap = 2 * Look.gap(getRootPane());
        JTable table = table(steps);
        JPanel content = new JPanel(new BorderLayout(0, gap));
        content.setBorder(BorderFactory.createEmptyBorder(gap, gap, gap, gap));
        JTextArea summary = Look.readOnlyText("summary", summary(steps));
        summary.setFocusable(false); // the button is what Enter means
        content.add(summary, BorderLayout.PAGE_START);
        content.add(new JScrollPane(table));
        content.add(buttons(go, gap), BorderLayout.PAGE_END);
        setContentPane(content);
        getRootPane().registerKeyboardAction(
                event -> dispose(), KeyStroke.getKeyStroke(KeyEvent.VK_ESCAPE, 0), JComponent.WHEN_IN_FOCUSED_WINDOW);
        int line = Look.lineHeight(table);
        Dimension screen = getToolkit().getScreenSize();
        setSize(Math.min(Math.max(46 * line, table.getPreferredSize().width + 4 * gap), screen.width),
                Math.min((10 + 2 * Math.min(steps.size(), 14)) * line, screen.height));
        setLocationRelativeTo(owner);
    }

    private JPanel buttons(Runnable go, int gap) {
        JButton yes = Look.named("go", new JButton("Go ahead"));
        yes.setMnemonic('G');
        yes.addActionListener(event -> {
            dispose();
            go.run();
        });
        getRootPane().setDefaultButton(yes);
        JButton no = new JButton("Cancel");
        no.setMnemonic('C');
        no.addActionListener(event -> dispose());
        JPanel buttons = new JPanel(new FlowLayout(FlowLayout.TRAILING, gap, 0));
        buttons.add(yes);
        buttons.add(no);
        return buttons;
    }

    private static JTable table(List<Step> steps) {
        Object[][] rows = steps.stream()
                                  .map(step -> new Object[] {verb(step), step.item(), reason(step), size(step.bytes())})
                                  .toArray(Object[][] ::new);
        JTable table = new JTable(new DefaultTableModel(rows, new Object[] {"What", "Item", "Why", "Size"}) {
            private static final long serialVersionUID = 1;

            @Override
            public boolean isCellEditable(int row, int column) {
                return false;
            }
        });
        table.setDefaultRenderer(Object.class, new Cell());
        table.setRowHeight(Look.lineHeight(table) + 2 * Look.gap(table));
        table.setFillsViewportHeight(true);
        table.setBackground(Look.colours().surface());
        table.setFocusable(false);
        table.getAccessibleContext().setAccessibleName("What would be done");
        for (int i = 0; i < table.getColumnCount(); ++i) {
            TableColumn column = table.getColumnModel().getColumn(i);
            int width = widest(table, i) + 2 * Look.gap(table);
            column.setPreferredWidth(width);
            // Where there is little room, it is the reasons that are cut.
            if (i != WHY) column.setMinWidth(Math.min(width, 12 * Look.lineHeight(table)));
        }
        return table;
    }

    private static int widest(JTable table, int column) {
        int widest = table.getFontMetrics(table.getFont()).stringWidth(table.getColumnName(column));
        for (int row = 0; row < table.getRowCount(); ++row) {
            Component cell = table.prepareRenderer(table.getCellRenderer(row, column), row, column);
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

    private static String verb(Step step) {
        return step.before().isEmpty() ? step.kind() : step.kind() + " " + step.before();
    }

    private static String reason(Step step) {
        if (step.isAskedFor()) return "asked for";
        return step.neededBy().isEmpty() ? "needed no more" : "needed by " + step.neededBy();
    }

    private static String summary(List<Step> steps) {
        List<Step> going = steps.stream().filter(step -> step.kind().equals("remove")).toList();
        List<Step> coming =
                steps.stream().filter(step -> List.of("install", "update", "restore").contains(step.kind())).toList();
        return "This changes more than the item itself: " + coming.size() + " to come (" + sizes(coming) + "), "
                + going.size() + " to go (" + sizes(going) + ").";
    }

    private static String sizes(List<Step> steps) {
        String known = size(steps.stream().mapToLong(step -> Math.max(step.bytes(), 0)).sum());
        boolean isAllKnown = steps.stream().allMatch(step -> step.bytes() >= 0);
        return isAllKnown ? known : known + " and what is to be fetched";
    }

    static String size(long bytes) {
        if (bytes < 0) return "to be fetched";
        if (bytes < 1000) return bytes + " B";
        double shown = bytes;
        int unit = 0;
        for (shown /= 1000; shown >= 999.95 && unit < 3; ++unit) shown /= 1000;
        return String.format(Locale.ROOT, "%.1f %sB", shown, "kMGT".charAt(unit));
    }
}
