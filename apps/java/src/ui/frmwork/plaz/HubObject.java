package ui.frmwork.plaz;

/**
 * A native object that belongs to the hub. Two proxies of one object are equal.
 *
 * <p>Items, categories and dependencies are gone once {@link PlazSwigIntf#refreshCatalog} has refreshed their store or
 * {@link PlazSwigIntf#setQStoreLocalRootDir} has moved it: ask for them again. What is done by other ways than this
 * package is not noticed.
 */
abstract class HubObject extends NativeObject {
    private final long handle;
    private final Lifetime lifetime;

    HubObject(long handle, Lifetime lifetime) {
        this.handle = handle;
        this.lifetime = lifetime;
    }

    @Override
    long handle() {
        lifetime.check(getClass());
        return handle;
    }

    /** How long the objects live that are reached through this one. */
    Lifetime lifetime() {
        return lifetime;
    }

    /** Whether the hub still has the object. */
    public boolean isAlive() {
        return lifetime.lasts();
    }

    @Override
    public boolean equals(Object other) {
        return other instanceof HubObject object && object.handle == handle && object.lifetime == lifetime;
    }

    @Override
    public int hashCode() {
        return Long.hashCode(handle);
    }
}
