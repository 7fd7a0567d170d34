package ui.frmwork.plaz.browser;

import java.awt.Font;
import java.awt.GridBagConstraints;
import java.awt.GridBagLayout;
import java.awt.Insets;
import javax.swing.BorderFactory;
import javax.swing.JComponent;
import javax.swing.JLabel;
import javax.swing.JTextArea;

/** Rows of a name, what is chosen, and a button, below headings; as wide as there is room. */
final class SettingsForm extends ScrolledPanel {
    private static final long serialVersionUID = 1;

    private static final int NARROW_LINES = 34;

    private final boolean isNarrow = getToolkit().getScreenSize().width < NARROW_LINES * Look.lineHeight(this);
    private int row;

    SettingsForm() {
        super(new GridBagLayout());
        int gap = 2 * Look.gap(this);
        setBorder(BorderFactory.createEmptyBorder(gap, gap, gap, gap));
    }

    void addHeading(String text) {
        JLabel heading = new JLabel(text);
        heading.setFont(heading.getFont().deriveFont(Font.BOLD));
        GridBagConstraints place = place(row == 0 ? 0 : 2 * Look.gap(this));
        place.gridwidth = 3;
        add(heading, place);
        ++row;
    }

    /**
     * On a narrow screen the name stands above.
     *
     * @param beside null for nothing
     */
    void addRow(String text, char mnemonic, JComponent field, JComponent beside) {
        JComponent labelled = field instanceof CheckedField checked ? checked.field() : field;
        GridBagConstraints place = place(Look.gap(this) / 2);
        if (isNarrow) place.gridwidth = 3;
        add(Look.label(text, mnemonic, labelled), place);
        if (isNarrow) {
            ++row;
            place = place(0);
            place.gridx = 0;
            place.gridwidth = 2;
        }
        place.fill = GridBagConstraints.HORIZONTAL;
        place.weightx = 1;
        add(field, place);
        place.weightx = 0;
        place.gridx = 2;
        place.gridwidth = 1;
        if (beside != null) add(beside, place);
        ++row;
    }

    /** What the field of the row above means. */
    void addNote(String name, String text) {
        JTextArea note = Look.readOnlyText(name, text);
        note.setForeground(Look.colours().quiet());
        note.setColumns(1); // else it wants to be as wide as its text
        GridBagConstraints place = place(0);
        place.gridx = isNarrow ? 0 : 1;
        place.gridwidth = 2;
        place.fill = GridBagConstraints.HORIZONTAL;
        add(note, place);
        ++row;
    }

    private GridBagConstraints place(int above) {
        GridBagConstraints place = new GridBagConstraints();
        place.gridy = row;
        place.insets = new Insets(above, 0, Look.gap(this) / 2, Look.gap(this));
        place.anchor = GridBagConstraints.BASELINE_LEADING;
        return place;
    }
}
