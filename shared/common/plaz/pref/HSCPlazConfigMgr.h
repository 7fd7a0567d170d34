#pragma once

#include "plaz/base/PlazExport.h"
#include "plaz/model/HSCPlazCfgModel.h"

#include <memory>

class HSCPlazPathMgr;

/// Holds what the configuration file says.
class PLAZ_API HSCPlazConfigMgr {
public:
    /// Reads the configuration file that the path manager names and tells the path manager the names it found.
    /// Without a readable file there is no model and the defaults stay in force.
    void setPathMgr(HSCPlazPathMgr* pathMgr);
    /// Null when there was no configuration file to read. It stays this object's, and may be changed.
    HSCPlazCfgModel* getConfigModel() const { return m_model.get(); }

private:
    std::unique_ptr<HSCPlazCfgModel> m_model;
};
