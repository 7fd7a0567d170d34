#include "plaz/pref/HSCPlazConfigMgr.h"

#include "plaz/model/reader/HSCPlazConfigReader.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "support/HUTFile.h"

void HSCPlazConfigMgr::setPathMgr(HSCPlazPathMgr* pathMgr) {
    m_model.reset();
    const std::string file = pathMgr->getConfigFile();
    if (HUTFile::exists(file)) {
        auto model = std::make_unique<HSCPlazCfgModel>();
        if (HSCPlazConfigReader().parse(file, model.get())) m_model = std::move(model);
    }
    pathMgr->setConfig(m_model.get());
}
