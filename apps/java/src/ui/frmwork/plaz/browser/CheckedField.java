package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import java.awt.Rectangle;
import javax.swing.BorderFactory;
import javax.swing.JPanel;
import javax.swing.JTextArea;
import javax.swing.JTextField;
import javax.swing.SwingUtilities;
import ui.frmwork.plaz.host.PlazHost.Input;

/** A text to type in, and below it why it is of no use, where that is so. */
final class CheckedField extends JPanel {
    private static final long serialVersionUID = 1;

    private final transient Input kind;
    private final JTextField field;
    private final JTextArea refusal;

    CheckedField(String name, Input kind) {
        super(new BorderLayout());
        this.kind = kind;
        field = Look.named(name, new JTextField(28));
        refusal = Look.readOnlyText(name + "Refusal", "");
        refusal.setForeground(Look.colours().error());
        refusal.setBorder(BorderFactory.createEmptyBorder(0, 2, 0, 0)); // as far in as the field is drawn
        refusal.setVisible(false);
        add(field);
        add(refusal, BorderLayout.PAGE_END);
    }

    JTextField field() {
        return field;
    }

    /** That of the field, whatever stands below it. */
    @Override
    public int getBaseline(int width, int height) {
        return field.getBaseline(width, field.getPreferredSize().height);
    }

    String getText() {
        return field.getText().strip();
    }

    void setText(String text) {
        field.setText(text);
        field.setCaretPosition(0); // else a long one is scrolled out of sight
        show("");
    }

    /** Says why not. */
    boolean isGiven() {
        return show(HubThread.refusal(kind, getText()));
    }

    /** Nothing at all stands for the default. Says why not. */
    boolean isUnchangedOrFit(String before) {
        return getText().isEmpty() || getText().equals(before) ? show("") : isGiven();
    }

    private boolean show(String why) {
        refusal.setText(why);
        refusal.setVisible(!why.isEmpty());
        revalidate();
        if (!why.isEmpty()) {
            field.requestFocusInWindow();
            SwingUtilities.invokeLater(() -> scrollRectToVisible(new Rectangle(getSize()))); // once it is laid out
        }
        return why.isEmpty();
    }
}
