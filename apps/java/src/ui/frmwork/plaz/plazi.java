package ui.frmwork.plaz;

/**
 * The functions of the native library {@code plazi}, for the proxies of this package.
 *
 * <p>Native objects are addresses, null is 0. Behind each address stands its proxy, which the library ignores: it keeps
 * the object alive during the call.
 */
final class plazi {
    static {
        System.loadLibrary("plazi");
    }

    private plazi() {}

    static native boolean PlazSwigIntf_canAccessRepo(long store, PlazStore storeProxy);
    static native boolean PlazSwigIntf_isInstalled(long store, PlazStore storeProxy);
    static native boolean PlazSwigIntf_isRefreshed(long store, PlazStore storeProxy);
    static native long PlazSwigIntf_getLastRefreshTime(long store, PlazStore storeProxy);
    static native String PlazSwigIntf_getHttpProxy();
    static native String PlazSwigIntf_getQStoresPath();
    static native long PlazSwigIntf_getStores();
    static native long PlazSwigIntf_getStore(String name);
    static native long PlazSwigIntf_getItems(String storeName);
    static native void PlazSwigIntf_setHttpProxy(String proxy);
    static native boolean PlazSwigIntf_setQStoresPath(String path);
    static native boolean PlazSwigIntf_install(
            long item, PlazItem itemProxy, long status, TaskStatus statusProxy, long exception, PlazException exceptionProxy);
    static native boolean PlazSwigIntf_uninstall(
            long item, PlazItem itemProxy, long status, TaskStatus statusProxy, long exception, PlazException exceptionProxy);
    static native boolean PlazSwigIntf_update(
            long item, PlazItem itemProxy, long status, TaskStatus statusProxy, long exception, PlazException exceptionProxy);
    static native boolean PlazSwigIntf_refreshCatalog(
            long store, PlazStore storeProxy, long status, TaskStatus statusProxy, long exception, PlazException exceptionProxy);
    static native boolean PlazSwigIntf_hasUpdate(
            long store, PlazStore storeProxy, long status, TaskStatus statusProxy, long exception, PlazException exceptionProxy);
    static native boolean PlazSwigIntf_setQStoreLocalRootDir(
            long store, PlazStore storeProxy, String dir, long exception, PlazException exceptionProxy);

    static native String PlazStore_getBranch(long self, PlazStore proxy);
    static native String PlazStore_getDescription(long self, PlazStore proxy);
    static native String PlazStore_getDisplayName(long self, PlazStore proxy);
    static native String PlazStore_getItemRootDir(long self, PlazStore proxy);
    static native String PlazStore_getLocalRootDir(long self, PlazStore proxy);
    static native String PlazStore_getMetadataFile(long self, PlazStore proxy);
    static native String PlazStore_getName(long self, PlazStore proxy);
    static native String PlazStore_getRoot(long self, PlazStore proxy);
    static native String PlazStore_getStoreType(long self, PlazStore proxy);
    static native String PlazStore_getSupportUrl(long self, PlazStore proxy);
    static native String PlazStore_getUrl(long self, PlazStore proxy);
    static native long PlazStore_getCategories(long self, PlazStore proxy);
    static native long PlazStore_getItems(long self, PlazStore proxy);
    static native boolean PlazStore_isUserRepository(long self, PlazStore proxy);
    static native void PlazStore_setBranch(long self, PlazStore proxy, String value);
    static native void PlazStore_setDescription(long self, PlazStore proxy, String value);
    static native void PlazStore_setDisplayName(long self, PlazStore proxy, String value);
    static native void PlazStore_setUrl(long self, PlazStore proxy, String value);

