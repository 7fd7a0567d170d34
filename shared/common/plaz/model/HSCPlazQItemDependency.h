#pragma once

#include <string>

/// Names an item that another item needs.
class HSCPlazQItemDependency {
public:
    /// Name of the store that holds the needed item.
    const std::string& getStore() const { return m_store; }
    void setStore(const std::string& value) { m_store = value; }
    const std::string& getCompany() const { return m_company; }
    void setCompany(const std::string& value) { m_company = value; }
    /// Name of the needed item.
    const std::string& getItem() const { return m_item; }
    void setItem(const std::string& value) { m_item = value; }
    /// Required revision; empty means the latest.
    const std::string& getRevision() const { return m_revision; }
    void setRevision(const std::string& value) { m_revision = value; }
    bool isOptional() const { return m_optional; }
    void setIsOptional(bool value) { m_optional = value; }

private:
    std::string m_store;
    std::string m_company;
    std::string m_item;
    std::string m_revision;
    bool m_optional = false;
};
