package ui.frmwork.plaz;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.lang.reflect.Array;
import java.lang.reflect.InvocationTargetException;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.Stream;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import org.junit.jupiter.params.provider.MethodSource;

class BindingTest {
    /** Catches: a failure of native code that arrives as another exception, with another text, or ends the program. */
    @ParameterizedTest
    @CsvSource({
            "host, ui.frmwork.cmd.CommandFailedException, größer als 5 €",
            "memory, ui.frmwork.COutOfMemoryException, Out of memory",
            "standard, ui.frmwork.cmd.CommandFailedException, Unknown exception occurred",
            "number, ui.frmwork.cmd.CommandFailedException, Unknown exception occurred",
            "kind 0, java.lang.OutOfMemoryError, of kind 0",
            "kind 1, java.io.IOException, of kind 1",
            "kind 2, java.lang.RuntimeException, of kind 2",
            "kind 3, java.lang.IndexOutOfBoundsException, of kind 3",
            "kind 4, java.lang.ArithmeticException, of kind 4",
            "kind 5, java.lang.IllegalArgumentException, of kind 5",
            "kind 6, java.lang.NullPointerException, of kind 6",
            "kind 7, java.lang.UnknownError, of kind 7",
            "kind 99, java.lang.UnknownError, of kind 99",
    })
    void
    failuresArrive(String how, String type, String text) {
        Throwable thrown = assertThrows(Throwable.class, () -> Failures.fail(how));
        assertEquals(type, thrown.getClass().getName());
        assertEquals(text, thrown.getMessage());
    }

    /** Catches: a text that changes on its way into the library or out of it, or ends early; half a character lost. */
    @Test
    void textsCrossUnchanged() {
        for (String text : List.of("", "plain", "Prüfadapter µ €", "Δοκιμή Проверка בדיקה اختبار परीक्षण",
                     "試験 시험 ทดสอบ", "\ud83d\ude00 \ud835\udd4f\udbff\udfff", "before\0after\0",
                     "\u0001\u007f\u0080\u07ff\u0800\uffff"))
            assertEquals(text, passed(text));
        assertEquals("a\ufffdb\ufffd\ufffd", passed("a\ud83db\ude00\ud83d"));
    }

    private static String passed(String text) {
        try (PlazException exception = new PlazException(text, 0, 0)) {
            return exception.getErrorMsg();
        }
    }

    /** Catches: a member that reads what lies at address 0 or takes a null string, and one that refuses needlessly. */
    @ParameterizedTest
    @MethodSource("natives")
    void nothingIsRefused(Method method) throws IllegalAccessException {
        Object[] nothing =
                Stream.of(method.getParameterTypes()).map(type -> Array.get(Array.newInstance(type, 1), 0)).toArray();
        String refusal = "null";
        try {
            method.invoke(null, nothing);
        } catch (InvocationTargetException failure) {
            refusal = failure.getCause().toString().replaceFirst("\\S+ & ", "& ");
        }
        assertEquals(refusalOf(method), refusal, method::getName);
    }

    private static Stream<Method> natives() {
        return Stream.of(plazi.class.getDeclaredMethods()).filter(method -> Modifier.isNative(method.getModifiers()));
    }

    private static String refusalOf(Method method) {
        String name = method.getName();
        boolean isHarmless = name.matches("\\w+_delete_\\w+|PlazException_set_\\w+_(code|context)"
                + "|\\w+_(canAccessRepo|isInstalled|isRefreshed|getLastRefreshTime)");
        if (isHarmless || method.getParameterCount() == 0) return "null";
        boolean takesText = List.of(method.getParameterTypes()).contains(String.class);
        boolean isOther = name.matches("PlazException_(new_PlazException|set_PlazException_error_msg)");
        return "java.lang.NullPointerException: "
                + (!takesText             ? "& reference is null"
                                : isOther ? "null string"
                                          : "null std::string");
    }

    /** Catches: the wrong complaint, or a call that is made all the same. */
    @Test
    void actionsWantTheirRecords() {
        try (TaskStatus status = new TaskStatus(); PlazException exception = new PlazException()) {
            assertEquals("HDGUIStatus & reference is null", complaint(null, null));
            assertEquals("HSCPlazTypes::HSCPlazException & reference is null", complaint(status, null));
            assertFalse(PlazSwigIntf.install(null, status, exception));
            plazi.PlazException_set_PlazException_error_msg(0, null, "a record that is null takes no text");
        }
    }

