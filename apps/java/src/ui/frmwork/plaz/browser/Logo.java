package ui.frmwork.plaz.browser;

import java.awt.Color;
import java.awt.Component;
import java.awt.Font;
import java.awt.Graphics;
import java.awt.Graphics2D;
import java.awt.Image;
import java.awt.RenderingHints;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Iterator;
import java.util.Optional;
import javax.imageio.ImageIO;
import javax.imageio.ImageReader;
import javax.imageio.stream.ImageInputStream;
import javax.swing.Icon;

/** An item's picture; for one without, or of a format that cannot be drawn, a tile with its first letter. */
record Logo(String title, Optional<BufferedImage> picture, int size) implements Icon {
    private static final long MOST_BYTES = 1 << 20;
    private static final int MOST_PIXELS = 4096;
    private static final Color[] TILES = {new Color(0x2f6cab), new Color(0x3f7d58), new Color(0x8a5a2b),
            new Color(0x6b4c9a), new Color(0x9a3b4f), new Color(0x33727a)};

    /**
     * Reads a picture. A file that lies outside of the store's directory is not touched, nor is one that is large.
     *
     * @param file as the catalog has it: perhaps no file at all
     * @param pixels how large it is wanted
     */
    static Optional<BufferedImage> read(String directory, String file, int pixels) {
        try {
            if (directory.isEmpty() || file.isEmpty() || !Files.isRegularFile(Path.of(file))) return Optional.empty();
            Path real = Path.of(file).toRealPath();
            if (!real.startsWith(Path.of(directory).toRealPath()) || Files.size(real) > MOST_BYTES)
                return Optional.empty();
            return file.endsWith(".svg") ? Drawing.draw(Files.readAllBytes(real), pixels)
                                         : decode(real).map(image -> reduced(image, pixels));
        } catch (IOException | IllegalArgumentException e) {
            return Optional.empty();
        }
    }

    private static BufferedImage reduced(BufferedImage image, int pixels) {
        double scale = (double) pixels / Math.max(image.getWidth(), image.getHeight());
        if (scale >= 1) return image;
        int width = (int) Math.max(1, image.getWidth() * scale);
        int height = (int) Math.max(1, image.getHeight() * scale);
        BufferedImage small = new BufferedImage(width, height, BufferedImage.TYPE_INT_ARGB);
        Graphics2D g = small.createGraphics();
        g.drawImage(image.getScaledInstance(width, height, Image.SCALE_AREA_AVERAGING), 0, 0, null);
        g.dispose();
        return small;
    }

    private static Optional<BufferedImage> decode(Path file) throws IOException {
        ImageIO.setUseCache(false);
        try (ImageInputStream stream = ImageIO.createImageInputStream(file.toFile())) {
            Iterator<ImageReader> readers = ImageIO.getImageReaders(stream);
            if (!readers.hasNext()) return Optional.empty();
            ImageReader reader = readers.next();
            try {
                reader.setInput(stream);
                boolean fits = reader.getWidth(0) <= MOST_PIXELS && reader.getHeight(0) <= MOST_PIXELS;
                return fits ? Optional.of(reader.read(0)) : Optional.empty();
            } finally {
                reader.dispose();
            }
        }
    }

    @Override
    public int getIconWidth() {
        return size;
    }

    @Override
    public int getIconHeight() {
        return size;
    }

    @Override
    public void paintIcon(Component component, Graphics graphics, int x, int y) {
        Graphics2D g = (Graphics2D) graphics.create();
        g.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
        g.setRenderingHint(RenderingHints.KEY_TEXT_ANTIALIASING, RenderingHints.VALUE_TEXT_ANTIALIAS_ON);
        g.setRenderingHint(RenderingHints.KEY_INTERPOLATION, RenderingHints.VALUE_INTERPOLATION_BICUBIC);
        picture.ifPresentOrElse(image -> paintPicture(g, image, x, y), () -> paintTile(g, component.getFont(), x, y));
        g.dispose();
    }

    private void paintPicture(Graphics2D g, BufferedImage image, int x, int y) {
        double scale = (double) size / Math.max(image.getWidth(), image.getHeight());
        int width = (int) Math.max(1, image.getWidth() * scale);
        int height = (int) Math.max(1, image.getHeight() * scale);
        g.drawImage(image, x + (size - width) / 2, y + (size - height) / 2, width, height, null);
    }

    private void paintTile(Graphics2D g, Font font, int x, int y) {
        g.setColor(TILES[Math.floorMod(title.hashCode(), TILES.length)]);
        g.fillRoundRect(x, y, size, size, size / 4, size / 4);
        if (title.isBlank()) return;
        String letter = new String(Character.toChars(Character.toUpperCase(title.codePointAt(0))));
        g.setFont(font.deriveFont(Font.PLAIN, size * 0.55f));
        int left = (size - g.getFontMetrics().stringWidth(letter)) / 2;
        int base = (size - g.getFontMetrics().getHeight()) / 2 + g.getFontMetrics().getAscent();
        g.setColor(Color.WHITE);
        g.drawString(letter, x + left, y + base);
    }
}
