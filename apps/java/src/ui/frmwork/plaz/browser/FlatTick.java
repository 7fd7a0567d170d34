package ui.frmwork.plaz.browser;

import java.awt.BasicStroke;
import java.awt.Color;
import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.geom.Path2D;
import javax.swing.JComponent;
import javax.swing.Painter;

/** A box to tick. @param tick null where it is not */
record FlatTick(Color face, Color edge, Color tick) implements Painter<JComponent> {
    @Override
    public void paint(Graphics2D g, JComponent component, int width, int height) {
        g.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
        g.setColor(face);
        g.fillRoundRect(2, 2, width - 5, height - 5, 4, 4);
        g.setColor(edge);
        g.drawRoundRect(2, 2, width - 5, height - 5, 4, 4);
        if (tick == null) return;
        Path2D path = new Path2D.Double();
        path.moveTo(width * 0.28, height * 0.50);
        path.lineTo(width * 0.43, height * 0.65);
        path.lineTo(width * 0.70, height * 0.33);
        g.setColor(tick);
        g.setStroke(new BasicStroke(2, BasicStroke.CAP_ROUND, BasicStroke.JOIN_ROUND));
        g.draw(path);
    }
}
