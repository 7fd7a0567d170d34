package ui.frmwork.plaz;

import java.util.function.LongFunction;

/** Walks once over a copy of a sequence of items. */
public final class PlazItemIter extends NativeIterator<PlazItem> {
    private final LongFunction<PlazItem> toProxy;

    PlazItemIter(long handle, LongFunction<PlazItem> toProxy) {
        super(handle, plazi::PlazItemIter_delete_PlazItemIter);
        this.toProxy = toProxy;
    }

    @Override
    boolean hasNext(long handle) {
        return plazi.PlazItemIter_hasNext(handle, this);
    }

    @Override
    PlazItem next(long handle) {
        return toProxy.apply(plazi.PlazItemIter_next(handle, this));
    }
}
