package ui.frmwork;

/** The hub has no memory left for what was asked of it. */
public class COutOfMemoryException extends RuntimeException {
    private static final long serialVersionUID = 1;

    /** @param message what failed, for people */
    public COutOfMemoryException(String message) {
        super(message);
    }
}
