package ui.frmwork.plaz;

/** A sequence of stores: one of your own, or one of the hub's, which cannot be changed. */
public final class PlazQStoreVec extends HubObjectVector<PlazStore> {
    /** An empty sequence. */
    public PlazQStoreVec() {
        super(plazi.PlazQStoreVec_new_PlazQStoreVec(), plazi::PlazQStoreVec_delete_PlazQStoreVec);
    }

    PlazQStoreVec(long handle, Lifetime lifetime) {
        super(handle, lifetime, element -> new PlazStore(element, lifetime));
    }

    @Override
    public PlazQStoreIter createIter() {
        return new PlazQStoreIter(plazi.PlazQStoreVec_createIter(handle(), this), this::proxyOf);
    }

    @Override
    long size(long handle) {
        return plazi.PlazQStoreVec_size(handle, this);
    }

    @Override
    void clear(long handle) {
        plazi.PlazQStoreVec_clear(handle, this);
    }

    @Override
    void pushBack(long handle, PlazStore element) {
        plazi.PlazQStoreVec_push_back(handle, this, handleOf(element), element);
    }
}
