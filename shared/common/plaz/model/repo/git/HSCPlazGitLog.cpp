#include "plaz/model/repo/git/HSCPlazGitLog.h"

#include "support/HUTText.h"

#include <boost/algorithm/string/replace.hpp>
#include <boost/property_tree/ini_parser.hpp>

#include <sstream>

std::vector<std::string> HSCPlazGitLog::getErrorLines(const std::string& output) {
    std::vector<std::string> found;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::string lowered = HUTText::lowered(line);
        if (lowered.find("fatal:") != std::string::npos || lowered.find("error:") != std::string::npos)
            found.push_back(line);
    }
    return found;
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
