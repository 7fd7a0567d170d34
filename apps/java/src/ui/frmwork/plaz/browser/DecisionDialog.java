package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import java.awt.Dimension;
import java.awt.FlowLayout;
import java.awt.Window;
import java.awt.event.KeyEvent;
import javax.swing.BorderFactory;
import javax.swing.JButton;
import javax.swing.JComponent;
import javax.swing.JDialog;
import javax.swing.JPanel;
import javax.swing.JTextArea;
import javax.swing.KeyStroke;

/** Says what is about to be done, and does it where a person wants that. */
class DecisionDialog extends JDialog {
    private static final long serialVersionUID = 1;
    private static final int LEAST_WIDTH = 32; // in lines' heights

    private final JButton yes;

    /** @param go what the button says that is meant by Enter, its first letter that which leads to it */
    DecisionDialog(Window owner, String name, String title, String text, String go) {
        super(owner, title, ModalityType.APPLICATION_MODAL);
        setName(name);
        yes = Look.named("go", new JButton(go));
        yes.setMnemonic(go.charAt(0));
        JTextArea summary = Look.readOnlyText("summary", text);
        summary.setFocusable(false); // the button is what Enter means
        summary.setColumns(1); // else it wants to be as wide as its text
        JPanel content = new JPanel(new BorderLayout(0, gap()));
        content.setBorder(BorderFactory.createEmptyBorder(gap(), gap(), gap(), gap()));
        content.add(summary, BorderLayout.PAGE_START);
        content.add(buttons(), BorderLayout.PAGE_END);
        setContentPane(content);
        getRootPane().setDefaultButton(yes);
        getRootPane().registerKeyboardAction(
                event -> dispose(), KeyStroke.getKeyStroke(KeyEvent.VK_ESCAPE, 0), JComponent.WHEN_IN_FOCUSED_WINDOW);
    }

    private JPanel buttons() {
        JButton no = new JButton("Cancel");
        no.setMnemonic('C');
        no.addActionListener(event -> dispose());
        JPanel buttons = new JPanel(new FlowLayout(FlowLayout.TRAILING, gap(), 0));
        buttons.add(yes);
        buttons.add(no);
        return buttons;
    }

    /** The button that goes on. */
    final JButton goButton() {
        return yes;
    }

    final int gap() {
        return 2 * Look.gap(getRootPane());
    }

    /** Waits until a person has decided. */
    final void ask(Runnable go) {
        yes.addActionListener(event -> {
            dispose();
            go.run();
        });
        pack();
        Dimension screen = getToolkit().getScreenSize();
        int width = Math.max(getWidth(), LEAST_WIDTH * Look.lineHeight(this));
        setSize(Math.min(width, screen.width), getHeight());
        validate(); // the text knows now how it wraps
        setSize(getWidth(), Math.min(getPreferredSize().height, screen.height));
        setLocationRelativeTo(getOwner());
        setVisible(true);
    }
}
