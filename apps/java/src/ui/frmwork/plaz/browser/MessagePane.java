package ui.frmwork.plaz.browser;

import java.awt.Color;
import java.util.ArrayDeque;
import java.util.Deque;
import javax.swing.JTextPane;
import javax.swing.text.BadLocationException;
import javax.swing.text.Document;
import javax.swing.text.SimpleAttributeSet;
import javax.swing.text.StyleConstants;
import ui.frmwork.plaz.host.PlazHost.Severity;

/** The last messages, one a paragraph, to be read, selected and copied. */
final class MessagePane extends JTextPane {
    private static final long serialVersionUID = 1;
    private static final int MOST = 1000;

    /** How many characters each message takes, the oldest first. */
    private final Deque<Integer> lengths = new ArrayDeque<>();

    MessagePane() {
        setEditable(false);
        setName("messages");
        getAccessibleContext().setAccessibleName("Messages");
        Look.tabLeaves(this);
    }

    void add(Message message) {
        try {
            Document document = getDocument();
            String line = message + "\n";
            document.insertString(document.getLength(), line, style(message.severity()));
            lengths.add(line.length());
            if (lengths.size() > MOST) document.remove(0, lengths.remove());
            setCaretPosition(document.getLength());
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
            case INFO -> Look.QUIET;
            case WARNING, CRITICAL_WARNING -> Look.WARNING;
            case ERROR -> Look.ERROR;
        };
    }
}
