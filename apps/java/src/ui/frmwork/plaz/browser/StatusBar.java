package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import javax.swing.Action;
import javax.swing.JButton;
import javax.swing.JPanel;
import javax.swing.JProgressBar;

/** What is being done, how far it is, and the button that ends it. */
final class StatusBar extends JPanel {
    private static final long serialVersionUID = 1;

    private int begun;
    private String part = "";
    private final JProgressBar bar = Look.plain(new JProgressBar(0, 100));

    StatusBar(Action cancel) {
        super(new BorderLayout(Look.gap(new JPanel()), 0));
        bar.setStringPainted(true);
        bar.getAccessibleContext().setAccessibleName("Progress");
        add(bar);
        add(Look.named("cancel", new JButton(cancel)), BorderLayout.LINE_END);
        rest();
    }

    void rest() {
        begun = 0;
        bar.setIndeterminate(false);
        bar.setValue(0);
        bar.setString("Ready");
    }

    /** One of several operations has begun; nobody knows yet how long it is. */
    void begin(String title, int waiting) {
        ++begun;
        part = begun + waiting == 1 ? "" : "  (" + begun + " of " + (begun + waiting) + ")";
        show(title + " ...", 0);
    }

    /** @param percent 0 where nobody knows */
    void show(String text, double percent) {
        bar.setIndeterminate(percent <= 0);
        bar.setValue((int) percent);
        bar.setString(text + part);
    }
}
