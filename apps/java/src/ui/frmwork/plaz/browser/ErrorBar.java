package ui.frmwork.plaz.browser;

import java.awt.BorderLayout;
import java.awt.Dimension;
import java.awt.FlowLayout;
import java.awt.Toolkit;
import java.awt.datatransfer.StringSelection;
import java.util.ArrayList;
import java.util.List;
import java.util.function.Consumer;
import java.util.stream.Collectors;
import javax.swing.BorderFactory;
import javax.swing.JButton;
import javax.swing.JPanel;
import javax.swing.JTextArea;

/**
 * What an operation failed of, until it was read or a person goes on to something else: the first failure is the reason
 * of those behind it.
 */
final class ErrorBar extends JPanel {
    private static final long serialVersionUID = 1;

    private final JTextArea text = Look.readOnlyText("error", "");
    private final JPanel buttons = new JPanel(new FlowLayout(FlowLayout.TRAILING, Look.gap(this), 0));
    private final transient List<Message> failures = new ArrayList<>();
    private boolean isOfOldOperation;

    /** @param advise tells what to do about failures */
    ErrorBar(Consumer<List<Message>> advise) {
        setLayout(new BorderLayout(Look.gap(this), 0));
        text.setMinimumSize(new Dimension(0, 0));
        add(text);
        add(buttons, BorderLayout.LINE_END);
        button(Look.named("copy", new JButton("Copy")), 'Y', this::copy);
        button(Look.named("advice", new JButton("What to do")), 'W', () -> advise.accept(List.copyOf(failures)));
        button(Look.named("read", new JButton("Close")), 'X', () -> setVisible(false));
        setVisible(false);
    }

    private void button(JButton button, char mnemonic, Runnable work) {
        button.setMnemonic(mnemonic);
        button.addActionListener(event -> work.run());
        buttons.add(button);
    }

    /** What fails from now on has nothing to do with what failed before. */
    void beginOperation() {
        isOfOldOperation = true;
    }

    void show(Message failure) {
        if (isOfOldOperation) failures.clear();
        isOfOldOperation = false;
        add(failure, failures.isEmpty() ? failure.what() : text.getText());
    }

    /** @param doctor says who looks for the cause of what was shown last */
    void showDoctor(Message doctor) {
        if (isVisible() && !isOfOldOperation) add(doctor, text.getText() + "\n" + doctor.text());
    }

    private void add(Message told, String shown) {
        failures.add(told);
        text.setText(shown);
        // Before it is laid out it would be taken to be as narrow as can be, and so high that nothing else has room.
        text.setSize(getParent().getWidth() - buttons.getPreferredSize().width, Short.MAX_VALUE);
        setVisible(true);
        revalidate();
    }

    private void copy() {
        String lines = failures.stream().map(Message::toString).collect(Collectors.joining("\n"));
        Toolkit.getDefaultToolkit().getSystemClipboard().setContents(new StringSelection(lines), null);
    }

    @Override
    public void updateUI() {
        super.updateUI();
        int gap = Look.gap(this);
        setBorder(BorderFactory.createCompoundBorder(
                BorderFactory.createMatteBorder(0, gap / 2 + 1, 0, 0, Look.colours().error()),
                BorderFactory.createEmptyBorder(gap, gap, gap, gap)));
        if (text == null) return; // while the constructor of what this extends runs
        text.updateUI();
        text.setForeground(Look.colours().error());
        text.setBorder(BorderFactory.createEmptyBorder(gap, gap, 0, 0));
    }
}
