#pragma once

#include "support/HostExport.h"

#include <string>
#include <vector>

/// Environment, product identity and the directories of the installation. Everything is looked up afresh at each call.
///
/// Each root is taken from its variable, else from its place relative to the loaded library (".." of the library's
/// directory, then "share/plaz"):
///
///     variable          default
///     GDA_APPROOT       <prefix>/share/plaz             application root
///     GDA_DATA_DIR      <application root>/data         data roots, separated like PATH
///     GDA_TPS_DIR       <application root>/tps          third-party programs, separated like PATH
///     GDA_APPDATA_DIR   ~/.Zentor                       per-user area
class HOST_API HUTEnv {
public:
    /// True when the variable is set; @p value then holds its value, which may be empty.
    static bool getEnv(const std::string& name, std::string& value);
    /// The variable's value; empty when it is not set.
    static std::string getEnv(const std::string& name);
    /// True when the variable is set and its value begins with "Y" or "y".
    static bool isYes(const std::string& name);

    /// The working directory; empty when it is gone.
    static std::string getPWD();

    /// GDA_PRODUCT_NAME, else "Solvan".
    static std::string getProductName();
    /// GDA_PRODUCT_VERSION, else the built-in version: "2024.2.0", a patch tag after "_", "-" or "+" included.
    static std::string getProductVersion();
    /// The version without its patch tag: "2024.2.0".
    static std::string getProductVersionExcludingPatch();
    /// The first two numbers: "2024.2".
    static std::string getProductMajorMinorVersion();
    /// Replace what the two variables say, for this process and its children. An empty value is ignored.
    static void setProduct(const std::string& name, const std::string& version);

    /// The application root joined with @p relative; empty when nothing exists there.
    static std::string getGDAAppRoot(const std::string& relative);
    /// The first data root under which @p relative exists, itself without @p relative; empty when none has it.
    /// Without an argument, the first data root that exists.
    static std::string getGDADataDir(const std::string& relative = "");
    /// The same for what belongs to the program itself, such as the texts of messages: below the application root, or
    /// where the library's own place would have it, whatever the data roots are; these where both lack it.
    static std::string getOwnDataDir(const std::string& relative);
    /// The first third-party root's file or directory @p relative; empty when none has it.
    static std::string getGDATpsPath(const std::string& relative);
    /// The program @p name, called as where programs end in ".exe", along PATH; elsewhere it is found without that
    /// ending, too. What may not be run is passed over, as shells do. Empty when no absolute directory of PATH has it.
    static std::string findProgram(const std::string& name);
    /// The per-user application-data directory. Not created here.
    static std::string getHDIAppDataDir();

    /// True when GDA_REGRESS_MODE begins with "Y" or "y": a run that must leave no trace in databases.
    static bool getRegressMode();

    /// The certificates, in PEM form, of the authorities that this system trusts to vouch for servers; empty when they
    /// are nowhere to be found.
    static std::string getAuthorities();

    /// Every variable of the environment as "NAME=value".
    static std::vector<std::string> getAll();
};
