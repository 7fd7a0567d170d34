package ui.frmwork.plaz;

/** A sequence of dependencies: one of your own, or one of the hub's, which cannot be changed. */
public final class PlazItemDependencyVec extends HubObjectVector<PlazItemDependency> {
    /** An empty sequence. */
    public PlazItemDependencyVec() {
        super(plazi.PlazItemDependencyVec_new_PlazItemDependencyVec(), plazi::PlazItemDependencyVec_delete_PlazItemDependencyVec);
    }

    PlazItemDependencyVec(long handle, Lifetime lifetime) {
        super(handle, lifetime, element -> new PlazItemDependency(element, lifetime));
    }

    @Override
    public PlazItemDependencyIter createIter() {
        return new PlazItemDependencyIter(plazi.PlazItemDependencyVec_createIter(handle(), this), this::proxyOf);
    }

    @Override
    long size(long handle) {
        return plazi.PlazItemDependencyVec_size(handle, this);
    }

    @Override
    void clear(long handle) {
        plazi.PlazItemDependencyVec_clear(handle, this);
    }

    @Override
    void pushBack(long handle, PlazItemDependency element) {
        plazi.PlazItemDependencyVec_push_back(handle, this, handleOf(element), element);
    }
}
