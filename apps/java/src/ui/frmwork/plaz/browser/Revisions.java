package ui.frmwork.plaz.browser;

import java.math.BigInteger;
import java.util.Comparator;
import java.util.List;
import java.util.regex.MatchResult;
import java.util.regex.Pattern;

/** The order of revisions: numbers as numbers, so that 1.10 comes after 1.9; the rest letter by letter. */
final class Revisions {
    private static final Pattern PART = Pattern.compile("[0-9]+|[^0-9]+");

    static final Comparator<String> ORDER = Revisions::compare;

    private Revisions() {}

    private static int compare(String one, String other) {
        List<String> ones = parts(one);
        List<String> others = parts(other);
        for (int i = 0; i < Math.min(ones.size(), others.size()); ++i) {
            int order = compareParts(ones.get(i), others.get(i));
            if (order != 0) return order;
        }
        return Integer.compare(ones.size(), others.size());
    }

    private static int compareParts(String one, String other) {
        boolean areNumbers = isNumber(one) && isNumber(other);
        return areNumbers ? new BigInteger(one).compareTo(new BigInteger(other)) : one.compareTo(other);
    }

    private static boolean isNumber(String part) {
        return part.charAt(0) >= '0' && part.charAt(0) <= '9';
    }

    private static List<String> parts(String revision) {
        return PART.matcher(revision).results().map(MatchResult::group).toList();
    }
}
