package ui.frmwork.cmd;

/** A command of the hub failed. The message says why. */
public class CommandFailedException extends RuntimeException {
    private static final long serialVersionUID = 1;

    /** @param message what failed, for people */
    public CommandFailedException(String message) {
        super(message);
    }
}