    static native boolean PlazItem_IsInstalled(long self, PlazItem proxy);
    static native boolean PlazItem_NeedsRefresh(long self, PlazItem proxy);
    static native String PlazItem_getAuthor(long self, PlazItem proxy);
    static native String PlazItem_getCommitId(long self, PlazItem proxy);
    static native String PlazItem_getCompany(long self, PlazItem proxy);
    static native String PlazItem_getCompanyDisplayName(long self, PlazItem proxy);
    static native String PlazItem_getDescription(long self, PlazItem proxy);
    static native String PlazItem_getDisplayName(long self, PlazItem proxy);
    static native String PlazItem_getHistory(long self, PlazItem proxy);
    static native String PlazItem_getLocalRootDir(long self, PlazItem proxy);
    static native String PlazItem_getLogo(long self, PlazItem proxy);
    static native String PlazItem_getMetadataFile(long self, PlazItem proxy);
    static native String PlazItem_getName(long self, PlazItem proxy);
    static native String PlazItem_getRevision(long self, PlazItem proxy);
    static native String PlazItem_getRoot(long self, PlazItem proxy);
    static native String PlazItem_getStoreName(long self, PlazItem proxy);
    static native String PlazItem_getUrl(long self, PlazItem proxy);
    static native String PlazItem_getWebsite(long self, PlazItem proxy);
    static native long PlazItem_getCategories(long self, PlazItem proxy);
    static native long PlazItem_getItemDependencies(long self, PlazItem proxy);
    static native long PlazItem_getItemSearchKeywords(long self, PlazItem proxy);
    static native int PlazItem_getSource(long self, PlazItem proxy);

    static native String PlazItemDependency_getCompany(long self, PlazItemDependency proxy);
    static native String PlazItemDependency_getItem(long self, PlazItemDependency proxy);
    static native String PlazItemDependency_getRevision(long self, PlazItemDependency proxy);
    static native String PlazItemDependency_getStore(long self, PlazItemDependency proxy);
    static native boolean PlazItemDependency_isOptional(long self, PlazItemDependency proxy);

    static native String PlazCategory_getDescription(long self, PlazCategory proxy);
    static native String PlazCategory_getDisplayName(long self, PlazCategory proxy);
    static native String PlazCategory_getName(long self, PlazCategory proxy);
    static native long PlazCategory_getSubCategories(long self, PlazCategory proxy);

    static native long TaskStatus_new_TaskStatus();
    static native void TaskStatus_delete_TaskStatus(long self);
    static native boolean TaskStatus_canCancel(long self, TaskStatus proxy);
    static native boolean TaskStatus_isCanceled(long self, TaskStatus proxy);
    static native boolean TaskStatus_isDeterminate(long self, TaskStatus proxy);
    static native void TaskStatus_cancel(long self, TaskStatus proxy);
    static native String TaskStatus_getAbbrevStatusMessage(long self, TaskStatus proxy);
    static native String TaskStatus_getStatusMessage(long self, TaskStatus proxy);
    static native double TaskStatus_getPercentComplete(long self, TaskStatus proxy);
    static native int TaskStatus_getState(long self, TaskStatus proxy);
    static native void TaskStatus_changeAbbrevStatus(long self, TaskStatus proxy, String value);
    static native void TaskStatus_changeStatus(long self, TaskStatus proxy, String value);
    static native void TaskStatus_changePercentComplete(long self, TaskStatus proxy, double value);
    static native void TaskStatus_setDeterminate(long self, TaskStatus proxy, boolean value);
    static native void TaskStatus_setState(long self, TaskStatus proxy, int value);

    static native long PlazException_new_PlazException();
    static native long PlazException_new_PlazException(String message, int code, int context);
    static native void PlazException_delete_PlazException(long self);
    static native String PlazException_get_PlazException_error_msg(long self, PlazException proxy);
    static native void PlazException_set_PlazException_error_msg(long self, PlazException proxy, String value);
    static native int PlazException_get_PlazException_error_code(long self, PlazException proxy);
    static native int PlazException_get_PlazException_error_context(long self, PlazException proxy);
    static native void PlazException_set_PlazException_error_code(long self, PlazException proxy, int value);
    static native void PlazException_set_PlazException_error_context(long self, PlazException proxy, int value);

