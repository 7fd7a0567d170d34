package ui.frmwork.plaz;

/** A sequence of texts: one of your own, or one of the hub's, which cannot be changed. */
public final class StringVector extends NativeVector<String> {
    /** An empty sequence. */
    public StringVector() {
        super(plazi.StringVector_new_StringVector(), plazi::StringVector_delete_StringVector);
    }

    StringVector(long handle, Lifetime lifetime) {
        super(handle, lifetime);
    }

    @Override
    public StringVectorIter createIter() {
        return new StringVectorIter(plazi.StringVector_createIter(handle(), this));
    }

    @Override
    long size(long handle) {
        return plazi.StringVector_size(handle, this);
    }

    @Override
    void clear(long handle) {
        plazi.StringVector_clear(handle, this);
    }

    @Override
    void pushBack(long handle, String element) {
        plazi.StringVector_push_back(handle, this, element);
    }
}
