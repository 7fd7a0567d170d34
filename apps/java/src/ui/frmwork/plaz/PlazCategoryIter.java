package ui.frmwork.plaz;

import java.util.function.LongFunction;

/** Walks once over a copy of a sequence of categories. */
public final class PlazCategoryIter extends NativeIterator<PlazCategory> {
    private final LongFunction<PlazCategory> toProxy;

    PlazCategoryIter(long handle, LongFunction<PlazCategory> toProxy) {
        super(handle, plazi::PlazCategoryIter_delete_PlazCategoryIter);
        this.toProxy = toProxy;
    }

    @Override
    boolean hasNext(long handle) {
        return plazi.PlazCategoryIter_hasNext(handle, this);
    }

    @Override
    PlazCategory next(long handle) {
        return toProxy.apply(plazi.PlazCategoryIter_next(handle, this));
    }
}
