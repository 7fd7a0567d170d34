package ui.frmwork.plaz.browser;

import java.util.regex.Pattern;

/** Texts of others, such as stores, made fit to be shown. */
final class Readable {
    /** Control characters, marks that turn the direction of what follows, separators that are shown as line ends. */
    private static final Pattern STEERING =
            Pattern.compile("[\\p{Cc}\\u061C\\u200E\\u200F\\u2028-\\u202E\\u2066-\\u2069&&[^\\n\\t]]");

    private Readable() {}

    /** The text with "?" for each character that steers what shows it; line ends and tabs stay. */
    static String of(String text) {
        return STEERING.matcher(text).replaceAll("?");
    }
}