    private static String complaint(TaskStatus status, PlazException exception) {
        return assertThrows(NullPointerException.class, () -> PlazSwigIntf.install(null, status, exception))
                .getMessage();
    }

    /** Catches: a proxy that passes on an address that is no more, or frees it twice. */
    @Test
    void closedProxiesRefuse() {
        TaskStatus status = new TaskStatus();
        status.close();
        status.close();
        assertThrows(IllegalStateException.class, status::cancel);
        StringVector vector = new StringVector();
        vector.push_back("one");
        StringVectorIter iterator = vector.createIter();
        vector.close();
        assertThrows(IllegalStateException.class, vector::size);
        assertThrows(IllegalStateException.class, () -> vector.push_back("two"));
        assertEquals("one", iterator.next());
        assertFalse(iterator.hasNext());
        assertThrows(java.util.NoSuchElementException.class, iterator::next);
        iterator.close();
        assertFalse(iterator.hasNext());
    }

    /** Catches: fields that are mixed up, and a sequence that does not keep its elements. */
    @Test
    void recordsAndSequencesHoldWhatTheyGet() {
        try (PlazException exception = new PlazException("text", 3, -4); TaskStatus status = new TaskStatus();
                PlazQStoreVec stores = new PlazQStoreVec()) {
            assertEquals(List.of("text", 3, -4),
                    List.of(exception.getErrorMsg(), exception.getErrorCode(), exception.getErrorContext()));
            exception.setErrorCode(Integer.MIN_VALUE);
            exception.setErrorContext(Integer.MAX_VALUE);
            assertEquals(List.of(Integer.MIN_VALUE, Integer.MAX_VALUE),
                    List.of(exception.getErrorCode(), exception.getErrorContext()));
            status.changeStatus("a long text");
            status.changeAbbrevStatus("short");
            status.changePercentComplete(12.5);
            status.setDeterminate(false);
            assertEquals(List.of("short", "a long text", 12.5, false, 0, false),
                    List.of(status.getAbbrevStatusMessage(), status.getStatusMessage(), status.getPercentComplete(),
                            status.isDeterminate(), status.getState(), status.isCanceled()));
            status.cancel();
            assertEquals(List.of(4, true, true), List.of(status.getState(), status.isCanceled(), status.canCancel()));
            PlazSwigIntf.getStores().forEach(stores::push_back);
            List<PlazStore> held = new ArrayList<>();
            stores.forEach(held::add);
            assertEquals(List.of(PlazSwigIntf.getStore("boards"), PlazSwigIntf.getStore("tclscripts")), held);
            assertEquals(2, stores.size());
            stores.clear();
            assertEquals(0, stores.size());
            assertThrows(UnsupportedOperationException.class, () -> PlazSwigIntf.getStores().clear());
        }
    }

    /** Catches: memory that a call, a closed object or a forgotten one leaves behind. */
    @Test
    void aMillionCallsLeaveNothingBehind() throws IOException {
        String text = "a text that takes memory of its own, in each of the calls: größer";
        useMuch(text, 50_000);
        long before = residentPages();
        useMuch(text, 200_000);
        long grown = residentPages() - before;
        assertTrue(grown < 4096, () -> grown + " pages more");
    }

    /** Five calls each round. */
    private static void useMuch(String text, int rounds) {
        try (PlazException exception = new PlazException(); StringVector vector = new StringVector()) {
            vector.push_back(text);
            for (int i = 0; i < rounds; i++) {
                exception.setErrorMsg(text);
                exception.getErrorMsg();
                vector.createIter().next();
                assertThrows(NullPointerException.class, () -> exception.setErrorMsg(null));
                new PlazException(text, 0, 0).close();
                if (i % 10_000 == 0) System.gc();
            }
        }
    }

    private static long residentPages() throws IOException {
        System.gc();
        return Long.parseLong(Files.readString(Path.of("/proc/self/statm")).split(" ")[1]);
    }
}
