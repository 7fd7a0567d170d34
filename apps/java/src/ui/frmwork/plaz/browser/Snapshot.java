package ui.frmwork.plaz.browser;

import java.util.List;
import java.util.Optional;
import java.util.stream.Stream;

/**
 * What the hub held at one time. Nothing in it reaches back into the hub, so that any thread may read it.
 *
 * @param proxy the user's proxy, empty for none
 * @param storesPath the directory below which the user keeps stores, empty for the default
 */
record Snapshot(List<Store> stores, String proxy, String storesPath, Hub hub) {
    /**
     * Which hub is in force.
     *
     * @param url where it is fetched from; empty where that is not known
     * @param chooser what chose it
     * @param ownStores those that the user has added, by name
     */
    record Hub(String url, String chooser, String metadata, List<String> ownStores) {}

    /**
     * A store, its items each by one entry.
     *
     * @param isListed whether the hub lists it; of others there is but what is installed, and nothing to fetch
     */
    record Store(String name, String title, String directory, boolean isListed, boolean refreshed,
            List<Category> categories, List<Item> items) {}

    /** A node of a store's tree of categories. */
    record Category(String name, String title, List<Category> below) {
        /** The names of the category and all below it. */
        Stream<String> names() {
            return Stream.concat(Stream.of(name), below.stream().flatMap(Category::names));
        }
    }

    /** What names an item. */
    record Key(String store, String name) {
        /** As the hub's commands take it, for each revision. */
        @Override
        public String toString() {
            return store + "::" + name;
        }

        /** @param revision empty for none in particular */
        String at(String revision) {
            return revision.isEmpty() ? toString() : this + "@" + revision;
        }
    }

    /** How an item stands on this machine, in the order in which the table sorts it. */
    enum State { NONE, INSTALLED, OUTDATED }

    /**
     * How an item stands, beside its description.
     *
     * @param installed the revisions that are, the latest first
     * @param isForOthers whether it is installed because others need it, not because one asked for it
     * @param isHeld whether a person holds it in its revision
     * @param isInactive whether it is no longer kept up
     * @param neededBy installed items that need it
     */
    record Standing(State state, List<String> installed, boolean isForOthers, boolean isHeld, boolean isInactive,
            List<Dependency> neededBy) {}

    /**
     * An item as its latest revision describes it.
     *
     * @param logo a file or an address, as the catalog has it
     * @param revisions all of them, the latest first
     */
    record Item(Key key, String title, String description, String revision, Standing standing, String company,
            String author, String website, String logo, List<String> categories, List<String> keywords,
            List<Revision> revisions, List<Dependency> dependencies) {
        State state() {
            return standing.state();
        }

        boolean isInstalled() {
            return state() != State.NONE;
        }

        /** Whether an update would change something. */
        boolean isUpdatable() {
            return state() == State.OUTDATED && !standing.isHeld();
        }

        /** Whether another revision could come, if no person held the one that is installed. */
        boolean isKeptBack() {
            return standing.isHeld() && !isLatestInstalled();
        }

        boolean isLatestInstalled() {
            return standing.installed().contains(revision);
        }

        /**
         * The state in words, with the revisions that are installed, the latest first, where the latest of all is not.
         */
        String stateText() {
            String text = switch (state()) {
                case NONE -> ""; case INSTALLED -> standing.isForOthers() ? "needed by others":
                    "installed";
                case OUTDATED -> standing.isForOthers() ? "outdated, needed by others":
                    "outdated";
            };
            if (isInstalled() && !isLatestInstalled()) text += " (" + String.join(", ", standing.installed()) + ")";
            if (standing.isHeld()) text += ", held";
            if (standing.isInactive()) text += text.isEmpty() ? "inactive" : ", inactive";
            return text;
        }
    }

    /** @param directory where it is installed; empty when it is not */
    record Revision(String text, String directory) {}

    /** @param revision the one that is needed; empty for any */
    record Dependency(Key key, String revision) {}

    /** Before anything is known. */
    static final Snapshot NOTHING = new Snapshot(List.of(), "", "", new Hub("", "", "", List.of()));

    /** Those from which something can be fetched. */
    List<Store> listedStores(Scope scope) {
        return stores(scope).stream().filter(Store::isListed).toList();
    }

    List<Store> stores(Scope scope) {
        return stores.stream().filter(store -> scope.isOf(store.name())).toList();
    }

    Stream<Item> items() {
        return stores.stream().flatMap(store -> store.items().stream());
    }

    Optional<Store> store(String name) {
        return stores.stream().filter(store -> store.name().equals(name)).findFirst();
    }

    Optional<Item> item(Key key) {
        return items().filter(item -> item.key().equals(key)).findFirst();
    }
}
