package ui.frmwork.plaz.browser;

import java.awt.Color;
import java.awt.Graphics2D;
import java.awt.Image;
import java.awt.RenderingHints;
import java.awt.image.BufferedImage;
import java.util.List;
import java.util.stream.IntStream;

/** The picture of the program, the same as that of its entry in menus. */
final class ProgramIcon {
    private ProgramIcon() {}

    /** In the sizes that desktops ask for. */
    static List<Image> sizes() {
        return IntStream.of(16, 24, 32, 48, 64, 128).mapToObj(ProgramIcon::draw).toList();
    }

    private static Image draw(int size) {
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
