package ui.frmwork.plaz.browser;

import java.awt.Color;
import java.awt.Cursor;
import java.awt.Font;
import java.awt.Graphics;
import java.awt.event.KeyEvent;
import javax.swing.BorderFactory;
import javax.swing.JButton;
import javax.swing.JComponent;
import javax.swing.KeyStroke;
import javax.swing.SwingConstants;
import javax.swing.UIManager;

/** A text that leads elsewhere: by mouse, Space or Enter. */
final class LinkButton extends JButton {
    private static final long serialVersionUID = 1;

    LinkButton(String name, String text, Runnable follow) {
        Look.plain(this);
        setText(text);
        setName(name);
        setToolTipText(text.startsWith("<") ? null : text); // where there is no room for it
        setHorizontalAlignment(SwingConstants.LEADING);
        setBorder(BorderFactory.createEmptyBorder(1, 0, 1, 0));
        setContentAreaFilled(false);
        setOpaque(false);
        setCursor(Cursor.getPredefinedCursor(Cursor.HAND_CURSOR));
        addActionListener(event -> follow.run());
        bind(KeyStroke.getKeyStroke(KeyEvent.VK_ENTER, 0, false), "pressed");
        bind(KeyStroke.getKeyStroke(KeyEvent.VK_ENTER, 0, true), "released");
    }

    @Override
    public void updateUI() {
        super.updateUI();
        setFont(UIManager.getFont("Label.font"));
        setForeground(Look.colours().link());
    }

    @Override
    protected void paintComponent(Graphics graphics) {
        super.paintComponent(graphics);
        Font font = getFont();
        int width = Math.min(getWidth(), graphics.getFontMetrics(font).stringWidth(getText()));
        Color link = Look.colours().link();
        graphics.setColor(isFocusOwner() ? link : Palette.mix(link, Look.colours().surface(), 0.6));
        int bottom = getHeight() - 2;
        graphics.fillRect(0, bottom, width, isFocusOwner() ? 2 : 1);
    }

    private void bind(KeyStroke key, String action) {
        getInputMap(JComponent.WHEN_FOCUSED).put(key, action);
    }
}
