package ui.frmwork.plaz.browser;

import java.util.regex.Matcher;
import java.util.regex.Pattern;
import ui.frmwork.plaz.host.PlazHost.Severity;

/**
 * What the hub or the window tells.
 *
 * @param id the hub's number; empty for the window's own
 */
record Message(Severity severity, String id, String text) {
    private static final Pattern SENTENCE = Pattern.compile("(?<=[.!?])\\s+(?=\\p{Lu}|\")");
    private static final Pattern USER_PART = Pattern.compile("://[^\\s\"']*@");

    /**
     * Nothing that stands before the server in an address is kept: it may be a password. Nor what steers the window.
     */
    Message {
        text = Readable.of(USER_PART.matcher(text).replaceAll("://***@"));
    }

    /** Whether it names the doctor, who looks for the cause of what has failed before it. */
    boolean namesDoctor() {
        return id.equals("17-2366");
    }

    /** The sentence that says what happened. */
    String what() {
        Matcher end = SENTENCE.matcher(text);
        return end.find() ? text.substring(0, end.start()) : text;
    }

    static Message info(String text) {
        return new Message(Severity.INFO, "", text);
    }

    static Message error(String text) {
        return new Message(Severity.ERROR, "", text);
    }

    @Override
    public String toString() {
        String label = severity.name().replace('_', ' ');
        return id.isEmpty() ? label + ": " + text : label + ": [" + id + "] " + text;
    }
}
