package ui.frmwork.plaz.browser;

import static java.util.stream.Collectors.collectingAndThen;
import static java.util.stream.Collectors.groupingBy;
import static java.util.stream.Collectors.joining;
import static java.util.stream.Collectors.mapping;
import static java.util.stream.Collectors.toList;

import java.util.EnumMap;
import java.util.List;
import java.util.Map;
import ui.frmwork.plaz.host.PlazHost.FileState;
import ui.frmwork.plaz.host.PlazHost.Finding;

/** How files compare with those that were installed, in words. */
final class Comparisons {
    private static final int MOST = 10;

    private Comparisons() {}

    /** @return by item, such as "changed: a, b; missing: c" */
    static Map<String, String> describe(List<Finding> findings) {
        return findings.stream().collect(
                groupingBy(Finding::item, collectingAndThen(toList(), Comparisons::describeOne)));
    }

    private static String describeOne(List<Finding> findings) {
        Map<FileState, List<String>> files = findings.stream().collect(
                groupingBy(Finding::state, () -> new EnumMap<>(FileState.class), mapping(Finding::file, toList())));
        return files.entrySet().stream().map(each -> phrase(each.getKey(), each.getValue())).collect(joining("; "));
    }

    private static String join(List<String> files) {
        String most = files.stream().limit(MOST).collect(joining(", "));
        return files.size() > MOST ? most + ", ..." : most;
    }

    private static String phrase(FileState state, List<String> files) {
        return switch (state) {
            case WHOLE -> "as it was installed";
            case UNKNOWN -> "nobody knows: see the messages";
            case CHANGED -> "changed: " + join(files);
            case MISSING -> "missing: " + join(files);
            case UNREADABLE -> "cannot be read: " + join(files);
            case ADDITIONAL -> "added: " + join(files);
        };
    }
}
