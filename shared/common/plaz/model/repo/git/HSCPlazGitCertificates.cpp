#include "plaz/model/repo/git/HSCPlazGitCertificates.h"

#include "plaz/base/HSCPlazContext.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazUrl.h"
#include "plaz/model/repo/git/HSCPlazGitConfigFile.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitParams.h"
#include "support/HIOStream.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <set>
#include <string_view>
#include <vector>

namespace {

using Authorities = HSCPlazGitCertificates::Authorities;

/// Certificates in PEM form.
struct Source {
    std::string file; ///< empty for the system's own
    std::string text;
};

/// A file may hold a key besides, which is not to be copied.
std::string certificatesIn(const std::string& text) {
    static constexpr std::string_view begin = "-----BEGIN ", end = "-----END ";
    std::string certificates;
    for (std::size_t at = text.find(begin); at != std::string::npos; at = text.find(begin, at)) {
        const std::size_t lineEnd = std::min(text.find('\n', text.find(end, at)), text.size());
        const std::string label =
            text.substr(at + begin.size(), text.find("-----", at + begin.size()) - at - begin.size());
        if (boost::algorithm::ends_with(label, "CERTIFICATE")) certificates += text.substr(at, lineEnd - at) + "\n";
        at = lineEnd;
    }
    return certificates;
}

// RATIONALE: git runs in a working copy, and so does what is asked here; a relative name would mean a file in there.
std::string read(const std::string& file) {
    std::string text;
    if (boost::filesystem::path(file).is_absolute()) HIOStream::read(file, text);
    return certificatesIn(text);
}

bool mayCarryLogin(const std::string& remoteUrl) {
    return HSCPlazGitParams::mayAsk() || !HSCPlazGitCredentials::inUrl(remoteUrl).isEmpty();
}

std::vector<Source> gather(const std::string& recorded, HSCPlazReport& problems) {
    const std::string chosen = HSCPlazGitParams::getCertificateFile();
    std::vector<Source> sources;
    for (const std::string& file : {recorded, HUTEnv::getEnv("GIT_SSL_CAINFO"), chosen})
        if (!file.empty()) sources.push_back({file, read(file)});
    if (!chosen.empty() && sources.back().text.empty())
        problems.add(Msg::authoritiesUnusable, MsgSeverity::error, chosen);
    sources.push_back({"", certificatesIn(HUTEnv::getAuthorities())});
    const auto isEmpty = [](const Source& source) { return source.text.empty(); };
    sources.erase(std::remove_if(sources.begin(), sources.end(), isEmpty), sources.end());
    return sources;
}

bool holdsAll(const Source& one, const std::vector<Source>& sources) {
    return std::all_of(sources.begin(), sources.end(),
                       [&](const Source& other) { return one.text.find(other.text) != std::string::npos; });
}

/// Writes nothing where the file is as it should be.
bool keep(const std::string& file, const std::vector<Source>& sources) {
    std::string text, present;
    for (const Source& source : sources)
        if (text.find(source.text) == std::string::npos) text += source.text + "\n";
    if (HIOStream::read(file, present) == HIOStream::Status::ok && present == text) return true;
    return HUTFile::mkDirRecursive(boost::filesystem::path(file).parent_path().string()) &&
           HUTFile::writeAtomically(file, text);
}

/// Why a certificate was refused, in git's words by way of each of the libraries that it may be built with; empty where
/// none was. What may stand in a URL is no sign.
std::string findReason(const std::string& errors) {
    struct Sign {
        const char* words;
        const char* reason;
    };
    static constexpr const char* name = "it was issued for another name";
    static constexpr const char* time = "it has expired, or is not valid yet";
    static constexpr const char* signer = "no authority that is known here vouches for it, or it is out of date";
    static constexpr Sign signs[] = {{"certificate subject name", name},
                                     {"failed to match connection hostname", name},
                                     {"certificate name verification failed", name},
                                     {"SEC_E_WRONG_PRINCIPAL", name},
                                     {"certificate has expired", time},
                                     {"certificate is not yet valid", time},
                                     {"certificate expiration date has passed", time},
                                     {"certificate not activated yet", time},
                                     {"SEC_E_CERT_EXPIRED", time},
                                     {"certificate verification failed", signer},
                                     {"SSL certificate problem", signer},
                                     {"SEC_E_UNTRUSTED_ROOT", signer},
                                     {"CERT_TRUST_IS", signer}};
    const auto found = std::find_if(std::begin(signs), std::end(signs),
                                    [&](const Sign& sign) { return errors.find(sign.words) != std::string::npos; });
    return found == std::end(signs) ? "" : found->reason;
}

} // namespace

bool HSCPlazGitCertificates::isNamed(const std::string& remoteUrl) {
    return HSCPlazGitParams::namesServer("plaz.uncheckedServers", remoteUrl);
}

bool HSCPlazGitCertificates::areChecked(const std::string& remoteUrl) {
    if (!HSCPlazUrl::parse(remoteUrl).isHttp() || HSCPlazGitParams::checksCertificates()) return true;
    return mayCarryLogin(remoteUrl) && !isNamed(remoteUrl);
}

Authorities HSCPlazGitCertificates::findAuthorities(const std::string& workDir) {
    Authorities authorities;
    const std::string recorded = HSCPlazGitConfigFile::findValue(workDir, "http.sslcainfo").value_or("");
    const std::vector<Source> sources = gather(recorded, authorities.problems);
    const bool isOnlySystem = recorded.empty() && sources.size() == 1 && sources.front().file.empty();
    if (sources.empty() || isOnlySystem) return authorities; // git finds them by itself
    for (const Source& source : sources)
        if (!source.file.empty() && holdsAll(source, sources)) authorities.file = source.file;
    if (!authorities.file.empty()) return authorities;
    const std::string file = HSCPlazContext::get().getAuthoritiesFile();
    if (!file.empty() && keep(file, sources))
        authorities.file = file;
    else
        authorities.problems.add(Msg::dirNotWritable, MsgSeverity::error,
                                 boost::filesystem::path(file).parent_path().generic_string());
    return authorities;
}

HSCPlazReport HSCPlazGitCertificates::explain(const std::string& remoteUrl, const std::string& errors,
                                              const std::string& workDir) {
    const std::string reason = findReason(errors);
    if (reason.empty()) return {};
    HSCPlazReport report(Msg::serverNotTrusted, MsgSeverity::error, HSCPlazUrl::parse(remoteUrl).getServer(), reason);
    report.append(findAuthorities(workDir).problems);
    return report;
}

HSCPlazReport HSCPlazGitCertificates::explainOnce(const std::string& remoteUrl, const std::string& errors,
                                                  const std::string& workDir) {
    static std::set<std::string> told;
    HSCPlazReport report = explain(remoteUrl, errors, workDir);
    if (!report.isEmpty() && !told.insert(HSCPlazUrl::parse(remoteUrl).getServer()).second) return {};
    return report;
}
