#include "plaz/model/repo/git/HSCPlazGitProgram.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

#include <boost/filesystem/path.hpp>

namespace fs = boost::filesystem;

using HSCPlazGitTrace::trace;

namespace {

constexpr const char* gitRelativePath = "win64/git-2.45.0/cmd/git.exe";
constexpr const char* gitBareName = "git.exe";
constexpr const char* helperRelativePath = "bin/zenproxy.exe";

/// In the main tool's installation, which stands beside the running product's.
std::string inMainTool(const std::string& relative) {
    return HUTEnv::getGDAAppRoot("/../../Solvan/" + HUTEnv::getProductMajorMinorVersion() + "/" + relative);
}

/// In a developer's kit, where there is no installation.
std::string inKit() {
    return (fs::path(HUTEnv::getEnv("HOMEDRIVE") + "/cygwin") / HUTEnv::getEnv("GDA_DEVKIT") / gitRelativePath)
        .generic_string();
}

std::string inInstallation() {
    if (HSCPlazProduct::bringsTools()) return HUTEnv::getGDATpsPath(gitRelativePath);
    const std::string path = inMainTool(std::string("tps/") + gitRelativePath);
    return path.empty() ? inKit() : path;
}

} // namespace

std::string HSCPlazGitProgram::find() {
    std::string path = HSCPlazGitParams::usesSearchPath() ? HUTEnv::findProgram(gitBareName) : inInstallation();
    trace("get exec path:", path);
    trace("get gitdir path:", path);
    path = HUTFile::getCanonicalName(path);
    trace("Git path : ", path);
    return path;
}

std::string HSCPlazGitProgram::require() {
    std::string program = find();
    if (HUTFile::exists(program)) return program;
    throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::gitNotFound));
}

std::string HSCPlazGitProgram::findCertificates() {
    const std::string program = find();
    if (!HUTFile::exists(program)) return "";
    trace("SSLCAInfo : git exe path - ", program);
    const fs::path installation = fs::path(program).parent_path().parent_path();
    trace("SSLCAInfo : git exe parent dir- ", installation.generic_string());
    const std::string bundle = (installation / "mingw64/etc/ssl/certs/ca-bundle.crt").generic_string();
    trace("SSLCAInfo : final ssl ca info path - ", bundle);
    return bundle;
}

std::string HSCPlazGitProgram::findProxyHelper() {
    return HUTFile::getCanonicalName(HSCPlazProduct::bringsTools() ? HUTEnv::getGDAAppRoot(helperRelativePath)
                                                                   : inMainTool(helperRelativePath));
}
