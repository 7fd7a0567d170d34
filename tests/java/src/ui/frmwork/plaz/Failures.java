package ui.frmwork.plaz;

/** A native function that fails as it is told. */
final class Failures {
    static {
        System.loadLibrary("plazfailures");
    }

    private Failures() {}

    static native long fail(String how);
}
