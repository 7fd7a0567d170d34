package ui.frmwork.plaz;

import java.util.Map;
import java.util.concurrent.ConcurrentHashMap;

/** A store: a repository that publishes items. */
public final class PlazStore extends HubObject {
    private static final Map<Long, Lifetime> CONTENTS = new ConcurrentHashMap<>();

    PlazStore(long handle, Lifetime lifetime) {
        super(handle, lifetime);
    }

    /** The name, unique in the hub. */
    public String getName() {
        return plazi.PlazStore_getName(handle(), this);
    }

    /** The name for people. */
    public String getDisplayName() {
        return plazi.PlazStore_getDisplayName(handle(), this);
    }

    /** What the store offers. */
    public String getDescription() {
        return plazi.PlazStore_getDescription(handle(), this);
    }

    /** The kind of its items, such as "board". */
    public String getStoreType() {
        return plazi.PlazStore_getStoreType(handle(), this);
    }

    /** Where its repository is. */
    public String getUrl() {
        return plazi.PlazStore_getUrl(handle(), this);
    }

    /** The branch that is read. */
    public String getBranch() {
        return plazi.PlazStore_getBranch(handle(), this);
    }

    /** The directory of the catalog in the repository. */
    public String getRoot() {
        return plazi.PlazStore_getRoot(handle(), this);
    }

    /** The directory of the items in the repository. */
    public String getItemRootDir() {
        return plazi.PlazStore_getItemRootDir(handle(), this);
    }

    /** The directory in which its items are installed. */
    public String getLocalRootDir() {
        return plazi.PlazStore_getLocalRootDir(handle(), this);
    }

    /** The file that describes it. */
    public String getMetadataFile() {
        return plazi.PlazStore_getMetadataFile(handle(), this);
    }

    /** Where its users find help. */
    public String getSupportUrl() {
        return plazi.PlazStore_getSupportUrl(handle(), this);
    }

    /** Whether the user has added it. */
    public boolean isUserRepository() {
        return plazi.PlazStore_isUserRepository(handle(), this);
    }

    /** Its items, every revision, in catalog order. */
    public PlazItemVec getItems() {
        return new PlazItemVec(plazi.PlazStore_getItems(handle(), this), contents());
    }

    /** The top of its tree of categories. */
    public PlazCategoryVec getCategories() {
        return new PlazCategoryVec(plazi.PlazStore_getCategories(handle(), this), contents());
    }

    /** Changes the name for people, in memory. */
    public void setDisplayName(String value) {
        plazi.PlazStore_setDisplayName(handle(), this, value);
    }

    /** Changes the description, in memory. */
    public void setDescription(String value) {
        plazi.PlazStore_setDescription(handle(), this, value);
    }

    /** Changes where the repository is, in memory. */
    public void setUrl(String value) {
        plazi.PlazStore_setUrl(handle(), this, value);
    }

    /** Changes the branch that is read, in memory. */
    public void setBranch(String value) {
        plazi.PlazStore_setBranch(handle(), this, value);
    }

    @Override
    public String toString() {
        return getName();
    }

    /** How long what is in the store lives now. */
    Lifetime contents() {
        return CONTENTS.computeIfAbsent(handle(), store -> new Lifetime());
    }

    /** Tells that what was in the store is gone. */
    void endContents() {
        Lifetime ended = CONTENTS.remove(handle());
        if (ended != null) ended.end();
    }
}
