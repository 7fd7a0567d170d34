package ui.frmwork.plaz;

import java.lang.ref.Cleaner;
import java.util.function.LongConsumer;

/** A native object that belongs to its proxy: closing it frees it, and what is forgotten is freed in time. */
abstract class OwnedObject extends NativeObject implements AutoCloseable {
    private static final Cleaner CLEANER = Cleaner.create();

    private final Owned owned;
    private final Cleaner.Cleanable cleanable;

    /**
     * @param handle the object
     * @param delete what frees it
     */
    OwnedObject(long handle, LongConsumer delete) {
        owned = new Owned(handle, delete);
        cleanable = CLEANER.register(this, owned);
    }

    @Override
    long handle() {
        return owned.handle(getClass());
    }

    /** Frees the native object. Closing again does nothing; any other use throws {@link IllegalStateException}. */
    @Override
    public void close() {
        cleanable.clean();
    }

    /** What is left to free when the proxy is gone, so it must not know the proxy. */
    private static final class Owned implements Runnable {
        private final LongConsumer delete;
        private volatile long handle;

        Owned(long handle, LongConsumer delete) {
            this.handle = handle;
            this.delete = delete;
        }

        long handle(Class<?> type) {
            long current = handle;
            if (current == 0) throw new IllegalStateException("this " + type.getSimpleName() + " is closed");
            return current;
        }

        @Override
        public void run() {
            long freed = handle;
            handle = 0;
            delete.accept(freed);
        }
    }
}
