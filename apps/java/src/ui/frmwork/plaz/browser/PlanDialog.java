package ui.frmwork.plaz.browser;

import java.awt.Window;
import java.util.List;
import java.util.Locale;
import javax.swing.JScrollPane;
import javax.swing.JTable;
import ui.frmwork.plaz.host.PlazHost.Step;

/** What a change brings and takes besides the item itself, before it is made. */
final class PlanDialog extends DecisionDialog {
    private static final long serialVersionUID = 1;
    private static final int WHY = 2;
    private static final int MOST_ROWS = 16;

    PlanDialog(Window owner, String title, List<Step> steps) {
        super(owner, "plan", title, summary(steps), "Go ahead");
        Object[][] rows = steps.stream()
                                  .map(step -> new Object[] {verb(step), step.item(), reason(step), size(step.bytes())})
                                  .toArray(Object[][] ::new);
        JTable table = new PlainTable(
                "What would be done", new Object[] {"What", "Item", "Why", "Size"}, rows, WHY, MOST_ROWS);
        table.setFocusable(false);
        add(new JScrollPane(table));
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
        return "This changes more than one item: " + coming.size() + " to come (" + sizes(coming) + "), " + going.size()
                + " to go (" + sizes(going) + ").";
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
