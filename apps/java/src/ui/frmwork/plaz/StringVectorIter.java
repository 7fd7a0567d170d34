package ui.frmwork.plaz;

/** Walks once over a copy of a sequence of texts. */
public final class StringVectorIter extends NativeIterator<String> {
    StringVectorIter(long handle) {
        super(handle, plazi::StringVectorIter_delete_StringVectorIter);
    }

    @Override
    boolean hasNext(long handle) {
        return plazi.StringVectorIter_hasNext(handle, this);
    }

    @Override
    String next(long handle) {
        return plazi.StringVectorIter_next(handle, this);
    }
}