    static native long StringVector_new_StringVector();
    static native void StringVector_delete_StringVector(long self);
    static native void StringVector_clear(long self, StringVector proxy);
    static native long StringVector_createIter(long self, StringVector proxy);
    static native long StringVector_size(long self, StringVector proxy);
    static native void StringVector_push_back(long self, StringVector proxy, String element);

    static native long PlazQStoreVec_new_PlazQStoreVec();
    static native void PlazQStoreVec_delete_PlazQStoreVec(long self);
    static native void PlazQStoreVec_clear(long self, PlazQStoreVec proxy);
    static native long PlazQStoreVec_createIter(long self, PlazQStoreVec proxy);
    static native long PlazQStoreVec_size(long self, PlazQStoreVec proxy);
    static native void PlazQStoreVec_push_back(long self, PlazQStoreVec proxy, long element, PlazStore elementProxy);

    static native long PlazItemVec_new_PlazItemVec();
    static native void PlazItemVec_delete_PlazItemVec(long self);
    static native void PlazItemVec_clear(long self, PlazItemVec proxy);
    static native long PlazItemVec_createIter(long self, PlazItemVec proxy);
    static native long PlazItemVec_size(long self, PlazItemVec proxy);
    static native void PlazItemVec_push_back(long self, PlazItemVec proxy, long element, PlazItem elementProxy);

    static native long PlazItemDependencyVec_new_PlazItemDependencyVec();
    static native void PlazItemDependencyVec_delete_PlazItemDependencyVec(long self);
    static native void PlazItemDependencyVec_clear(long self, PlazItemDependencyVec proxy);
    static native long PlazItemDependencyVec_createIter(long self, PlazItemDependencyVec proxy);
    static native long PlazItemDependencyVec_size(long self, PlazItemDependencyVec proxy);
    static native void PlazItemDependencyVec_push_back(
            long self, PlazItemDependencyVec proxy, long element, PlazItemDependency elementProxy);

    static native long PlazCategoryVec_new_PlazCategoryVec();
    static native void PlazCategoryVec_delete_PlazCategoryVec(long self);
    static native void PlazCategoryVec_clear(long self, PlazCategoryVec proxy);
    static native long PlazCategoryVec_createIter(long self, PlazCategoryVec proxy);
    static native long PlazCategoryVec_size(long self, PlazCategoryVec proxy);
    static native void PlazCategoryVec_push_back(
            long self, PlazCategoryVec proxy, long element, PlazCategory elementProxy);

    static native void StringVectorIter_delete_StringVectorIter(long self);
    static native boolean StringVectorIter_hasNext(long self, StringVectorIter proxy);
    static native String StringVectorIter_next(long self, StringVectorIter proxy);

    static native void PlazQStoreIter_delete_PlazQStoreIter(long self);
    static native boolean PlazQStoreIter_hasNext(long self, PlazQStoreIter proxy);
    static native long PlazQStoreIter_next(long self, PlazQStoreIter proxy);

    static native void PlazItemIter_delete_PlazItemIter(long self);
    static native boolean PlazItemIter_hasNext(long self, PlazItemIter proxy);
    static native long PlazItemIter_next(long self, PlazItemIter proxy);

    static native void PlazItemDependencyIter_delete_PlazItemDependencyIter(long self);
    static native boolean PlazItemDependencyIter_hasNext(long self, PlazItemDependencyIter proxy);
    static native long PlazItemDependencyIter_next(long self, PlazItemDependencyIter proxy);

    static native void PlazCategoryIter_delete_PlazCategoryIter(long self);
    static native boolean PlazCategoryIter_hasNext(long self, PlazCategoryIter proxy);
    static native long PlazCategoryIter_next(long self, PlazCategoryIter proxy);
}
