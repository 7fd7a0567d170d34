package ui.frmwork.plaz.browser;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** The guides that were installed with the browser, in markdown. What is not there is empty. */
final class Guides {
    static final String USER_GUIDE = "user-guide.md";
    private static final String MESSAGES = "messages.md";
    private static final Pattern LINK = Pattern.compile("\\]\\(([\\w-]+\\.md)#([^)\\s]+)\\)");
    private static final Pattern HEADING = Pattern.compile("(#+) (.*)");

    /** Set by the program's start: the directory that holds "share". */
    private static final String HOME = System.getProperty("plaz.home", "");

    private Guides() {}

    static List<String> read(String guide) {
        if (HOME.isEmpty()) return List.of();
        try {
            return Files.readAllLines(Path.of(HOME, "share", "doc", "plaz", guide));
        } catch (IOException e) {
            return List.of();
        }
    }

    /**
     * What the guides say of a message beside its own text: the sections that its entry among the messages names.
     *
     * @param number such as "17-1567"; empty for a message without
     */
    static List<String> explain(String number) {
        List<String> lines = new ArrayList<>();
        Matcher link = LINK.matcher(String.join("\n", section(MESSAGES, number)));
        while (link.find()) lines.addAll(section(link.group(1), link.group(2)));
        return lines;
    }

    /** From the heading that has the anchor on, with all that stands below it. */
    private static List<String> section(String guide, String anchor) {
        List<String> lines = new ArrayList<>();
        int level = 0;
        for (String line : read(guide)) {
            Matcher heading = HEADING.matcher(line);
            if (heading.matches() && level > 0 && heading.group(1).length() <= level) break;
            if (heading.matches() && level == 0 && anchor.equals(anchor(heading.group(2))))
                level = heading.group(1).length();
            if (level > 0) lines.add(line);
        }
        return lines;
    }

    /** As viewers of markdown make it. */
    private static String anchor(String heading) {
        return heading.toLowerCase(Locale.ROOT).replaceAll("[^\\p{L}\\p{N}_ -]", "").replace(' ', '-');
    }
}
