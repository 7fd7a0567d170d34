package ui.frmwork.plaz.browser;

import java.awt.Font;
import java.util.Arrays;
import java.util.List;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Collectors;
import javax.swing.JTextPane;
import javax.swing.UIManager;
import javax.swing.text.BadLocationException;
import javax.swing.text.SimpleAttributeSet;
import javax.swing.text.StyleConstants;

/** Shows markdown, as far as the guides use it, without its pictures. */
final class GuideText extends JTextPane {
    private static final long serialVersionUID = 1;
    private static final Pattern MARKED = Pattern.compile(
            "\\*\\*(?<strong>.+?)\\*\\*|`(?<code>.+?)`|\\*(?<slanted>[^*]+)\\*|\\[(?<link>[^\\]]+)\\]\\([^)]*\\)");

    /** The lines of the source that make one of what is shown. */
    private final StringBuilder paragraph = new StringBuilder();
    private boolean isCode;
    private boolean isBelowHeading = true;

    GuideText() {
        setEditable(false);
        setName("guide");
        getAccessibleContext().setAccessibleName("Guide");
        Look.tabLeaves(this);
    }

    @Override
    public void updateUI() {
        super.updateUI();
        setFont(UIManager.getFont("Label.font"));
    }

    void addHeading(String text) {
        addSpace();
        isBelowHeading = true;
        SimpleAttributeSet style = new SimpleAttributeSet();
        StyleConstants.setBold(style, true);
        StyleConstants.setFontSize(style, Math.round(getFont().getSize2D() * 1.2f));
        append(text + "\n", style);
    }

    /** A text that is shown as it is. */
    void addPlain(String text) {
        isBelowHeading = false;
        append(text + "\n", new SimpleAttributeSet());
    }

    void addMarkdown(List<String> lines) {
        lines.forEach(this::addLine);
        endParagraph();
    }

    private void addLine(String line) {
        boolean isFence = line.startsWith("```");
        boolean isList = line.startsWith("- ");
        if (isFence) isCode = !isCode;
        if (isFence || isCode || isList || line.isBlank() || line.matches("(#|!\\[|\\|| {4}).*")) endParagraph();
        if (isFence || line.startsWith("![") || line.startsWith("|--")) return;
        if (isCode) addCode(line);
        else if (line.startsWith("    ")) addCode(line.substring(4));
        else if (line.startsWith("#")) addHeading(line.replaceFirst("#+ ", ""));
        else if (line.startsWith("|")) addRow(line);
        else if (line.isBlank()) addSpace();
        else paragraph.append(paragraph.isEmpty() ? "" : " ").append(isList ? "• " + line.substring(2) : line.strip());
    }

    /** One line at most, between what belongs together. */
    private void addSpace() {
        if (!isBelowHeading && !getText().endsWith("\n\n")) append("\n", new SimpleAttributeSet());
    }

    private void addRow(String line) {
        String[] cells = line.replaceAll("^\\||\\|$", "").split("\\|");
        addMarked(Arrays.stream(cells)
                          .map(String::strip)
                          .filter(cell -> !cell.isEmpty())
                          .collect(Collectors.joining(" – ")));
    }

    private void addCode(String line) {
        isBelowHeading = false;
        append("    " + line + "\n", code());
    }

    private void endParagraph() {
        if (!paragraph.isEmpty()) addMarked(paragraph.toString());
        paragraph.setLength(0);
    }

    private void addMarked(String text) {
        isBelowHeading = false;
        Matcher marked = MARKED.matcher(text);
        int from = 0;
        for (; marked.find(); from = marked.end()) {
            append(text.substring(from, marked.start()), new SimpleAttributeSet());
            SimpleAttributeSet style = marked.group("code") == null ? new SimpleAttributeSet() : code();
            StyleConstants.setBold(style, marked.group("strong") != null);
            StyleConstants.setItalic(style, marked.group("slanted") != null);
            append(marked.group().replaceAll("^(\\*\\*|`|\\*|\\[)|(\\*\\*|`|\\*|\\]\\(.*)$", ""), style);
        }
        append(text.substring(from) + "\n", new SimpleAttributeSet());
    }

    private static SimpleAttributeSet code() {
        SimpleAttributeSet style = new SimpleAttributeSet();
        StyleConstants.setFontFamily(style, Font.MONOSPACED);
        return style;
    }

    private void append(String text, SimpleAttributeSet style) {
        try {
            getDocument().insertString(getDocument().getLength(), text, style);
        } catch (BadLocationException e) {
            throw new IllegalStateException(e);
        }
    }
}
