#pragma once

#include <optional>
#include <string>
#include <vector>

/// A configuration file of git's, read as git itself reads it: names in any case, sections within sections in both
/// spellings, quotes, escapes, comments, and values that go on in the next line. What git would include is not read.
namespace HSCPlazGitConfigText {

struct Entry {
    std::string key;                  ///< in small letters, but for the section within a section: "branch.Main.remote"
    std::optional<std::string> value; ///< nothing where there is no "="
};

/// All entries in their order; nothing where git would refuse the text, or where it may be read in two ways.
std::optional<std::vector<Entry>> parse(const std::string& text);

} // namespace HSCPlazGitConfigText
