package ui.frmwork.plaz;

/** Another item that an item needs. */
public final class PlazItemDependency extends HubObject {
    PlazItemDependency(long handle, Lifetime lifetime) {
        super(handle, lifetime);
    }

    /** The name of the store that has it. */
    public String getStore() {
        return plazi.PlazItemDependency_getStore(handle(), this);
    }

    /** Who makes it. */
    public String getCompany() {
        return plazi.PlazItemDependency_getCompany(handle(), this);
    }

    /** Its name. */
    public String getItem() {
        return plazi.PlazItemDependency_getItem(handle(), this);
    }

    /** The revision that is needed; empty for any, of which the latest is installed. */
    public String getRevision() {
        return plazi.PlazItemDependency_getRevision(handle(), this);
    }

    /** Whether the item can do without. */
    public boolean isOptional() {
        return plazi.PlazItemDependency_isOptional(handle(), this);
    }
}
