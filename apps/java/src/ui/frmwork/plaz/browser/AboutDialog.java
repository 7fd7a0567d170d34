package ui.frmwork.plaz.browser;

import java.awt.Frame;
import javax.swing.ImageIcon;
import javax.swing.JOptionPane;

/** Which release this is, and what it stands on. */
final class AboutDialog {
    private AboutDialog() {}

    static void show(Frame owner, String git) {
        String text = "Catalog browser " + Version.TEXT + "\n\n" + git + "\nJava " + Runtime.version();
        JOptionPane.showMessageDialog(owner, Look.readOnlyText("about", text), "About", JOptionPane.PLAIN_MESSAGE,
                new ImageIcon(ProgramIcon.sizes().get(4)));
    }
}
