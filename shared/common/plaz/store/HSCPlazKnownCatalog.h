#pragma once

class HSCPlazPathMgr;
class HSCPlazQStoreModel;
class HSCPlazReport;
struct HSCPlazWorkspace;

/// What a large catalog lists by the names of what is installed, kept beside the database, so that a command about
/// other stores need not read the catalog. It counts as long as the catalog is the file that it was taken from.
namespace HSCPlazKnownCatalog {

/// Puts what is kept into the model of a store whose catalog was put off, with what describes these items. Nothing
/// where it does not count.
/// @param report  what is wrong with the items' own files
void read(const HSCPlazPathMgr& paths, HSCPlazQStoreModel& store, HSCPlazReport& report);
/// Keeps it, for a store whose large catalog has been read. What cannot be written is not missed: the catalog will be
/// read.
void keep(HSCPlazWorkspace& workspace, const HSCPlazQStoreModel& store);

} // namespace HSCPlazKnownCatalog
