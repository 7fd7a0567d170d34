package ui.frmwork.plaz.browser;

import java.awt.BasicStroke;
import java.awt.Component;
import java.awt.Graphics;
import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.geom.Path2D;
import javax.swing.Icon;
import javax.swing.JTree;

/** The sign beside what can be opened or is open in a tree. */
record FlatSign(Palette colours, int size, boolean isOpen) implements Icon {
    @Override
    public void paintIcon(Component component, Graphics graphics, int x, int y) {
        JTree tree = (JTree) component;
        boolean isChosen = tree.isRowSelected(tree.getClosestRowForLocation(x, y + size / 2));
        double half = size * 0.2;
        Path2D path = new Path2D.Double();
        path.moveTo(isOpen ? -half : -half / 2, isOpen ? -half / 2 : -half);
        path.lineTo(isOpen ? 0 : half / 2, isOpen ? half / 2 : 0);
        path.lineTo(isOpen ? half : -half / 2, isOpen ? -half / 2 : half);
        Graphics2D g = (Graphics2D) graphics.create();
        g.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
        g.translate(x + size / 2.0, y + size / 2.0);
        g.setColor(isChosen ? colours.onMark() : colours.quiet());
        g.setStroke(new BasicStroke(size / 12f, BasicStroke.CAP_ROUND, BasicStroke.JOIN_ROUND));
        g.draw(path);
        g.dispose();
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
