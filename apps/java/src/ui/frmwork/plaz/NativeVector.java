package ui.frmwork.plaz;

import java.util.Iterator;
import java.util.Objects;
import java.util.function.LongConsumer;

/**
 * A native sequence. One that belongs to the hub cannot be changed, and is gone with the objects that it is part of;
 * closing its proxy leaves it alone.
 */
abstract class NativeVector<E> extends OwnedObject implements Iterable<E> {
    private final Lifetime lifetime;
    private final boolean isHubs;

    /** One of the caller's own. */
    NativeVector(long handle, LongConsumer delete) {
        super(handle, delete);
        lifetime = new Lifetime();
        isHubs = false;
    }

    /** One of the hub's. */
    NativeVector(long handle, Lifetime lifetime) {
        super(handle, kept -> {});
        this.lifetime = lifetime;
        isHubs = true;
    }

    abstract long size(long handle);

    abstract void clear(long handle);

    abstract void pushBack(long handle, E element);

    /** An iterator over a copy, which belongs to the caller. */
    public abstract NativeIterator<E> createIter();

    @Override
    final long handle() {
        lifetime.check(getClass());
        return super.handle();
    }

    @Override
    public final Iterator<E> iterator() {
        return createIter();
    }

    public final int size() {
        return Math.toIntExact(size(handle()));
    }

    /** @throws UnsupportedOperationException for a sequence of the hub */
    public void clear() {
        requireOwn();
        clear(handle());
    }

    /**
     * Adds an element at the end.
     *
     * @throws UnsupportedOperationException for a sequence of the hub
     */
    public void push_back(E element) {
        requireOwn();
        pushBack(handle(), Objects.requireNonNull(element));
    }

    private void requireOwn() {
        if (isHubs) throw new UnsupportedOperationException("this " + getClass().getSimpleName() + " is the hub's");
    }
}
