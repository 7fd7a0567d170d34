package ui.frmwork.plaz;

/** One revision of an item of a store. */
public final class PlazItem extends HubObject {
    PlazItem(long handle, Lifetime lifetime) {
        super(handle, lifetime);
    }

    /** The name, unique in the store. */
    public String getName() {
        return plazi.PlazItem_getName(handle(), this);
    }

    /** The name for people. */
    public String getDisplayName() {
        return plazi.PlazItem_getDisplayName(handle(), this);
    }

    /** What the item is. */
    public String getDescription() {
        return plazi.PlazItem_getDescription(handle(), this);
    }

    /** The revision. */
    public String getRevision() {
        return plazi.PlazItem_getRevision(handle(), this);
    }

    /** The commit at which it is installed. */
    public String getCommitId() {
        return plazi.PlazItem_getCommitId(handle(), this);
    }

    /** The name of its store. */
    public String getStoreName() {
        return plazi.PlazItem_getStoreName(handle(), this);
    }

    /** Who makes it. */
    public String getCompany() {
        return plazi.PlazItem_getCompany(handle(), this);
    }

    /** Who makes it, for people. */
    public String getCompanyDisplayName() {
        return plazi.PlazItem_getCompanyDisplayName(handle(), this);
    }

    /** Who wrote it. */
    public String getAuthor() {
        return plazi.PlazItem_getAuthor(handle(), this);
    }

    /** A web page about it. */
    public String getWebsite() {
        return plazi.PlazItem_getWebsite(handle(), this);
    }

    /** Where its files can be looked at. */
    public String getUrl() {
        return plazi.PlazItem_getUrl(handle(), this);
    }

    /** A file or address with its picture. */
    public String getLogo() {
        return plazi.PlazItem_getLogo(handle(), this);
    }

    /** What changed from revision to revision. */
    public String getHistory() {
        return plazi.PlazItem_getHistory(handle(), this);
    }

    /** Its directory in the repository. */
    public String getRoot() {
        return plazi.PlazItem_getRoot(handle(), this);
    }

    /** The directory in which it is installed; empty when it is not. */
    public String getLocalRootDir() {
        return plazi.PlazItem_getLocalRootDir(handle(), this);
    }

    /** The file that describes it. */
    public String getMetadataFile() {
        return plazi.PlazItem_getMetadataFile(handle(), this);
    }

    /** Where the installed files come from. The hub gives every item 0, a local source. */
    public int getSource() {
        return plazi.PlazItem_getSource(handle(), this);
    }

    /** Whether this revision is installed. */
    public boolean IsInstalled() {
        return plazi.PlazItem_IsInstalled(handle(), this);
    }

    /** Whether it is installed and an update is on offer. */
    public boolean NeedsRefresh() {
        return plazi.PlazItem_NeedsRefresh(handle(), this);
    }

    /** The names of its categories. */
    public StringVector getCategories() {
        return new StringVector(plazi.PlazItem_getCategories(handle(), this), lifetime());
    }

    /** Words by which it is found. */
    public StringVector getItemSearchKeywords() {
        return new StringVector(plazi.PlazItem_getItemSearchKeywords(handle(), this), lifetime());
    }

    /** What it needs. */
    public PlazItemDependencyVec getItemDependencies() {
        return new PlazItemDependencyVec(plazi.PlazItem_getItemDependencies(handle(), this), lifetime());
    }

    @Override
    public String toString() {
        return getStoreName() + "::" + getName() + "@" + getRevision();
    }
}
