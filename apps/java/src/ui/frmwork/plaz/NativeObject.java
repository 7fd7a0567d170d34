package ui.frmwork.plaz;

/** A proxy: an object of the native library as Java sees it. */
abstract class NativeObject {
    /**
     * The address of the object.
     *
     * @throws IllegalStateException when the object is closed or gone
     */
    abstract long handle();

    /** The address of a proxy's object; 0 for null. */
    static long handleOf(NativeObject proxy) {
        return proxy == null ? 0 : proxy.handle();
    }
}
