#include "Workspace.h"

#include "plaz/HSCPlazMgr.h"
#include "support/ComMsgMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

#include <iostream>

Workspace& Workspace::get() {
    static Workspace workspace;
    return workspace;
}

Workspace::Workspace() {
    m_env.set("HOME", m_dir.makeDir("home"));
    m_env.set("GDA_APPDATA_DIR", m_dir.makeDir("appdata"));
    m_env.set("GDA_PRODUCT_NAME", "Solvan");
    m_env.set("GDA_PRODUCT_VERSION", "2024.2.0");
    for (const char* name : {"ZENTOR_PLAZ_USER_REPO_PATH", "ZENTOR_PLAZ_USERAREA_ROOT_DIR",
                             "ZENTOR_PLAZ_SHARED_ROOT_DIR", "ZENTOR_PLAZ_LOCAL_ROOT_DIR", "ZENTOR_PLAZ_LOCAL_USER_DATA",
                             "ZENTOR_PLAZ_REMOTE_REPO_PATH", "GDA_REGRESS_MODE", "PLAZ_SHOW_LOG"})
        m_env.unset(name);
    // Good news would make the benchmarks measure the terminal; what goes wrong is shown.
    ComMsgMgr::setSink([](const ComMsgMgr::Message& message) {
        if (message.severity != MsgSeverity::warning) std::cerr << message.id << ": " << message.text << '\n';
    });
}

std::string Workspace::dataRootOf(std::size_t items) {
    const std::string dir = path("data-" + std::to_string(items));
    if (!HUTFile::exists(dir)) BenchData::writeDataRoot(dir, {{"store", items}});
    return dir;
}

void Workspace::useDataRoot(const std::string& dir) {
    m_env.set("GDA_DATA_DIR", dir + ":" + HUTEnv::getGDAAppRoot("data"));
}

HSCPlaz& Workspace::getHub() {
    const std::string data = path("data");
    if (!m_hasHub) {
        std::vector<BenchStore> stores = {
            {"store-100", 100}, {"store-1000", 1000}, {"store-10000", 10000}, {"large", 1000}};
        for (BenchStore& store : stores) {
            const std::string repository = path("repos/" + store.name);
            const std::size_t content = store.name == "large" ? std::size_t{184} << 20 : 0;
            store.commit = BenchData::makeRepository(repository, store.name, store.items, content);
            store.url = "file://" + repository;
        }
        BenchData::writeDataRoot(data, stores);
        m_hasHub = true;
    }
    useDataRoot(data);
    return HSCPlazMgr::getInstance().getHub();
}
