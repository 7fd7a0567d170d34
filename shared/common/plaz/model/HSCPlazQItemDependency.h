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
    /// Required revision; empty means any, of which the latest is installed.
    const std::string& getRevision() const { return m_revision; }
    void setRevision(const std::string& value) { m_revision = value; }
    bool isOptional() const { return m_optional; }
    void setIsOptional(bool value) { m_optional = value; }

    bool operator==(const HSCPlazQItemDependency& other) const {
        return m_store == other.m_store && m_company == other.m_company && m_item == other.m_item &&
               m_revision == other.m_revision && m_optional == other.m_optional;
    }

private:
    std::string m_store;
    std::string m_company;
    std::string m_item;
    std::string m_revision;
    bool m_optional = false;
};
