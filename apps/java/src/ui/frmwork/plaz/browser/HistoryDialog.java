package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import java.awt.Window;
import java.util.List;
import java.util.Optional;
import java.util.stream.Collectors;
import java.util.stream.IntStream;
import javax.swing.JComponent;
import javax.swing.JPanel;
import javax.swing.JScrollPane;
import javax.swing.JTable;
import javax.swing.JTextArea;
import javax.swing.KeyStroke;
import javax.swing.ListSelectionModel;
import ui.frmwork.plaz.host.PlazHost.Entry;

/** What was done to what is installed, and which of it is to be taken back. */
final class HistoryDialog extends DecisionDialog {
    private static final long serialVersionUID = 1;
    private static final int COMMAND = 2;
    private static final int MOST_ROWS = 10;
    private static final int CHANGE_LINES = 8;

    private final transient List<Entry> entries;
    private final JTable table;
    private final JTextArea changes = Look.readOnlyText("changes", "");

    /** @param entries the newest first */
    HistoryDialog(Window owner, List<Entry> entries) {
        super(owner, "history", "Undo", summary(entries), "Take back");
        this.entries = entries;
        Object[][] rows = entries.stream()
                                  .map(entry
                                          -> new Object[] {entry.number(), time(entry), command(entry),
                                                  entry.isUndone() ? "taken back" : ""})
                                  .toArray(Object[][] ::new);
        table = Look.named("entries",
                new PlainTable("What was done", new Object[] {"No.", "When", "What", ""}, rows, COMMAND, MOST_ROWS));
        table.setSelectionMode(ListSelectionModel.SINGLE_SELECTION);
        table.getSelectionModel().addListSelectionListener(event -> show(chosen()));
        table.getInputMap(JComponent.WHEN_ANCESTOR_OF_FOCUSED_COMPONENT)
                .put(KeyStroke.getKeyStroke("ENTER"), "none"); // it is the button's
        Look.tabLeaves(table);
        changes.setRows(CHANGE_LINES);
        JPanel content = new JPanel(new BorderLayout(0, gap()));
        content.add(new JScrollPane(table));
        content.add(new JScrollPane(changes), BorderLayout.PAGE_END);
        add(content);
        goButton().setEnabled(false);
        IntStream.range(0, entries.size())
                .filter(row -> !entries.get(row).isUndone() && !entries.get(row).isUndo())
                .findFirst()
                .ifPresent(row -> table.setRowSelectionInterval(row, row));
    }

    Optional<Entry> chosen() {
        int row = table.getSelectedRow();
        return row < 0 ? Optional.empty() : Optional.of(entries.get(row));
    }

    private void show(Optional<Entry> chosen) {
        goButton().setEnabled(chosen.filter(entry -> !entry.isUndone()).isPresent());
        changes.setText(chosen.map(HistoryDialog::changes).orElse(""));
        changes.setCaretPosition(0);
    }

    private static String summary(List<Entry> entries) {
        return entries.isEmpty()
                ? "Nothing was done yet that changed what is installed."
                : "What was removed or replaced comes back in the same revision, and what had been installed goes, unless "
                        + "something else needs it by now.";
    }

    /** @return such as "2026-11-28 08:01:56" */
    private static String time(Entry entry) {
        return entry.time().replaceFirst("[+-]\\d+$", "").replace('T', ' ');
    }

    private static String command(Entry entry) {
        return entry.command().isEmpty() ? "interrupted, or not by the hub" : entry.command();
    }

    private static String changes(Entry entry) {
        return entry.changes()
                .stream()
                .map(each -> each.item() + " " + each.change())
                .collect(Collectors.joining("\n"));
    }
}
