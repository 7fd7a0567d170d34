package ui.frmwork.plaz.browser;

import java.awt.Desktop;
import java.awt.Toolkit;
import java.awt.datatransfer.StringSelection;
import java.io.IOException;
import java.net.URI;
import java.net.URISyntaxException;
import java.util.Optional;

/** Web pages that catalogs name. Only http and https lead anywhere: all else could be a program to start. */
final class WebLink {
    private WebLink() {}

    static Optional<URI> of(String address) {
        try {
            URI page = new URI(address.strip());
            boolean isWeb = "http".equalsIgnoreCase(page.getScheme()) || "https".equalsIgnoreCase(page.getScheme());
            return isWeb && page.getHost() != null ? Optional.of(page) : Optional.empty();
        } catch (URISyntaxException e) {
            return Optional.empty();
        }
    }

    /** @return what happened */
    static Message open(URI page) {
        try {
            if (Desktop.isDesktopSupported() && Desktop.getDesktop().isSupported(Desktop.Action.BROWSE)) {
                Desktop.getDesktop().browse(page);
                return Message.info("Opened " + page + " in the web browser.");
            }
        } catch (IOException | UnsupportedOperationException e) {
            // as where there is no web browser
        }
        Toolkit.getDefaultToolkit().getSystemClipboard().setContents(new StringSelection(page.toString()), null);
        return Message.info("No web browser can be started from here. The address was copied: " + page);
    }
}
