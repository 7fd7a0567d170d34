package ui.frmwork.plaz.browser;

import java.awt.BasicStroke;
import java.awt.Color;
import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.geom.Path2D;
import javax.swing.JComponent;
import javax.swing.Painter;

/** The sign beside what can be opened or is open. */
record FlatSign(Color colour, boolean isOpen) implements Painter<JComponent> {
    @Override
    public void paint(Graphics2D g, JComponent component, int width, int height) {
        double size = Math.min(width, height) * 0.3;
        Path2D path = new Path2D.Double();
        path.moveTo(isOpen ? -size : -size / 2, isOpen ? -size / 2 : -size);
        path.lineTo(isOpen ? 0 : size / 2, isOpen ? size / 2 : 0);
        path.lineTo(isOpen ? size : -size / 2, isOpen ? -size / 2 : size);
        g.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
        g.translate(width / 2.0, height / 2.0);
        g.setColor(colour);
        g.setStroke(new BasicStroke(1.5f, BasicStroke.CAP_ROUND, BasicStroke.JOIN_ROUND));
        g.draw(path);
        g.translate(-width / 2.0, -height / 2.0);
    }
}
