package ui.frmwork.plaz.browser;

import java.awt.Toolkit;
import java.io.IOException;
import java.io.InputStream;
import java.nio.charset.StandardCharsets;
import java.util.Locale;
import java.util.concurrent.CompletableFuture;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.TimeoutException;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * How the desktop wants windows to look.
 *
 * @param fontSize in pixels; 0 where it does not say
 */
record DesktopSettings(boolean isDark, double fontSize) {
    private static final int SECONDS = 2;
    private static final Pattern FONT_SIZE = Pattern.compile("^\\S+ font-name '.* ([0-9.]+)'$", Pattern.MULTILINE);
    private static final Pattern SCALE = Pattern.compile("^\\S+ text-scaling-factor ([0-9.]+)$", Pattern.MULTILINE);
    private static final Pattern DARK =
            Pattern.compile("^\\S+ (color-scheme 'prefer-dark'|gtk-theme '.*-dark')$", Pattern.MULTILINE);
    /** Of the usual screen, for points. */
    private static final double DOTS_PER_INCH = 96;

    /** What the toolkit knows goes first; it hears of the desktop's own settings where a service tells them. */
    static DesktopSettings read() {
        DesktopSettings asked = parse(ask());
        Toolkit toolkit = Toolkit.getDefaultToolkit();
        boolean isDark = asked.isDark
                || toolkit.getDesktopProperty("gnome.Net/ThemeName") instanceof String theme
                        && theme.toLowerCase(Locale.ROOT).endsWith("-dark");
        if (toolkit.getDesktopProperty("win.messagebox.font") instanceof java.awt.Font font)
            return new DesktopSettings(isDark, font.getSize2D());
        if (toolkit.getDesktopProperty("gnome.Gtk/FontName") instanceof String name
                && toolkit.getDesktopProperty("gnome.Xft/DPI") instanceof Integer dots && dots > 0) {
            Matcher points = Pattern.compile(" ([0-9]{1,3})$").matcher(name);
            if (points.find()) return new DesktopSettings(isDark, pixels(points.group(1), dots / 1024.0));
        }
        return new DesktopSettings(isDark, asked.fontSize);
    }

    /** @param listed keys with their values, as the desktop's program lists them */
    static DesktopSettings parse(String listed) {
        Matcher points = FONT_SIZE.matcher(listed);
        Matcher scale = SCALE.matcher(listed);
        double size = points.find() ? pixels(points.group(1), DOTS_PER_INCH) : 0;
        try {
            if (scale.find()) size *= Double.parseDouble(scale.group(1));
        } catch (NumberFormatException e) {
            // not scaled, then
        }
        return new DesktopSettings(DARK.matcher(listed).find(), size);
    }

    private static double pixels(String points, double dotsPerInch) {
        try {
            return Double.parseDouble(points) * dotsPerInch / 72;
        } catch (NumberFormatException e) {
            return 0;
        }
    }

    /** @return nothing where there is no such desktop, or none that answers in time */
    private static String ask() {
        try {
            Process process = new ProcessBuilder("gsettings", "list-recursively", "org.gnome.desktop.interface")
                                      .redirectError(ProcessBuilder.Redirect.DISCARD)
                                      .start();
            try (InputStream output = process.getInputStream()) {
                return CompletableFuture.supplyAsync(() -> readAll(output)).get(SECONDS, TimeUnit.SECONDS);
            } finally {
                process.destroyForcibly();
            }
        } catch (IOException | InterruptedException | ExecutionException | TimeoutException e) {
            return "";
        }
    }

    private static String readAll(InputStream output) {
        try {
            return new String(output.readAllBytes(), StandardCharsets.UTF_8);
        } catch (IOException e) {
            return "";
        }
    }
}
