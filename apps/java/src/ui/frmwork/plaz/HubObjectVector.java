package ui.frmwork.plaz;

import java.util.HashMap;
import java.util.Map;
import java.util.function.LongConsumer;
import java.util.function.LongFunction;

/** A sequence of objects of the hub. */
abstract class HubObjectVector<E extends HubObject> extends NativeVector<E> {
    /** Of a sequence of the caller's own: the proxies put in, since addresses do not tell how long they hold. */
    private final Map<Long, E> added = new HashMap<>();

    private final LongFunction<E> toProxy;

    HubObjectVector(long handle, LongConsumer delete) {
        super(handle, delete);
        toProxy = added::get;
    }

    HubObjectVector(long handle, Lifetime lifetime, LongFunction<E> toProxy) {
        super(handle, lifetime);
        this.toProxy = toProxy;
    }

    final E proxyOf(long element) {
        return toProxy.apply(element);
    }

    @Override
    public final void push_back(E element) {
        super.push_back(element);
        added.put(element.handle(), element);
    }

    @Override
    public final void clear() {
        super.clear();
        added.clear();
    }
}
