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
    private static final Path SAMPLE = Path.of(System.getProperty("scratch"), "sample");
    private static final List<String> TOLD = new ArrayList<>();
    private static final TaskStatus STATUS = new TaskStatus();
    private static final PlazException RECORD = new PlazException();

    private static List<String> handlersBefore;

    /** The signals that this process ignores, and those that it handles. */
    private static List<String> signalHandlers() {
        try (Stream<String> lines = Files.lines(Path.of("/proc/self/status"))) {
            return lines.filter(line -> line.matches("Sig(Ign|Cgt):.*")).toList();
        } catch (IOException failure) {
            throw new UncheckedIOException(failure);
        }
    }

    @BeforeAll
    static void start() {
        handlersBefore = signalHandlers();
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
        PlazHost.start(listener);
        assertThrows(IllegalStateException.class, () -> PlazHost.start(listener));
    }

    /** Catches: native code that leaves the virtual machine without its signal handlers. */
    @AfterAll
    static void close() {
        STATUS.close();
        RECORD.close();
        assertEquals(handlersBefore, signalHandlers());
    }

    @BeforeEach
    void begin() {
        TOLD.clear();
        PlazHost.begin();
    }

    private static PlazStore store(String name) {
        return PlazSwigIntf.getStore(name);
    }

    private static PlazItem item(String store, String name) {
        return items(store).filter(item -> item.getName().equals(name)).findFirst().orElseThrow();
    }

    private static Stream<PlazItem> items(String store) {
        return stream(store(store).getItems());
    }

    private static <E> Stream<E> stream(Iterable<E> sequence) {
        return StreamSupport.stream(sequence.spliterator(), false);
    }

    private static boolean wasTold(String... parts) {
        return TOLD.stream().anyMatch(told -> Stream.of(parts).allMatch(told::contains));
    }

    /** Catches: a store's field read by another's name, and an answer for what there is not. */
    @Test
    @Order(1)
    void storesAreListedAndChanged() {
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
    }

    /** Catches: items that outlive their refresh, progress that is not told, and a listener that stops the hub. */
    @Test
    @Order(2)
    void refreshBringsTheCatalog() {
        PlazStore boards = store("boards");
        PlazItemVec before = boards.getItems();
        PlazItem aurora = item("boards", "aurora");
        assertFalse(PlazSwigIntf.isRefreshed(boards));
        assertFalse(PlazSwigIntf.isInstalled(boards));
        assertEquals(0, PlazSwigIntf.getLastRefreshTime(boards));
        for (String name : List.of("boards", "tclscripts"))
            assertTrue(PlazSwigIntf.refreshCatalog(store(name), STATUS, RECORD), TOLD::toString);
        assertTrue(PlazSwigIntf.isRefreshed(boards));
        assertTrue(PlazSwigIntf.isInstalled(boards));
        assertTrue(PlazSwigIntf.getLastRefreshTime(boards) > 1_700_000_000L);
        assertTrue(wasTold("progress "), TOLD::toString);
        assertFalse(aurora.isAlive());
        assertThrows(IllegalStateException.class, aurora::getName);
        assertThrows(IllegalStateException.class, before::size);
        assertNotEquals(aurora, item("boards", "aurora"));
        assertTrue(boards.isAlive());
    }

    /** Catches: an item's field read by another's name, and sequences of the wrong kind. */
    @Test
    @Order(3)
    void anItemTellsAllOfItself() {
        PlazItem aurora =
                items("boards").filter(item -> item.toString().equals("boards::aurora@2.0")).findFirst().orElseThrow();
        assertEquals(List.of("Aurora Entwicklungsplatine", "boards", "musterwerk", "Musterwerk Labor", "Änne Grünwald",
                             "https://example.org/boards/aurora"),
                List.of(aurora.getDisplayName(), aurora.getStoreName(), aurora.getCompany(),
                        aurora.getCompanyDisplayName(), aurora.getAuthor(), aurora.getWebsite()));
        assertTrue(aurora.getCommitId().matches("[0-9a-f]{40}"), aurora.getCommitId());
        List<String> needed = stream(aurora.getItemDependencies())
                                      .map(need
                                              -> need.getStore() + "::" + need.getItem() + "@" + need.getRevision()
                                                      + " " + need.isOptional())
                                      .toList();
        assertTrue(needed.contains("boards::io-panel@1.0 false"), needed::toString);
        assertTrue(needed.contains("boards::connectors-common@ false"), needed::toString);
        assertEquals(List.of("Prozessor", "Anzeige", "starter kit", "größer"),
                stream(aurora.getItemSearchKeywords()).toList());
        assertEquals(List.of("development", "starter"), stream(aurora.getCategories()).toList());
        for (PlazCategory category : store("tclscripts").getCategories()) {
            assertFalse(category.getName().isEmpty());
            category.getSubCategories().forEach(below -> assertFalse(below.getDisplayName().isEmpty()));
        }
        List<PlazItem> walked = new ArrayList<>();
        PlazSwigIntf.getItems("boards").forEachRemaining(walked::add);
        assertEquals(items("boards").toList(), walked);
    }

    /** Catches: an action that goes elsewhere, does half, or whose failure gets lost on the way to Java. */
    @Test
    @Order(4)
    void itemsAreInstalledAndRemoved() {
        assertTrue(PlazSwigIntf.install(item("boards", "aurora"), STATUS, RECORD), TOLD::toString);
        assertTrue(wasTold("INFO 17-1573", "Aurora Entwicklungsplatine"), TOLD::toString);
        PlazItem aurora = items("boards")
                                  .filter(PlazItem::IsInstalled)
                                  .filter(item -> item.getName().equals("aurora"))
                                  .findFirst()
                                  .orElseThrow();
        assertTrue(Files.isRegularFile(Path.of(aurora.getLocalRootDir(), "board.xml")), aurora.getLocalRootDir());
        assertTrue(item("tclscripts", "string-kit").IsInstalled());
        assertFalse(aurora.getHistory().isEmpty());
        assertFalse(aurora.NeedsRefresh());

        CommandFailedException failure = assertThrows(CommandFailedException.class,
                () -> PlazSwigIntf.uninstall(item("tclscripts", "string-kit"), STATUS, RECORD));
        assertTrue(failure.getMessage().contains("Boîte à chaînes"), failure.getMessage());

        assertTrue(PlazSwigIntf.update(aurora, STATUS, RECORD), TOLD::toString);
        assertTrue(PlazSwigIntf.uninstall(aurora, STATUS, RECORD), TOLD::toString);
        assertFalse(item("tclscripts", "string-kit").IsInstalled());
    }

    /** Catches: a check that sees no change, and one whose failure is no failure. */
    @Test
    @Order(5)
    void aRemoteThatMovesIsSeen() throws IOException, InterruptedException {
        assertFalse(PlazSwigIntf.hasUpdate(store("tclscripts"), STATUS, RECORD));
        assertEquals("", RECORD.getErrorMsg());
        Path repository = SAMPLE.resolve("repos/tcl-store.git");
        git(repository, "update-ref", "refs/heads/main",
                git(repository, "-c", "user.name=A", "-c", "user.email=a@b.c", "commit-tree", "-p", "main", "-m",
                        "more", "main^{tree}"));
        assertTrue(PlazSwigIntf.hasUpdate(store("tclscripts"), STATUS, RECORD));
        Files.move(repository, SAMPLE.resolve("away"));
        PlazSwigIntf.hasUpdate(store("tclscripts"), STATUS, RECORD);
        assertThrows(
                CommandFailedException.class, () -> PlazSwigIntf.refreshCatalog(store("tclscripts"), STATUS, RECORD));
        assertTrue(wasTold("ERROR 17-"), TOLD::toString);
        assertEquals("string-kit", item("tclscripts", "string-kit").getName());
        Files.move(SAMPLE.resolve("away"), repository);
    }

    private static String git(Path repository, String... words) throws IOException, InterruptedException {
        List<String> command = new ArrayList<>(List.of("git", "--git-dir", repository.toString()));
        command.addAll(List.of(words));
        Process process = new ProcessBuilder(command).redirectError(ProcessBuilder.Redirect.INHERIT).start();
        String answer = new String(process.getInputStream().readAllBytes()).trim();
        assertEquals(0, process.waitFor());
        return answer;
    }

    /** Catches: a cancellation that is lost, ends the hub for good, or changes what is installed. */
    @Test
    @Order(6)
    void whatIsCancelledDoesNothing() throws InterruptedException {
        Thread other = new Thread(PlazHost::cancel);
        other.start();
        other.join();
        assertThrows(
                CommandFailedException.class, () -> PlazSwigIntf.install(item("boards", "hikari"), STATUS, RECORD));
        assertFalse(item("boards", "hikari").IsInstalled());
        PlazHost.begin();
        assertTrue(PlazSwigIntf.install(item("boards", "hikari"), STATUS, RECORD), TOLD::toString);
        assertTrue(item("boards", "hikari").IsInstalled());
    }

    /** Catches: settings that are not kept, a text that Tcl would take apart, items that outlive a move. */
    @Test
    @Order(7)
    void settingsAreKept() {
        assertEquals("", PlazSwigIntf.getHttpProxy());
        PlazSwigIntf.setHttpProxy("http://proxy.example.org:3128");
        assertEquals("http://proxy.example.org:3128", PlazSwigIntf.getHttpProxy());
        PlazSwigIntf.setHttpProxy("");
        Path stores = SAMPLE.resolve("ställe");
        assertTrue(PlazSwigIntf.setQStoresPath(stores.toString()));
        assertEquals(stores.toString(), PlazSwigIntf.getQStoresPath());
        assertThrows(CommandFailedException.class, () -> PlazSwigIntf.setQStoresPath("[exit 3]"));
        assertEquals(stores.toString(), PlazSwigIntf.getQStoresPath());
        PlazStore boards = store("boards");
        PlazItem before = item("boards", "aurora");
        assertTrue(PlazSwigIntf.setQStoreLocalRootDir(boards, SAMPLE.resolve("moved").toString(), RECORD));
        assertTrue(store("boards").getLocalRootDir().startsWith(SAMPLE.resolve("moved").toString()));
        assertThrows(IllegalStateException.class, before::getName);
    }
}
