#pragma once

#include "plaz/model/HSCPlazTypes.h"

#include <string>

/// How one repository is reached. Read once at start-up; the user token never leaves it but towards git.
class HSCPlazRepoCfgModel {
public:
    const std::string& getUrl() const { return m_url; }
    void setUrl(const std::string& value) { m_url = value; }
    HSCPlazTypes::AUTHMODE getAuthMode() const { return m_authMode; }
    void setAuthMode(HSCPlazTypes::AUTHMODE value) { m_authMode = value; }
    const std::string& getUserId() const { return m_userId; }
    void setUserId(const std::string& value) { m_userId = value; }
    const std::string& getUserToken() const { return m_userToken; }
    void setUserToken(const std::string& value) { m_userToken = value; }
    const std::string& getCertificate() const { return m_certificate; }
    void setCertificate(const std::string& value) { m_certificate = value; }
    const std::string& getTool() const { return m_tool; }
    void setTool(const std::string& value) { m_tool = value; }
    const std::string& getToolVersion() const { return m_toolVersion; }
    void setToolVersion(const std::string& value) { m_toolVersion = value; }
    const std::string& getRoot() const { return m_root; }
    const std::string& getStoresRoot() const { return m_storesRoot; }
    const std::string& getMetadataFile() const { return m_metadataFile; }

private:
    std::string m_url;
    HSCPlazTypes::AUTHMODE m_authMode = HSCPlazTypes::NONE;
    std::string m_userId;
    std::string m_userToken;
    std::string m_certificate;
    std::string m_tool;
    std::string m_toolVersion;
    std::string m_root;
    std::string m_storesRoot;
    std::string m_metadataFile;
};
