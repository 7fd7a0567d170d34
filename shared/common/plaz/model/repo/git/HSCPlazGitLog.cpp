#include "plaz/model/repo/git/HSCPlazGitLog.h"

#include "support/HUTText.h"

#include <boost/algorithm/string/replace.hpp>
#include <boost/property_tree/ini_parser.hpp>

#include <algorithm>
#include <iterator>
#include <sstream>

namespace {

constexpr std::size_t mostLines = 100;
constexpr std::size_t longestLine = 4000;

bool isOfRemote(const std::string& lowered) {
    return lowered.rfind("remote:", 0) == 0 || lowered.find("remote error:") != std::string::npos;
}

} // namespace

std::vector<std::string> HSCPlazGitLog::getErrorLines(const std::string& output) {
    std::vector<std::string> found;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::string lowered = HUTText::lowered(line);
        if (lowered.find("fatal:") == std::string::npos && lowered.find("error:") == std::string::npos) continue;
        if (found.size() == mostLines) found.erase(found.begin());
        found.push_back(HUTText::cutToSize(line, longestLine));
    }
    return found;
}

bool HSCPlazGitLog::tellsOfMemory(const std::string& output) {
    static constexpr const char* signs[] = {"out of memory",  "cannot allocate memory",  "memory exhausted",
                                            "std::bad_alloc", "unable to create thread", "died of signal 9"};
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        const std::string lowered = HUTText::lowered(line);
        const auto isThere = [&](const char* sign) { return lowered.find(sign) != std::string::npos; };
        if (!isOfRemote(lowered) && std::any_of(std::begin(signs), std::end(signs), isThere)) return true;
    }
    return false;
}

std::string HSCPlazGitLog::withPlainSections(std::string config) {
    boost::algorithm::replace_first(config, "remote \"origin\"", "remote_origin");
    return config;
}

std::optional<std::string> HSCPlazGitLog::findConfigValue(const std::string& config, const std::string& key) {
    try {
        std::istringstream text(config);
        boost::property_tree::ptree tree;
        boost::property_tree::read_ini(text, tree);
        const auto value = tree.get_optional<std::string>(key);
        return value ? std::optional(unquoteConfigValue(*value)) : std::nullopt;
    } catch (const boost::property_tree::ptree_error&) {
        return std::nullopt;
    }
}

std::string HSCPlazGitLog::unquoteConfigValue(const std::string& value) {
    std::string plain;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '"') continue;
        if (value[i] == '\\' && i + 1 < value.size()) ++i;
        plain += value[i];
    }
    return plain;
}

std::string HSCPlazGitLog::toSparsePattern(const std::string& path) {
    std::string pattern;
    for (const char c : path) {
        const bool isFirst = pattern.empty();
        if (c == '*' || c == '?' || c == '[' || (isFirst && (c == '!' || c == '#'))) pattern += '\\';
        pattern += c == '\\' ? '/' : c; // to git a backslash is an escape, never a separator
    }
    if (!path.empty() && path.back() == ' ') pattern.insert(pattern.size() - 1, 1, '\\');
    return pattern;
}
