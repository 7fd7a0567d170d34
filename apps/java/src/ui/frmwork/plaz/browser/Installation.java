package ui.frmwork.plaz.browser;

import java.awt.Color;
import java.awt.Desktop;
import java.awt.Graphics2D;
import java.awt.Image;
import java.awt.RenderingHints;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.stream.IntStream;

/** What was installed with the browser. */
final class Installation {
    /** Set by the program's start: the directory that holds "share". */
    private static final String HOME = System.getProperty("plaz.home", "");
    private static final Path GUIDE = Path.of(HOME, "share", "doc", "plaz", "user-guide.md");

    private Installation() {}

    /** @return what happened */
    static Message openGuide() {
        if (HOME.isEmpty() || !Files.isRegularFile(GUIDE))
            return Message.info("The user guide was not installed with the browser. The command \"plaz help\" and its "
                    + "manual page tell most of it.");
        try {
            if (Desktop.isDesktopSupported() && Desktop.getDesktop().isSupported(Desktop.Action.OPEN)) {
                Desktop.getDesktop().open(GUIDE.toRealPath().toFile());
                return Message.info("Opened the user guide, " + GUIDE.toRealPath() + ".");
            }
        } catch (IOException | UnsupportedOperationException e) {
            // as where nothing shows such files
        }
        return Message.info("No program that shows texts can be started from here. The user guide is "
                + GUIDE.toAbsolutePath().normalize() + ".");
    }

    /** The window's icon, in the sizes that desktops ask for; the same picture as that of the menu entry. */
    static List<Image> icons() {
        return IntStream.of(16, 24, 32, 48, 64, 128).mapToObj(Installation::icon).toList();
    }

    private static Image icon(int size) {
        BufferedImage image = new BufferedImage(size, size, BufferedImage.TYPE_INT_ARGB);
        Graphics2D g = image.createGraphics();
        g.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
        g.scale(size / 64.0, size / 64.0);
        g.setColor(new Color(0x2863a6));
        g.fillRoundRect(2, 2, 60, 60, 28, 28);
        for (int i = 0; i < 4; ++i) {
            g.setColor(i % 3 == 0 ? Color.WHITE : new Color(0x9cc3ee));
            g.fillRoundRect(i % 2 == 0 ? 14 : 34, i < 2 ? 14 : 34, 16, 16, 8, 8);
        }
        g.dispose();
        return image;
    }
}
