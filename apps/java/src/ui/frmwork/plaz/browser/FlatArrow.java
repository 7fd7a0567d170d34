package ui.frmwork.plaz.browser;

import java.awt.BasicStroke;
import java.awt.Color;
import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.geom.Path2D;
import javax.swing.JComponent;
import javax.swing.Painter;

/** The sign of a list that drops down; what paints it turns it from left to down. */
record FlatArrow(Color colour) implements Painter<JComponent> {
    @Override
    public void paint(Graphics2D g, JComponent component, int width, int height) {
        double half = Math.min(width, height) * 0.2;
        Path2D path = new Path2D.Double();
        path.moveTo((width + half) / 2, height / 2.0 - half);
        path.lineTo((width - half) / 2, height / 2.0);
        path.lineTo((width + half) / 2, height / 2.0 + half);
        g.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
        g.setColor(colour);
        g.setStroke(new BasicStroke((float) half / 2, BasicStroke.CAP_ROUND, BasicStroke.JOIN_ROUND));
        g.draw(path);
    }
}
