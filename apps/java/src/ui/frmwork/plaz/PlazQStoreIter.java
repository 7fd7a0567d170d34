package ui.frmwork.plaz;

import java.util.function.LongFunction;

/** Walks once over a copy of a sequence of stores. */
public final class PlazQStoreIter extends NativeIterator<PlazStore> {
    private final LongFunction<PlazStore> toProxy;

    PlazQStoreIter(long handle, LongFunction<PlazStore> toProxy) {
        super(handle, plazi::PlazQStoreIter_delete_PlazQStoreIter);
        this.toProxy = toProxy;
    }

    @Override
    boolean hasNext(long handle) {
        return plazi.PlazQStoreIter_hasNext(handle, this);
    }

    @Override
    PlazStore next(long handle) {
        return toProxy.apply(plazi.PlazQStoreIter_next(handle, this));
    }
}
