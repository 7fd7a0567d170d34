package ui.frmwork.plaz.browser;

import java.awt.BasicStroke;
import java.awt.Color;
import java.awt.Component;
import java.awt.Graphics;
import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.geom.Path2D;
import java.awt.geom.RoundRectangle2D;
import javax.swing.AbstractButton;
import javax.swing.ButtonModel;
import javax.swing.Icon;

/** A box to tick, or in a menu the mark of what is chosen there. */
record FlatTick(Palette colours, int size, boolean hasBox) implements Icon {
    @Override
    public void paintIcon(Component component, Graphics graphics, int x, int y) {
        ButtonModel model = ((AbstractButton) component).getModel();
        Graphics2D g = (Graphics2D) graphics.create();
        g.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
        g.setRenderingHint(RenderingHints.KEY_STROKE_CONTROL, RenderingHints.VALUE_STROKE_PURE);
        g.translate(x, y);
        if (hasBox) paintBox(g, model, component.isFocusOwner());
        if (model.isSelected()) {
            g.setColor(hasBox || model.isArmed() ? colours.onMark() : colours.text());
            paintTick(g);
        }
        g.dispose();
    }

    private void paintBox(Graphics2D g, ButtonModel model, boolean isFocused) {
        double edge = Math.max(1, size / 18.0);
        var box = new RoundRectangle2D.Double(
                2 * edge, 2 * edge, size - 4 * edge, size - 4 * edge, size * 0.25, size * 0.25);
        boolean isHot = isFocused || model.isRollover();
        Color face = model.isSelected() ? colours.mark() : colours.surface();
        g.setColor(model.isEnabled() ? face : colours.ground());
        g.fill(box);
        g.setColor(isHot ? colours.mark() : colours.quiet());
        g.setStroke(new BasicStroke((float) (isFocused ? 2 * edge : edge)));
        g.draw(box);
    }

    private void paintTick(Graphics2D g) {
        Path2D path = new Path2D.Double();
        path.moveTo(size * 0.28, size * 0.50);
        path.lineTo(size * 0.43, size * 0.65);
        path.lineTo(size * 0.72, size * 0.33);
        g.setStroke(new BasicStroke(size / 9f, BasicStroke.CAP_ROUND, BasicStroke.JOIN_ROUND));
        g.draw(path);
    }

    @Override
    public int getIconWidth() {
        return size;
    }

    @Override
    public int getIconHeight() {
        return size;
    }
}
