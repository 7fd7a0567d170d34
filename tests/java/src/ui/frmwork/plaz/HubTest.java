package ui.frmwork.plaz;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Set;
import java.util.concurrent.CompletableFuture;
import java.util.concurrent.ConcurrentHashMap;
import java.util.concurrent.atomic.AtomicBoolean;
import java.util.function.Consumer;
import java.util.stream.Stream;
import java.util.stream.StreamSupport;
import org.junit.jupiter.api.AfterAll;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.MethodOrderer;
import org.junit.jupiter.api.Order;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.TestMethodOrder;
import ui.frmwork.cmd.CommandFailedException;
import ui.frmwork.plaz.host.PlazHost;

/** The sample hub, from the first refresh on; each test goes on where the one before stopped. */
@TestMethodOrder(MethodOrderer.OrderAnnotation.class)
class HubTest {
    private static final Path SAMPLE = Path.of(System.getProperty("scratch"));
    private static final List<String> TOLD = new ArrayList<>();
    private static final TaskStatus STATUS = new TaskStatus();
    private static final PlazException RECORD = new PlazException();

    /** The signals that this process ignores, and those that it handles. */
    private static String signalHandlers() {
        try {
            String status = Files.readString(Path.of("/proc/self/status"));
            return status.substring(status.indexOf("SigIgn"), status.indexOf("CapInh"));
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
    }

    /** Catches: native code that takes the virtual machine's signal handlers away, be it for a moment. */
    private static void assertHandlersStay(Runnable work) {
        Set<String> seen = ConcurrentHashMap.newKeySet();
        for (int i = 0; i < 1000; ++i) seen.add(signalHandlers()); // the machine makes it fast
        AtomicBoolean isDone = new AtomicBoolean();
        CompletableFuture<Void> watch = CompletableFuture.runAsync(() -> {
            while (!isDone.get()) seen.add(signalHandlers());
        });
        work.run();
        isDone.set(true);
        watch.join();
        assertEquals(Set.of(signalHandlers()), seen);
    }

    @BeforeAll
    static void start() {
        PlazHost.Listener listener = new PlazHost.Listener() {
            @Override
            public void message(PlazHost.Severity severity, String id, String text) {
                TOLD.add(severity + " " + id + " " + text);
            }

            @Override
            public void progress(String text, double percent) {
                boolean isFirst = TOLD.stream().noneMatch(told -> told.startsWith("progress"));
                TOLD.add("progress " + text);
                if (isFirst) throw new IllegalStateException("a listener that fails must not stop the hub");
            }
        };
        assertHandlersStay(() -> PlazHost.start(listener));
        assertThrows(IllegalStateException.class, () -> PlazHost.start(listener));
    }

    @AfterAll
    static void close() {
        STATUS.close();
        RECORD.close();
    }

    @BeforeEach
    void begin() {
        TOLD.clear();
        PlazHost.begin();
    }

    private static PlazStore store(String name) {
        return PlazSwigIntf.getStore(name);
    }

    /** By its name, or as it shows itself. */
    private static PlazItem item(String store, String name) {
        return stream(store(store).getItems())
                .filter(item -> item.getName().equals(name) || item.toString().equals(name))
                .findFirst()
                .orElseThrow();
    }

    private static <E> Stream<E> stream(Iterable<E> sequence) {
        return StreamSupport.stream(sequence.spliterator(), false);
    }

    private static void assertTold(String message) {
        assertTrue(TOLD.stream().anyMatch(told -> told.startsWith(message)), TOLD::toString);
    }

    /** Catches: a field read by another's name, a sequence of the wrong kind, and an answer for what there is not. */
    @Test
    @Order(1)
    void storesAndItemsTellOfThemselves() {
        List<String> names = stream(PlazSwigIntf.getStores()).map(PlazStore::getName).toList();
        assertEquals(List.of("boards", "tclscripts"), names);
        assertNull(store("boar"));
        assertFalse(PlazSwigIntf.getItems("boar").hasNext());
        PlazStore boards = store("boards");
        assertEquals(boards, PlazSwigIntf.getStores().iterator().next());
        assertEquals(List.of("Sample boards", "board", "main", false),
                List.of(boards.getDisplayName(), boards.getStoreType(), boards.getBranch(), boards.isUserRepository()));
        assertTrue(boards.getUrl().endsWith("repos/boards-store.git"), boards.getUrl());
        assertTrue(boards.getLocalRootDir().startsWith(PlazHost.getUserDirectory()), boards.getLocalRootDir());
        String description = boards.getDescription();
        boards.setDescription("试验 \ud83d\ude00");
        assertEquals("试验 \ud83d\ude00", store("boards").getDescription());
        boards.setDescription(description);

        PlazItem aurora = item("boards", "boards::aurora@2.0");
        assertEquals(List.of("Aurora Entwicklungsplatine", "boards", "musterwerk", "Musterwerk Labor", "Änne Grünwald",
                             "https://example.org/boards/aurora"),
                List.of(aurora.getDisplayName(), aurora.getStoreName(), aurora.getCompany(),
                        aurora.getCompanyDisplayName(), aurora.getAuthor(), aurora.getWebsite()));
        assertTrue(aurora.getCommitId().matches("[0-9a-f]{40}"), aurora.getCommitId());
        PlazItemDependency need = stream(aurora.getItemDependencies()).toList().get(1);
        assertEquals(List.of("boards", "io-panel", "1.0", false),
                List.of(need.getStore(), need.getItem(), need.getRevision(), need.isOptional()));
        assertEquals(List.of("Prozessor", "Anzeige", "starter kit", "größer"),
                stream(aurora.getItemSearchKeywords()).toList());
        assertEquals(List.of("development", "starter"), stream(aurora.getCategories()).toList());
        for (PlazCategory category : store("tclscripts").getCategories()) {
            assertFalse(category.getName().isEmpty());
            category.getSubCategories().forEach(below -> assertFalse(below.getDisplayName().isEmpty()));
        }
        List<PlazItem> walked = new ArrayList<>();
        PlazSwigIntf.getItems("boards").forEachRemaining(walked::add);
        assertEquals(stream(store("boards").getItems()).toList(), walked);
    }

    /** Catches: a plan that is cut wrongly, is of other stores, or changes what is known. */
    private static void assertPlansTellOfWhatIsPublished() {
        PlazItem panel = item("boards", "io-panel");
        List<PlazHost.StorePlan> plans = PlazHost.planRefresh(List.of());
        PlazHost.StorePlan plan = plans.get(0);
        assertEquals(List.of("boards", "outdated", "", List.of("more")),
                List.of(plan.store(), plan.outcome(), plan.url(), plan.subjects()));
        assertTrue((plan.previousCommit() + plan.commit()).matches("[0-9a-f]{80}"), plan::toString);
        List<PlazHost.CatalogChange> items = new ArrayList<>();
        for (String revision : List.of("1.0", "1.1")) {
            items.add(new PlazHost.CatalogChange("new", "new", revision, "", false));
            items.add(new PlazHost.CatalogChange("withdrawn", "io-panel", revision, "", false));
        }
        assertEquals(Set.copyOf(items), Set.copyOf(plan.items()));
        assertEquals(List.of("tclscripts", "up-to-date"), List.of(plans.get(1).store(), plans.get(1).outcome()));
        assertEquals(plans, PlazHost.planRefreshHub());
        assertEquals(List.of(plan), PlazHost.planRefresh(List.of("boards")));
        assertThrows(CommandFailedException.class, () -> PlazHost.planRefresh(List.of("boar")));
        assertEquals(panel, item("boards", "io-panel"));
        assertTrue(PlazHost.check("boards"));
    }

    /**
       Catches: items that outlive their refresh, a proxy that holds until the program ends, progress that is not told,
       a listener that stops the hub, a check that sees no change, or takes silence for an answer.
     */
    @Test
    @Order(2)
    void refreshBringsTheCatalog() throws Exception {
        PlazStore boards = store("boards");
        PlazItemVec before = boards.getItems();
        PlazItem aurora = item("boards", "aurora");
        assertFalse(PlazSwigIntf.isRefreshed(boards) || PlazSwigIntf.isInstalled(boards));
        assertHandlersStay(() -> assertFalse(PlazSwigIntf.canAccessRepo(boards), "which is a file"));
        assertEquals(0, PlazSwigIntf.getLastRefreshTime(boards));
        for (PlazStore store : PlazSwigIntf.getStores())
            assertTrue(PlazSwigIntf.refreshCatalog(store, STATUS, RECORD), TOLD::toString);
        assertTrue(PlazSwigIntf.isRefreshed(boards) && PlazSwigIntf.isInstalled(boards));
        assertTrue(PlazSwigIntf.getLastRefreshTime(boards) > 1_700_000_000L);
        Path config = Path.of(boards.getLocalRootDir(), ".plaz/.index/.git/config");
        assertTrue(Files.readString(config).contains("proxy = http://proxy.invalid"), config::toString);
        assertFalse(PlazSwigIntf.hasUpdate(boards, STATUS, RECORD));
        String publish =
                "catalog=$(git show main:boards_catalog.json | sed 's/\"io-panel\"/\"new\"/' | git hash-object -w "
                + "--stdin) && git read-tree main && git update-index --cacheinfo 100644,$catalog,boards_catalog.json "
                + "&& git update-ref refs/heads/main $(git -c user.name=A -c user.email=a@b.c commit-tree -p main "
                + "-m more $(git write-tree))";
        assertEquals(0,
                new ProcessBuilder("sh", "-c", publish)
                        .directory(SAMPLE.resolve("repos/boards-store.git").toFile())
                        .start()
                        .waitFor());
        assertTrue(PlazSwigIntf.hasUpdate(boards, STATUS, RECORD));
        assertPlansTellOfWhatIsPublished();
        String url = boards.getUrl();
        boards.setUrl(url + ".gone");
        CommandFailedException failure = assertThrows(CommandFailedException.class, () -> PlazHost.check("boards"));
        assertTold("ERROR 17-2195 " + failure.getMessage());
        boards.setUrl(url);
        assertTold("progress ");
        assertFalse(aurora.isAlive());
        assertThrows(IllegalStateException.class, aurora::getName);
        assertThrows(IllegalStateException.class, before::size);
        assertNotEquals(aurora, item("boards", "aurora"));
        assertTrue(boards.isAlive());
    }

    /** Catches: an action that goes elsewhere, whose message is lost or cut off, or frees what somebody holds. */
    @Test
    @Order(3)
    void itemsAreInstalledAndRemoved() {
        List<PlazItemDependency> held = stream(item("boards", "aurora").getItemDependencies()).toList();
        List<String> names = held.stream().map(PlazItemDependency::getItem).toList();
        assertTrue(PlazSwigIntf.install(item("boards", "aurora"), STATUS, RECORD), TOLD::toString);
        assertEquals(names, held.stream().map(PlazItemDependency::getItem).toList());
        assertTold("INFO 17-1573 ");
        PlazItem aurora = item("boards", "boards::aurora@2.0");
        assertTrue(aurora.IsInstalled());
        assertEquals(0, aurora.getSource(), "the hub gives no other value");
        assertTrue(Files.isRegularFile(Path.of(aurora.getLocalRootDir(), "board.xml")), aurora.getLocalRootDir());
        assertFalse(aurora.getHistory().isEmpty());
        assertFalse(aurora.NeedsRefresh());
        assertEquals(1, PlazHost.verify("boards::aurora").size(), "files of another item");
        for (String missing : List.of("boards::aurora@1.0", "{", "boards::no such"))
            for (Consumer<String> call : List.<Consumer<String>>of(PlazHost::verify, PlazHost::repair))
                assertThrows(CommandFailedException.class, () -> call.accept(missing), missing);
        assertThrows(NullPointerException.class, () -> PlazHost.verify((String) null));
        assertTrue(PlazSwigIntf.update(aurora, STATUS, RECORD), TOLD::toString);
        CommandFailedException failure = assertThrows(CommandFailedException.class,
                () -> PlazSwigIntf.uninstall(item("tclscripts", "string-kit"), STATUS, RECORD));
        assertTrue(failure.getMessage().contains("Boîte à chaînes"), failure.getMessage());
        assertTold("ERROR 17-1568 ");
        assertTrue(PlazSwigIntf.uninstall(aurora, STATUS, RECORD), TOLD::toString);
        assertFalse(item("tclscripts", "string-kit").IsInstalled());
    }

    /**
       Catches: steps, reasons or entries that are cut wrongly or are of other items, a hold that holds nothing or
       cannot be ended, and an undo that changes nothing, or more.
     */
    @Test
    @Order(4)
    void whatIsDoneIsToldAndTakenBack() {
        List<PlazHost.Step> steps = PlazHost.plan(PlazHost.Change.INSTALL, "tclscripts::csv-kit");
        assertEquals(List.of("tclscripts::csv-kit@1.1", "tclscripts::string-kit@1.0"),
                steps.stream().map(PlazHost.Step::item).toList());
        assertEquals(List.of(true, false), steps.stream().map(PlazHost.Step::isAskedFor).toList());
        assertTrue(
                steps.get(0).kind().equals("install") && steps.get(1).neededBy().contains("csv-kit"), steps::toString);
        assertTrue(PlazSwigIntf.install(item("tclscripts", "tclscripts::csv-kit@1.1"), STATUS, RECORD), TOLD::toString);
        assertEquals(List.of("You asked for tclscripts::csv-kit@1.1."), PlazHost.why("tclscripts::csv-kit"));
        assertEquals(List.of("You asked for tclscripts::csv-kit@1.1, which needs tclscripts::string-kit@1.0."),
                PlazHost.why("tclscripts::string-kit"));
        assertThrows(CommandFailedException.class, () -> PlazHost.why("boards::aurora"));

        PlazHost.Entry entry = PlazHost.history().get(0);
        assertEquals("install tclscripts::csv-kit", entry.command());
        assertEquals(Set.of(new PlazHost.ItemChange("tclscripts::csv-kit@1.1", "installed"),
                             new PlazHost.ItemChange("tclscripts::string-kit@1.0", "installed as a dependency")),
                Set.copyOf(entry.changes()));
        assertFalse(entry.isUndone() || entry.isUndo());
        PlazHost.hold("tclscripts::csv-kit");
        assertTrue(PlazHost.facts().contains(new PlazHost.Fact("held", "tclscripts::csv-kit@1.1", "")));
        assertTrue(PlazHost.isHeld("tclscripts::csv-kit") && !PlazHost.isHeld("boards::aurora"));
        assertThrows(CommandFailedException.class, () -> PlazHost.undo(entry.number()));
        PlazHost.unhold("tclscripts::csv-kit");
        assertThrows(CommandFailedException.class, () -> PlazHost.unhold("tclscripts::csv-kit"));
        PlazHost.undo();
        assertEquals(
                List.of("unhold"), PlazHost.planUndo(entry.number() + 1).stream().map(PlazHost.Step::kind).toList());
        PlazHost.undo();
        assertEquals(List.of("remove tclscripts::csv-kit@1.1", "remove tclscripts::string-kit@1.0"),
                PlazHost.planUndo(entry.number()).stream().map(step -> step.kind() + " " + step.item()).toList());
        PlazHost.undo();
        assertFalse(item("tclscripts", "tclscripts::csv-kit@1.1").IsInstalled());
        assertEquals(List.of(entry.number() + 5, "undo " + entry.number()),
                List.of(PlazHost.history().get(0).number(), PlazHost.history().get(0).command()));
        assertTrue(PlazHost.history().get(0).isUndo() && PlazHost.history().get(5).isUndone());
        assertThrows(CommandFailedException.class, () -> PlazHost.undo(entry.number()), "a second time");
    }

    /** Catches: settings that are not kept or are mixed up, and items that outlive a move. */
    @Test
    @Order(5)
    void settingsAreKept() {
        PlazSwigIntf.setHttpProxy("http://proxy.example.org:3128");
        Path stores = SAMPLE.resolve("ställe");
        assertTrue(PlazSwigIntf.setQStoresPath(stores.toString()));
        assertThrows(CommandFailedException.class, () -> PlazSwigIntf.setQStoresPath("[exit 3]"));
        assertEquals(List.of("http://proxy.example.org:3128", stores.toString()),
                List.of(PlazSwigIntf.getHttpProxy(), PlazSwigIntf.getQStoresPath()));
        PlazItem before = item("boards", "aurora");
        assertTrue(PlazSwigIntf.setQStoreLocalRootDir(store("boards"), SAMPLE.resolve("moved").toString(), RECORD));
        assertTrue(store("boards").getLocalRootDir().startsWith(SAMPLE.resolve("moved").toString()));
        assertThrows(IllegalStateException.class, before::getName);
    }
}
