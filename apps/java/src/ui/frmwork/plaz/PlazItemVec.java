package ui.frmwork.plaz;

/** A sequence of items: one of your own, or one of the hub's, which cannot be changed. */
public final class PlazItemVec extends HubObjectVector<PlazItem> {
    /** An empty sequence. */
    public PlazItemVec() {
        super(plazi.PlazItemVec_new_PlazItemVec(), plazi::PlazItemVec_delete_PlazItemVec);
    }

    PlazItemVec(long handle, Lifetime lifetime) {
        super(handle, lifetime, element -> new PlazItem(element, lifetime));
    }

    @Override
    public PlazItemIter createIter() {
        return new PlazItemIter(plazi.PlazItemVec_createIter(handle(), this), this::proxyOf);
    }

    @Override
    long size(long handle) {
        return plazi.PlazItemVec_size(handle, this);
    }

    @Override
    void clear(long handle) {
        plazi.PlazItemVec_clear(handle, this);
    }

    @Override
    void pushBack(long handle, PlazItem element) {
        plazi.PlazItemVec_push_back(handle, this, handleOf(element), element);
    }
}
