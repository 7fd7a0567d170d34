package ui.frmwork.plaz.browser;

import java.awt.Dimension;
import java.awt.KeyboardFocusManager;
import java.awt.LayoutManager;
import java.awt.Rectangle;
import java.beans.PropertyChangeEvent;
import java.beans.PropertyChangeListener;
import javax.swing.JComponent;
import javax.swing.JPanel;
import javax.swing.Scrollable;

/** What scrolls up and down alone, by lines and to what gets the focus: it is as wide as there is room. */
abstract class ScrolledPanel extends JPanel implements Scrollable {
    private static final long serialVersionUID = 1;
    private static final String FOCUS = "permanentFocusOwner";

    private final transient PropertyChangeListener focusFollower = this::follow;

    ScrolledPanel(LayoutManager layout) {
        super(layout);
    }

    @Override
    public void addNotify() {
        super.addNotify();
        KeyboardFocusManager.getCurrentKeyboardFocusManager().addPropertyChangeListener(FOCUS, focusFollower);
    }

    @Override
    public void removeNotify() {
        KeyboardFocusManager.getCurrentKeyboardFocusManager().removePropertyChangeListener(FOCUS, focusFollower);
        super.removeNotify();
    }

    /** What is seen in part may have been clicked on: it must not move away from under the mouse. */
    private void follow(PropertyChangeEvent event) {
        if (event.getNewValue() instanceof JComponent focused && isAncestorOf(focused)
                && focused.getVisibleRect().isEmpty())
            focused.scrollRectToVisible(new Rectangle(focused.getSize()));
    }

    @Override
    public Dimension getPreferredScrollableViewportSize() {
        return getPreferredSize();
    }

    @Override
    public int getScrollableUnitIncrement(Rectangle visible, int orientation, int direction) {
        return Look.lineHeight(this);
    }

    @Override
    public int getScrollableBlockIncrement(Rectangle visible, int orientation, int direction) {
        return visible.height;
    }

    @Override
    public boolean getScrollableTracksViewportWidth() {
        return true;
    }

    @Override
    public boolean getScrollableTracksViewportHeight() {
        return false;
    }
}
