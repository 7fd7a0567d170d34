package ui.frmwork.plaz;

/** A record of what went wrong, which operations fill in. It is no exception of Java's. */
public final class PlazException extends OwnedObject {
    /** Nothing went wrong. */
    public PlazException() {
        super(plazi.PlazException_new_PlazException(), plazi::PlazException_delete_PlazException);
    }

    /** A failure with a text for people, its code and what qualifies the code. */
    public PlazException(String message, int code, int context) {
        super(plazi.PlazException_new_PlazException(message, code, context), plazi::PlazException_delete_PlazException);
    }

    /** The text for people; empty when nothing failed. */
    public String getErrorMsg() {
        return plazi.PlazException_get_PlazException_error_msg(handle(), this);
    }

    /** Sets it. */
    public void setErrorMsg(String value) {
        plazi.PlazException_set_PlazException_error_msg(handle(), this, value);
    }

    /** The code; 0 when nothing failed. */
    public int getErrorCode() {
        return plazi.PlazException_get_PlazException_error_code(handle(), this);
    }

    /** Sets it. */
    public void setErrorCode(int value) {
        plazi.PlazException_set_PlazException_error_code(handle(), this, value);
    }

    /** What qualifies the code. */
    public int getErrorContext() {
        return plazi.PlazException_get_PlazException_error_context(handle(), this);
    }

    /** Sets it. */
    public void setErrorContext(int value) {
        plazi.PlazException_set_PlazException_error_context(handle(), this, value);
    }
}
