#pragma once

#include "support/HostExport.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// One parameter of the host: a typed, named switch that users set and code reads by name.
class HOST_API HPAParam {
public:
    enum class Type { boolean, integer, string };
    /// What chose the value.
    enum class Source {
        builtIn,     ///< the default
        user,        ///< the user's preference of the same name
        environment, ///< the variable
        session      ///< somebody in this process
    };

    /// A parameter that has its default value.
    HPAParam(std::string name, std::string description, Type type, std::string defaultValue)
        : m_name(std::move(name)), m_description(std::move(description)), m_type(type),
          m_default(std::move(defaultValue)), m_value(m_default) {}

    const std::string& getName() const { return m_name; }
    const std::string& getDescription() const { return m_description; }
    Type getType() const { return m_type; }
    /// The default as text: "true"/"false", a decimal number or the string itself.
    const std::string& getDefault() const { return m_default; }
    /// The value in force, as text in the same form.
    const std::string& getValue() const { return m_value; }
    Source getSource() const { return m_source; }
    /// The environment variable that may set it: "PLAZ_GITTIMEOUT" for "plaz.gitTimeout"; empty for a secret.
    std::string getVariable() const;
    bool isHidden() const { return m_hidden; }
    /// Whether values are of nobody else's concern: no variable sets it, for other programs would see that.
    bool isSecret() const { return m_isSecret; }
    bool isDefault() const { return m_value == m_default; }

private:
    friend class HPAParamMgr; // and what it consists of
    std::string m_name;
    std::string m_description;
    Type m_type;
    std::string m_default;
    std::string m_value;
    Source m_source = Source::builtIn;
    bool m_hidden = false;
    bool m_isSecret = false;
};

/// The host's parameters, one set per process. Names match without regard to case; the first spelling is kept.
///
/// A value that is set lasts until the process ends. Until then what the parameter's variable holds counts, else what
/// the user keeps: the first text of the preference that has the parameter's name. Both are looked at once, when
/// somebody first asks for a value; what does not fit the type is told (12-110) and left out.
/// Not safe to use from several threads at once.
class HOST_API HPAParamMgr {
public:
    static HPAParamMgr& getParamMgr();

    HPAParamMgr();
    ~HPAParamMgr();
    HPAParamMgr(const HPAParamMgr&) = delete;
    HPAParamMgr& operator=(const HPAParamMgr&) = delete;

    /// Registers a parameter. One that exists already keeps its value and its first registration.
    void registerBoolParam(const std::string& name, const std::string& description, bool defaultValue);
    void registerIntParam(const std::string& name, const std::string& description, int defaultValue);
    void registerStringParam(const std::string& name, const std::string& description, const std::string& defaultValue);
    /// Leaves the parameter out of listings (or takes it in again). An unknown name is ignored.
    void setHidden(const std::string& name, bool hidden);

    /// Says that values are secrets. An unknown name is ignored.
    void setSecret(const std::string& name);

    /// Null when no such parameter is registered. The pointer stays valid for the life of the manager.
    const HPAParam* findParam(const std::string& name) const;

    /// Value of a registered parameter; false, 0 or empty for an unknown one or one of another type.
    bool getValueAsBool(const std::string& name) const;
    int getValueAsInt(const std::string& name) const;
    std::string getValueAsString(const std::string& name) const;

    /// Value of the parameter, or @p fallback when it is not registered.
    bool getValueIfExistAsBool(const std::string& name, bool fallback) const;
    int getValueIfExistAsInt(const std::string& name, int fallback) const;

    /// Sets a value given as text. Booleans take true/false, yes/no, on/off and 1/0 in any case.
    /// @return false, with nothing changed, for an unknown name or a text that does not fit the type
    bool setValue(const std::string& name, const std::string& text);
    /// Brings the default back; false for an unknown name.
    bool resetValue(const std::string& name);

    /// What became of a wish to keep something.
    enum class Kept {
        done,
        overruled, ///< done, but the parameter's variable counts as long as it is set
        refused,   ///< for an unknown name or a text that does not fit the type nothing is changed
        unsaved    ///< the preferences could not be saved, and a message says why (12-105)
    };
    /// Sets a value for this user, now and in later processes.
    Kept keepValue(const std::string& name, const std::string& text);
    /// What is kept for this user is kept no longer; the variable's value or the default counts.
    Kept forgetValue(const std::string& name);
    /// What is kept for this user; nothing where nothing is.
    std::optional<std::string> getKept(const std::string& name) const;

    /// All parameters in the order of registration, hidden ones only when asked for.
    std::vector<const HPAParam*> list(bool withHidden) const;

private:
    class Impl;
    Kept save(HPAParam& param, const std::vector<std::string>& kept);

    std::unique_ptr<Impl> m_impl;
};
