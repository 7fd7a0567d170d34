package ui.frmwork.plaz;

/** A sequence of categories: one of your own, or one of the hub's, which cannot be changed. */
public final class PlazCategoryVec extends HubObjectVector<PlazCategory> {
    /** An empty sequence. */
    public PlazCategoryVec() {
        super(plazi.PlazCategoryVec_new_PlazCategoryVec(), plazi::PlazCategoryVec_delete_PlazCategoryVec);
    }

    PlazCategoryVec(long handle, Lifetime lifetime) {
        super(handle, lifetime, element -> new PlazCategory(element, lifetime));
    }

    @Override
    public PlazCategoryIter createIter() {
        return new PlazCategoryIter(plazi.PlazCategoryVec_createIter(handle(), this), this::proxyOf);
    }

    @Override
    long size(long handle) {
        return plazi.PlazCategoryVec_size(handle, this);
    }

    @Override
    void clear(long handle) {
        plazi.PlazCategoryVec_clear(handle, this);
    }

    @Override
    void pushBack(long handle, PlazCategory element) {
        plazi.PlazCategoryVec_push_back(handle, this, handleOf(element), element);
    }
}
