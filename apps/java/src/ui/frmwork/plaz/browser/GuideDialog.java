package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import java.awt.Dimension;
import java.awt.FlowLayout;
import java.awt.Frame;
import java.awt.Window;
import java.awt.event.KeyEvent;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import javax.swing.BorderFactory;
import javax.swing.JButton;
import javax.swing.JComponent;
import javax.swing.JDialog;
import javax.swing.JPanel;
import javax.swing.JScrollPane;
import javax.swing.KeyStroke;

/** A guide to be read beside the window, which can be used meanwhile. */
final class GuideDialog extends JDialog {
    private static final long serialVersionUID = 1;

    private final GuideText text = new GuideText();

    private GuideDialog(Frame owner, String title) {
        super(owner, title, false);
        setName("guideDialog");
        setDefaultCloseOperation(DISPOSE_ON_CLOSE);
    }

    static void showUserGuide(Frame owner) {
        GuideDialog dialog = new GuideDialog(owner, "User guide");
        List<String> lines = Guides.read(Guides.USER_GUIDE);
        if (lines.isEmpty())
            dialog.text.addPlain("The user guide was not installed with the browser. The command \"plaz help\" and "
                    + "its manual page tell most of it.");
        dialog.text.addMarkdown(lines);
        dialog.open(40);
    }

    /** Each message as a whole, and what the guides say of it, once where that is the same. */
    static void showAdvice(Frame owner, List<Message> messages) {
        GuideDialog dialog = new GuideDialog(owner, "What to do");
        Set<List<String>> told = new HashSet<>();
        for (Message message : messages) {
            dialog.text.addHeading(message.id().isEmpty() ? "Without a number" : message.id());
            dialog.text.addPlain(message.text());
            List<String> explanation = Guides.explain(message.id());
            if (told.add(explanation)) dialog.text.addMarkdown(explanation);
        }
        dialog.open(24);
    }

    /** In the place of one that is open. @param lines how high it gets at most */
    private void open(int lines) {
        for (Window each : getOwner().getOwnedWindows())
            if (each instanceof GuideDialog && each != this) each.dispose();
        int gap = 2 * Look.gap(text);
        int line = Look.lineHeight(text);
        text.setBorder(BorderFactory.createEmptyBorder(gap, gap, gap, gap));
        text.setCaretPosition(0);
        JPanel content = new JPanel(new BorderLayout(0, gap));
        content.setBorder(BorderFactory.createEmptyBorder(gap, gap, gap, gap));
        content.add(new JScrollPane(text));
        content.add(buttons(gap), BorderLayout.PAGE_END);
        setContentPane(content);
        getRootPane().registerKeyboardAction(
                event -> dispose(), KeyStroke.getKeyStroke(KeyEvent.VK_ESCAPE, 0), JComponent.WHEN_IN_FOCUSED_WINDOW);
        Dimension screen = getToolkit().getScreenSize();
        int width = Math.min(44 * line, screen.width);
        text.setSize(width - 4 * gap, Short.MAX_VALUE); // how high it is, its width decides
        int height = text.getPreferredSize().height + 5 * line;
        setSize(width, Math.min(Math.min(height, lines * line), screen.height));
        setLocationRelativeTo(getOwner());
        setVisible(true);
    }

    private JPanel buttons(int gap) {
        JButton close = Look.named("closeGuide", new JButton("Close"));
        close.setMnemonic('C');
        close.addActionListener(event -> dispose());
        getRootPane().setDefaultButton(close);
        JPanel buttons = new JPanel(new FlowLayout(FlowLayout.TRAILING, gap, 0));
        buttons.add(close);
        return buttons;
    }
}
