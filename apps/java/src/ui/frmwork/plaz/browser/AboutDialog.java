package ui.frmwork.plaz.browser;

import java.awt.Frame;
import javax.swing.ImageIcon;
import javax.swing.JOptionPane;
import javax.swing.JTextArea;

/** Which release this is, and what it stands on. */
final class AboutDialog {
    private AboutDialog() {}

    static void show(Frame owner, String git) {
        String text = "Catalog browser " + Version.TEXT + "\n\n" + git + "\nJava " + Runtime.version();
        JTextArea area = Look.readOnlyText("about", text);
        area.setLineWrap(false); // how high it is would not be known before it is shown
        JOptionPane.showMessageDialog(
                owner, area, "About", JOptionPane.PLAIN_MESSAGE, new ImageIcon(ProgramIcon.sizes().get(4)));
    }
}
