#pragma once

#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazParams.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"
#include "support/HubOnDisk.h"
#include "support/MessagesTest.h"

#include <boost/filesystem.hpp>

using Ids = Names;

inline HSCPlazQItemModel& addItem(HSCPlazQStoreModel& store, const std::string& name, const std::string& revision,
                                  const std::string& latest, const std::string& commit = "") {
    HSCPlazQItemModel& item = *store.addItem(std::make_unique<HSCPlazQItemModel>());
    item.setName(name);
    item.setRoot("items/" + name);
    item.setMetadataFile("item.json");
    item.setRevision(revision);
    item.setLatestRevision(latest);
    item.setCommitId(commit);
    return item;
}

/// A hub on disk, and the ids of the messages sent. Each test starts the one manager of its process.
class HubOnDiskTest : public MessagesTest {
protected:
    static HSCPlaz& hub() { return HSCPlazMgr::getInstance().getHub(); }

    HubOnDisk files;
};
