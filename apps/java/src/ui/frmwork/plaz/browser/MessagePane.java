package ui.frmwork.plaz.browser;

import java.awt.Color;
import java.awt.Rectangle;
import java.util.ArrayDeque;
import java.util.Deque;
import javax.swing.JTextPane;
import javax.swing.SwingUtilities;
import javax.swing.text.BadLocationException;
import javax.swing.text.Document;
import javax.swing.text.SimpleAttributeSet;
import javax.swing.text.StyleConstants;
import ui.frmwork.plaz.host.PlazHost.Severity;

/** The last messages, one a paragraph, to be read, selected and copied. */
final class MessagePane extends JTextPane {
    private static final long serialVersionUID = 1;
    private static final int MOST = 1000;

    private final transient Deque<Message> shown = new ArrayDeque<>();

    MessagePane() {
        setEditable(false);
        setName("messages");
        getAccessibleContext().setAccessibleName("Messages");
        Look.tabLeaves(this);
    }

    void add(Message message) {
        shown.add(message);
        append(message);
        if (shown.size() > MOST) removeFirst((shown.remove() + "\n").length());
    }

    /** In the colours that are in force by now. */
    void showAnew() {
        setText("");
        shown.forEach(this::append);
        SwingUtilities.invokeLater(() -> scrollRectToVisible(new Rectangle(0, getHeight() - 1, 1, 1)));
    }

    private void append(Message message) {
        try {
            Document document = getDocument();
            String text = (document.getLength() > 0 ? "\n" : "") + message;
            document.insertString(document.getLength(), text, style(message.severity()));
            setCaretPosition(document.getLength());
        } catch (BadLocationException e) {
            throw new IllegalStateException(e);
        }
    }

    private void removeFirst(int length) {
        try {
            getDocument().remove(0, length);
        } catch (BadLocationException e) {
            throw new IllegalStateException(e);
        }
    }

    private static SimpleAttributeSet style(Severity severity) {
        SimpleAttributeSet style = new SimpleAttributeSet();
        StyleConstants.setForeground(style, colour(severity));
        StyleConstants.setBold(style, severity == Severity.ERROR);
        return style;
    }

    private static Color colour(Severity severity) {
        return switch (severity) {
            case INFO -> Look.colours().quiet();
            case WARNING, CRITICAL_WARNING -> Look.colours().warning();
            case ERROR -> Look.colours().error();
        };
    }
}
