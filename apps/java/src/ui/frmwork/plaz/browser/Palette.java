package ui.frmwork.plaz.browser;

import java.awt.Color;

/**
 * The colours of a look.
 *
 * @param ground of the window
 * @param surface of what is read or typed in, raised of what is pressed
 * @param line around these
 * @param quiet text that stands back
 * @param mark what is chosen, has the focus or moves
 * @param onMark text on that
 */
record Palette(Color ground, Color surface, Color raised, Color line, Color text, Color quiet, Color mark, Color onMark,
        Color link, Color good, Color warning, Color error) {
    static final Palette LIGHT = of(0xf3f5f7, 0xffffff, 0xffffff, 0xc3cad2, 0x1d232a, 0x59626d, 0x2863a6, 0xffffff,
            0x1a5fb4, 0x1d6b3c, 0x8a5000, 0xb3261e);
    static final Palette DARK = of(0x24282d, 0x1b1e22, 0x32383f, 0x4b535c, 0xe4e8ec, 0xa3acb6, 0x2f6fb5, 0xffffff,
            0x86b8f0, 0x7fcf9b, 0xe9b665, 0xff8f86);

    private static Palette of(int... rgb) {
        Color[] of = new Color[rgb.length];
        for (int i = 0; i < rgb.length; ++i) of[i] = new Color(rgb[i]);
        return new Palette(of[0], of[1], of[2], of[3], of[4], of[5], of[6], of[7], of[8], of[9], of[10], of[11]);
    }

    /** A colour between two. */
    static Color mix(Color one, Color other, double share) {
        return new Color(mix(one.getRed(), other.getRed(), share), mix(one.getGreen(), other.getGreen(), share),
                mix(one.getBlue(), other.getBlue(), share));
    }

    private static int mix(int one, int other, double share) {
        return (int) Math.round(one + (other - one) * share);
    }
}
