package ui.frmwork.plaz;

/** Progress and cancellation of a long operation. */
public final class TaskStatus extends OwnedObject {
    /** Running, without texts. */
    public TaskStatus() {
        super(plazi.TaskStatus_new_TaskStatus(), plazi::TaskStatus_delete_TaskStatus);
    }

    /** What is being done. */
    public String getStatusMessage() {
        return plazi.TaskStatus_getStatusMessage(handle(), this);
    }

    /** The same in few words. */
    public String getAbbrevStatusMessage() {
        return plazi.TaskStatus_getAbbrevStatusMessage(handle(), this);
    }

    /** How far it is: 0 to 100. */
    public double getPercentComplete() {
        return plazi.TaskStatus_getPercentComplete(handle(), this);
    }

    /** Whether the percentage means anything. */
    public boolean isDeterminate() {
        return plazi.TaskStatus_isDeterminate(handle(), this);
    }

    /** The state as a number. */
    public int getState() {
        return plazi.TaskStatus_getState(handle(), this);
    }

    /** Whether it was cancelled. */
    public boolean isCanceled() {
        return plazi.TaskStatus_isCanceled(handle(), this);
    }

    /** Whether it can be cancelled. */
    public boolean canCancel() {
        return plazi.TaskStatus_canCancel(handle(), this);
    }

    /** Cancels the operation. May be called from another thread. */
    public synchronized void cancel() {
        plazi.TaskStatus_cancel(handle(), this);
    }

    @Override
    public synchronized void close() {
        super.close();
    }

    /** Tells what is being done. */
    public void changeStatus(String value) {
        plazi.TaskStatus_changeStatus(handle(), this, value);
    }

    /** Tells it in few words. */
    public void changeAbbrevStatus(String value) {
        plazi.TaskStatus_changeAbbrevStatus(handle(), this, value);
    }

    /** Tells how far it is: 0 to 100. */
    public void changePercentComplete(double value) {
        plazi.TaskStatus_changePercentComplete(handle(), this, value);
    }

    /** Says whether the percentage means anything. */
    public void setDeterminate(boolean value) {
        plazi.TaskStatus_setDeterminate(handle(), this, value);
    }

    /** Sets the state. */
    public void setState(int value) {
        plazi.TaskStatus_setState(handle(), this, value);
    }
}
