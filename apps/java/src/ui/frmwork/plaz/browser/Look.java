package ui.frmwork.plaz.browser;

import java.awt.AWTKeyStroke;
import java.awt.Color;
import java.awt.Component;
import java.awt.Font;
import java.awt.KeyboardFocusManager;
import java.awt.event.InputEvent;
import java.awt.event.KeyEvent;
import java.util.ArrayList;
import java.util.Set;
import javax.swing.BorderFactory;
import javax.swing.JComponent;
import javax.swing.JLabel;
import javax.swing.JTextArea;
import javax.swing.UIDefaults;
import javax.swing.UIManager;
import javax.swing.UnsupportedLookAndFeelException;
import javax.swing.plaf.FontUIResource;
import javax.swing.text.DefaultCaret;

/** Colours, fonts and sizes; and that texts of catalogs are shown as they are. */
final class Look {
    /** Which colours a person has chosen. */
    enum Theme { SYSTEM, LIGHT, DARK }

    /** Names that the virtual machine itself knows: a look chosen there stays, and so does the font. */
    private static final String CHOSEN_LOOK = "swing.defaultlaf";
    private static final String CHOSEN_FONT = "swing.plaf.metal.controlFont";

    /** Of texts, in pixels. */
    static final int USUAL_SIZE = 13;

    private static Palette colours = Palette.LIGHT;

    private Look() {}

    /** The colours in force. */
    static Palette colours() {
        return colours;
    }

    /** @param percent size of all texts, against what the desktop says, or else the look's own */
    static void apply(DesktopSettings desktop, Theme theme, int percent) {
        boolean isDark = theme == Theme.DARK || theme == Theme.SYSTEM && desktop.isDark();
        colours = isDark ? Palette.DARK : Palette.LIGHT;
        double usual = desktop.fontSize() > 0 ? Math.min(Math.max(desktop.fontSize(), 8), 40) : USUAL_SIZE;
        Font font = Font.getFont(CHOSEN_FONT, new Font(Font.SANS_SERIF, Font.PLAIN, 1).deriveFont((float) usual));
        try {
            String chosen = System.getProperty(CHOSEN_LOOK);
            if (chosen == null) UIManager.setLookAndFeel(new FlatLook(colours, scaled(font, percent)));
            else applyOther(chosen, percent);
        } catch (ReflectiveOperationException | UnsupportedLookAndFeelException e) {
            // The virtual machine's own will do.
        }
    }

    private static void applyOther(String look, int percent)
            throws ReflectiveOperationException, UnsupportedLookAndFeelException {
        UIManager.setLookAndFeel(look);
        UIDefaults defaults = UIManager.getLookAndFeelDefaults();
        for (Object key : new ArrayList<>(defaults.keySet()))
            if (defaults.get(key) instanceof Font font) defaults.put(key, scaled(font, percent));
    }

    private static FontUIResource scaled(Font font, int percent) {
        return new FontUIResource(font.deriveFont(font.getSize2D() * percent / 100));
    }

    /** A part of the font's height, at least one: what distances are made of. */
    static int gap(Component component) {
        return Math.max(1, lineHeight(component) / 3);
    }

    static int lineHeight(Component component) {
        return component.getFontMetrics(UIManager.getFont("Label.font")).getHeight();
    }

    /** Makes texts of a component appear as they are, whatever they look like. */
    static <C extends JComponent> C plain(C component) {
        component.putClientProperty("html.disable", true);
        return component;
    }

    static <C extends Component> C named(String name, C component) {
        component.setName(name);
        return component;
    }

    /** @param mnemonic the letter that leads to what is labelled */
    static JLabel label(String text, char mnemonic, JComponent labelled) {
        JLabel label = new JLabel(text);
        label.setDisplayedMnemonic(mnemonic);
        label.setLabelFor(labelled);
        return label;
    }

    /** A text that wraps, to be read, selected and copied. */
    static JTextArea readOnlyText(String name, String text) {
        JTextArea area = named(name, new JTextArea() {
            private static final long serialVersionUID = 1;

            @Override
            public void updateUI() {
                super.updateUI();
                setFont(UIManager.getFont("Label.font"));
            }
        });
        area.setEditable(false);
        // Else its caret would have what scrolls scroll to it, once it is shown and with each new text.
        ((DefaultCaret) area.getCaret()).setUpdatePolicy(DefaultCaret.NEVER_UPDATE);
        area.setText(text);
        area.setLineWrap(true);
        area.setWrapStyleWord(true);
        area.setOpaque(false);
        area.setBackground(new Color(0, 0, 0, 0)); // Nimbus paints one that is not opaque all the same
        area.setBorder(BorderFactory.createEmptyBorder());
        area.getAccessibleContext().setAccessibleName(name);
        tabLeaves(area);
        return area;
    }

    /** Makes the tab key go on to the next component, where it would mean something else. */
    static void tabLeaves(JComponent component) {
        AWTKeyStroke tab = AWTKeyStroke.getAWTKeyStroke(KeyEvent.VK_TAB, 0);
        AWTKeyStroke back = AWTKeyStroke.getAWTKeyStroke(KeyEvent.VK_TAB, InputEvent.SHIFT_DOWN_MASK);
        component.setFocusTraversalKeys(KeyboardFocusManager.FORWARD_TRAVERSAL_KEYS, Set.of(tab));
        component.setFocusTraversalKeys(KeyboardFocusManager.BACKWARD_TRAVERSAL_KEYS, Set.of(back));
    }
}
