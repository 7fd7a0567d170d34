package ui.frmwork.plaz.browser;

import java.awt.GraphicsDevice;
import java.awt.GraphicsEnvironment;
import java.awt.Rectangle;
import java.io.IOException;
import java.io.Reader;
import java.io.Writer;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.OptionalInt;
import java.util.Properties;
import java.util.stream.IntStream;
import java.util.stream.Stream;
import javax.swing.JTable;
import javax.swing.RowSorter.SortKey;
import javax.swing.SortOrder;
import javax.swing.table.TableColumn;

/** How the window was left, in a file of the user's. What is missing or damaged there leaves the window as it is. */
final class WindowState {
    static final String FILE_NAME = "plaz_browser.properties";

    private final Path file;
    private final Properties values = new Properties();

    WindowState(Path directory) {
        file = directory.resolve(FILE_NAME);
        try (Reader reader = Files.newBufferedReader(file)) {
            values.load(reader);
        } catch (IOException | IllegalArgumentException e) {
            values.clear();
        }
    }

    /** Writes a file beside the old one and puts it in its place. */
    void save() throws IOException {
        Files.createDirectories(file.getParent());
        Path written = Files.createTempFile(file.getParent(), FILE_NAME, ".new");
        try {
            try (Writer writer = Files.newBufferedWriter(written)) {
                values.store(writer, null);
            }
            Files.move(written, file, StandardCopyOption.ATOMIC_MOVE, StandardCopyOption.REPLACE_EXISTING);
        } finally {
            Files.deleteIfExists(written);
        }
    }

    OptionalInt number(String name, int least, int most) {
        int[] numbers = numbers(name);
        boolean fits = numbers.length == 1 && numbers[0] >= least && numbers[0] <= most;
        return fits ? OptionalInt.of(numbers[0]) : OptionalInt.empty();
    }

    void set(String name, int... numbers) {
        values.setProperty(name, String.join(",", Arrays.stream(numbers).mapToObj(Integer::toString).toList()));
    }

    /** @param usual used where none is kept; moved so that all screens together show enough of it to be grasped */
    Rectangle bounds(Rectangle usual) {
        int[] kept = numbers("window");
        Rectangle bounds = kept.length == 4 ? new Rectangle(kept[0], kept[1], kept[2], kept[3]) : usual;
        List<Rectangle> screens = Stream.of(GraphicsEnvironment.getLocalGraphicsEnvironment().getScreenDevices())
                                          .map(GraphicsDevice::getDefaultConfiguration)
                                          .map(each -> each.getBounds())
                                          .toList();
        return onScreen(bounds, screens);
    }

    static Rectangle onScreen(Rectangle bounds, List<Rectangle> screens) {
        Rectangle heading = new Rectangle(bounds.x, bounds.y, bounds.width, 40);
        boolean isSeen = bounds.width >= 200 && bounds.height >= 150
                && screens.stream().map(heading::intersection).anyMatch(part -> part.width >= 100 && part.height >= 20);
        if (isSeen || screens.isEmpty()) return bounds;
        Rectangle screen = screens.get(0);
        int width = Math.min(Math.max(bounds.width, 800), screen.width);
        int height = Math.min(Math.max(bounds.height, 600), screen.height);
        return new Rectangle(
                screen.x + (screen.width - width) / 2, screen.y + (screen.height - height) / 2, width, height);
    }

    /** Widths, order and sorting of the columns. */
    void setColumns(JTable table) {
        List<TableColumn> columns = Collections.list(table.getColumnModel().getColumns());
        set("columns", columns.stream().mapToInt(TableColumn::getModelIndex).toArray());
        set("widths", columns.stream().mapToInt(TableColumn::getWidth).toArray());
        List<? extends SortKey> keys = table.getRowSorter().getSortKeys();
        set("sorting",
                keys.stream()
                        .limit(1)
                        .flatMapToInt(key -> IntStream.of(key.getColumn(), key.getSortOrder().ordinal()))
                        .toArray());
    }

    /** @return whether there are widths */
    boolean applyColumns(JTable table) {
        int[] order = numbers("columns");
        int[] widths = numbers("widths");
        int count = table.getColumnCount();
        boolean areKept = order.length == count && widths.length == count && isPermutation(order);
        if (areKept) {
            for (int to = 0; to < count; ++to) {
                int from = table.convertColumnIndexToView(order[to]);
                table.moveColumn(from, to);
                table.getColumnModel().getColumn(to).setPreferredWidth(Math.min(Math.max(widths[to], 10), 4000));
            }
        }
        int[] sorting = numbers("sorting");
        if (sorting.length == 2 && sorting[0] >= 0 && sorting[0] < count && sorting[1] >= 0 && sorting[1] <= 2)
            table.getRowSorter().setSortKeys(List.of(new SortKey(sorting[0], SortOrder.values()[sorting[1]])));
        return areKept;
    }

    private static boolean isPermutation(int[] order) {
        List<Integer> left = new ArrayList<>();
        for (int i = 0; i < order.length; ++i) left.add(i);
        for (int each : order) left.remove((Integer) each);
        return left.isEmpty();
    }

    private int[] numbers(String name) {
        try {
            return Stream.of(values.getProperty(name, "").split(","))
                    .filter(part -> !part.isEmpty())
                    .mapToInt(Integer::parseInt)
                    .toArray();
        } catch (NumberFormatException e) {
            return new int[0];
        }
    }
}
