package ui.frmwork.plaz.browser;

import java.awt.image.BufferedImage;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Optional;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import javax.swing.SwingUtilities;
import ui.frmwork.plaz.browser.Snapshot.Item;
import ui.frmwork.plaz.browser.Snapshot.Store;

/** Pictures of items, read beside the thread of the windows, which alone may use this. */
final class LogoCache {
    private static final int MOST = 2000;

    private record Place(String directory, String file, int size) {}

    private final Map<Place, Optional<BufferedImage>> pictures = new LinkedHashMap<>(16, 0.75f, true) {
        private static final long serialVersionUID = 1;

        @Override
        protected boolean removeEldestEntry(Map.Entry<Place, Optional<BufferedImage>> eldest) {
            return size() > MOST;
        }
    };
    private final ExecutorService reader = Executors.newSingleThreadExecutor(work -> {
        Thread thread = new Thread(work, "logos");
        thread.setDaemon(true);
        return thread;
    });
    private final List<Runnable> listeners = new ArrayList<>();
    private Snapshot snapshot = Snapshot.NOTHING;

    /** @param loaded called whenever a picture has come */
    void whenLoaded(Runnable loaded) {
        listeners.add(loaded);
    }

    /** What was installed or fetched may have other pictures. */
    void show(Snapshot newest) {
        snapshot = newest;
        pictures.clear();
    }

    /** @return the picture where it is known, else a tile, until it has come */
    Logo find(Item item, int size) {
        String directory = snapshot.store(item.key().store()).map(Store::directory).orElse("");
        Place place = new Place(directory, item.logo(), size);
        if (!pictures.containsKey(place)) {
            pictures.put(place, Optional.empty());
            if (!item.logo().isEmpty()) reader.execute(() -> read(place));
        }
        return new Logo(item.title(), pictures.get(place), size);
    }

    private void read(Place place) {
        Optional<BufferedImage> picture = Logo.read(place.directory(), place.file(), 2 * place.size());
        if (picture.isPresent())
            SwingUtilities.invokeLater(() -> {
                pictures.put(place, picture);
                listeners.forEach(Runnable::run);
            });
    }
}
