package ui.frmwork.plaz.browser;

import java.awt.Color;
import java.awt.Font;
import java.awt.Insets;
import java.util.ArrayList;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import javax.swing.JComponent;
import javax.swing.Painter;
import javax.swing.UIDefaults;
import javax.swing.plaf.ColorUIResource;
import javax.swing.plaf.FontUIResource;
import javax.swing.plaf.InsetsUIResource;
import javax.swing.plaf.nimbus.NimbusLookAndFeel;

/** The JDK's Nimbus in colours of ours, with plain areas in the place of its shining ones. */
final class FlatLook extends NimbusLookAndFeel {
    private static final long serialVersionUID = 1;
    private static final Pattern PAINTER = Pattern.compile("(.+)\\[(.*)\\]\\.(background|border|foreground)Painter");

    private final transient Palette colours;
    private final transient Font font;

    FlatLook(Palette colours, Font font) {
        this.colours = colours;
        this.font = font;
    }

    @Override
    public UIDefaults getDefaults() {
        UIDefaults defaults = super.getDefaults();
        defaults.put("defaultFont", new FontUIResource(font)); // which all others follow
        putColours(defaults);
        for (Object key : new ArrayList<>(defaults.keySet())) {
            Matcher painter = PAINTER.matcher(key.toString());
            if (key.toString().endsWith(".textForeground") && key.toString().contains("Menu"))
                put(defaults, key.toString(), menuText(key.toString()));
            if (painter.matches()) putPainter(defaults, painter.group(), painter.group(1), painter.group(2));
        }
        Insets narrow = new InsetsUIResource(2, 2, 2, 2);
        defaults.put("ScrollBar:\"ScrollBar.button\".size", 0);
        defaults.put("ScrollBar.incrementButtonGap", 0);
        defaults.put("ScrollBar.decrementButtonGap", 0);
        defaults.put("ScrollPane.contentMargins", narrow);
        defaults.put("Table.showGrid", false);
        defaults.put("Tree.drawHorizontalLines", false);
        defaults.put("Tree.drawVerticalLines", false);
        putSigns(defaults);
        return defaults;
    }

    /** Nimbus draws them in one size, however large the texts are. */
    private void putSigns(UIDefaults defaults) {
        defaults.put("CheckBox.icon", new FlatTick(colours, scaled(18), true));
        defaults.put("RadioButtonMenuItem.checkIcon", new FlatTick(colours, scaled(14), false));
        defaults.put("ComboBox:\"ComboBox.arrowButton\".size", scaled(19));
        defaults.put("Tree.expandedIcon", new FlatSign(colours, scaled(18), true));
        defaults.put("Tree.collapsedIcon", new FlatSign(colours, scaled(18), false));
        defaults.put("Tree.leftChildIndent", scaled(6));
        defaults.put("Tree.rightChildIndent", scaled(10));
    }

    /** @param pixels for texts of the usual size */
    private int scaled(int pixels) {
        return Math.round(pixels * font.getSize2D() / Look.USUAL_SIZE);
    }

    private void putColours(UIDefaults defaults) {
        for (String name : new String[] {"control", "info", "menu", "scrollbar", "background"})
            put(defaults, name, colours.ground());
        for (String name : new String[] {"nimbusLightBackground", "Table.background", "Tree.background",
                     "TextArea.background", "TextPane.background", "List.background"})
            put(defaults, name, colours.surface());
        for (String name : new String[] {"text", "controlText", "infoText", "menuText", "textForeground",
                     "Table.foreground", "Tree.foreground", "Tree.textForeground"})
            put(defaults, name, colours.text());
        for (String name : new String[] {"nimbusSelectionBackground", "textHighlight", "nimbusSelection",
                     "Tree.selectionBackground", "Table[Enabled+Selected].textBackground", "textBackground"})
            put(defaults, name, colours.mark());
        for (String name : new String[] {"nimbusSelectedText", "textHighlightText", "Tree.selectionForeground",
                     "Table[Enabled+Selected].textForeground"})
            put(defaults, name, colours.onMark());
        put(defaults, "nimbusFocus", colours.mark());
        put(defaults, "nimbusBase", colours.mark());
        put(defaults, "nimbusBlueGrey", colours.line());
        put(defaults, "nimbusBorder", colours.line());
        put(defaults, "nimbusOrange", colours.mark());
        put(defaults, "nimbusDisabledText", Palette.mix(colours.quiet(), colours.ground(), 0.3));
        put(defaults, "Table.alternateRowColor", Palette.mix(colours.surface(), colours.ground(), 0.6));
    }

