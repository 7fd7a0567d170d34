package ui.frmwork.plaz.browser;

import java.awt.Color;
import java.awt.Graphics2D;
import java.awt.RenderingHints;
import javax.swing.JComponent;
import javax.swing.Painter;

/**
 * A plain area.
 *
 * @param face null for none
 * @param edge null for none
 * @param inset how far it stays away from the component's border
 * @param isFocused whether the edge is twice as wide
 * @param isUnderlined whether the edge is below only
 */
record FlatPainter(Color face, Color edge, int arc, int inset, boolean isFocused, boolean isUnderlined)
        implements Painter<JComponent> {
    FlatPainter(Color face, Color edge, int arc, int inset, boolean isFocused) {
        this(face, edge, arc, inset, isFocused, false);
    }

    static FlatPainter underlined(Color face, Color edge) {
        return new FlatPainter(face, edge, 0, 0, false, true);
    }

    @Override
    public void paint(Graphics2D g, JComponent component, int width, int height) {
        int right = width - 2 * inset - 1;
        int below = height - 2 * inset - 1;
        g.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
        if (face != null) {
            g.setColor(face);
            g.fillRoundRect(inset, inset, right + 1, below + 1, arc, arc);
        }
        if (edge == null) return;
        g.setColor(edge);
        if (isUnderlined) {
            g.fillRect(0, height - 1, width, 1);
            return;
        }
        g.drawRoundRect(inset, inset, right, below, arc, arc);
        if (isFocused) g.drawRoundRect(inset + 1, inset + 1, right - 2, below - 2, arc, arc);
    }
}
