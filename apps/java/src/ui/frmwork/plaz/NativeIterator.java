package ui.frmwork.plaz;

import java.util.Iterator;
import java.util.NoSuchElementException;
import java.util.function.LongConsumer;

/** A native iterator. It frees itself at its end. */
abstract class NativeIterator<E> extends OwnedObject implements Iterator<E> {
    private boolean ended;

    NativeIterator(long handle, LongConsumer delete) {
        super(handle, delete);
    }

    abstract boolean hasNext(long handle);

    abstract E next(long handle);

    @Override
    public final boolean hasNext() {
        if (ended || hasNext(handle())) return !ended;
        ended = true;
        close();
        return false;
    }

    /** @throws NoSuchElementException at the end */
    @Override
    public final E next() {
        if (!hasNext()) throw new NoSuchElementException();
        return next(handle());
    }
}
