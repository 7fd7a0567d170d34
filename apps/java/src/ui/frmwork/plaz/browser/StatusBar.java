package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import javax.swing.Action;
import javax.swing.JButton;
import javax.swing.JPanel;
import javax.swing.JProgressBar;

/** What is being done, how far it is, and the button that ends it. */
final class StatusBar extends JPanel {
    private static final long serialVersionUID = 1;

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
        show("Ready", 0);
    }

    /** An operation has begun; nobody knows yet how long it is. */
    void begin(String title, int waiting) {
        show(waiting == 0 ? title + " ..." : title + " ... (then " + waiting + " more)", 0);
        bar.setIndeterminate(true);
    }

    void show(String text, double percent) {
        bar.setIndeterminate(false);
        bar.setValue((int) percent);
        bar.setString(text);
    }
}
