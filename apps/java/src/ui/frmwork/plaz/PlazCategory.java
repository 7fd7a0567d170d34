package ui.frmwork.plaz;

/** A node of a store's tree of categories. */
public final class PlazCategory extends HubObject {
    PlazCategory(long handle, Lifetime lifetime) {
        super(handle, lifetime);
    }

    /** The name that items give. */
    public String getName() {
        return plazi.PlazCategory_getName(handle(), this);
    }

    /** The name for people. */
    public String getDisplayName() {
        return plazi.PlazCategory_getDisplayName(handle(), this);
    }

    /** What belongs there. */
    public String getDescription() {
        return plazi.PlazCategory_getDescription(handle(), this);
    }

    /** The categories below it. */
    public PlazCategoryVec getSubCategories() {
        return new PlazCategoryVec(plazi.PlazCategory_getSubCategories(handle(), this), lifetime());
    }
}