    private Color menuText(String key) {
        if (key.contains("Disabled")) return colours.quiet();
        return key.contains("MouseOver") || key.contains("Selected]") ? colours.onMark() : colours.text();
    }

    private static void put(UIDefaults defaults, String name, Color colour) {
        defaults.put(name, new ColorUIResource(colour));
    }

    private void putPainter(UIDefaults defaults, String key, String component, String state) {
        Painter<JComponent> painter = painter(key, component, state);
        if (painter != null) defaults.put(key, painter);
    }

    /** @return null for Nimbus's own, in these colours */
    private Painter<JComponent> painter(String key, String component, String state) {
        boolean isBackground = key.endsWith("backgroundPainter"); // all else is painted over the text
        boolean isFocused = state.contains("Focused");
        Color edge = isFocused ? colours.mark() : colours.line();
        switch (component) {
            case "Button", "ToggleButton", "ComboBox":
                return new FlatPainter(buttonFace(state), edge, 6, 2, isFocused);
            case "TextField", "FormattedTextField":
                return new FlatPainter(isBackground ? fieldFace(state) : null, edge, 6, 2, isFocused);
            case "ScrollPane":
                return new FlatPainter(null, edge, 0, 0, isFocused);
            case "ScrollBar:ScrollBarTrack", "SplitPane:SplitPaneDivider":
                return plain(colours.ground());
            case "ScrollBar:ScrollBarThumb":
                return new FlatPainter(thumbFace(state), null, 8, 3, false);
            case "TableHeader:\"TableHeader.renderer\"":
                return FlatPainter.underlined(headerFace(state), colours.line());
            case "ProgressBar":
                return progress(isBackground, state);
            case "MenuBar":
                return FlatPainter.underlined(colours.ground(), colours.line());
            case "MenuBar:Menu", "Menu", "MenuItem", "CheckBoxMenuItem", "RadioButtonMenuItem":
                return isBackground && !state.contains("Disabled") ? plain(colours.mark()) : null;
            case "ComboBox:\"ComboBox.arrowButton\"":
                return isBackground ? null
                                    : new FlatArrow(state.contains("Disabled") ? colours.line() : colours.text());
            case "PopupMenu":
                return new FlatPainter(colours.raised(), colours.line(), 0, 0, false);
            default:
                return null;
        }
    }

    private static boolean isHot(String state) {
        return state.contains("MouseOver") || state.contains("Pressed");
    }

    private static FlatPainter plain(Color face) {
        return new FlatPainter(face, null, 0, 0, false);
    }

    private Color buttonFace(String state) {
        if (state.contains("Disabled")) return colours.ground();
        Color face = colours.raised();
        if (state.contains("Default")) face = Palette.mix(face, colours.mark(), 0.25);
        if (state.contains("Pressed")) return Palette.mix(face, colours.mark(), 0.35);
        if (state.contains("MouseOver")) return Palette.mix(face, colours.mark(), 0.15);
        return face;
    }

    private Color fieldFace(String state) {
        return state.contains("Disabled") ? colours.ground() : colours.surface();
    }

    private Color thumbFace(String state) {
        return Palette.mix(colours.line(), colours.quiet(), isHot(state) ? 0.6 : 0.2);
    }

    private Color headerFace(String state) {
        return isHot(state) ? Palette.mix(colours.ground(), colours.mark(), 0.2) : colours.ground();
    }

    private FlatPainter progress(boolean isBackground, String state) {
        if (isBackground) return new FlatPainter(colours.surface(), colours.line(), 6, 2, false);
        Color face = Palette.mix(colours.surface(), colours.mark(), 0.45);
        return new FlatPainter(face, null, 4, 3, false);
    }
}
