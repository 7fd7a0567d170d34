package ui.frmwork.plaz;

import java.util.function.LongFunction;

/** Walks once over a copy of a sequence of dependencies. */
public final class PlazItemDependencyIter extends NativeIterator<PlazItemDependency> {
    private final LongFunction<PlazItemDependency> toProxy;

    PlazItemDependencyIter(long handle, LongFunction<PlazItemDependency> toProxy) {
        super(handle, plazi::PlazItemDependencyIter_delete_PlazItemDependencyIter);
        this.toProxy = toProxy;
    }

    @Override
    boolean hasNext(long handle) {
        return plazi.PlazItemDependencyIter_hasNext(handle, this);
    }

    @Override
    PlazItemDependency next(long handle) {
        return toProxy.apply(plazi.PlazItemDependencyIter_next(handle, this));
    }
}
