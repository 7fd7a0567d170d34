#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

/// The command of that name; null where @p app, the program or a command, has none.
const CLI::App* findCommand(const CLI::App& app, const std::string& name);

/// What a shell may offer for the word that somebody has begun.
struct WordCompletion {
    enum class Kind {
        words,
        store,
        ownStore,
        item,
        newItem,
        installedItem,
        heldItem,
        category,
        param,
        setting,
        entry,
        file,
        directory
    };
    struct Word {
        std::string text;
        std::string description;
    };

    Kind kind = Kind::words;
    std::string before;        ///< what of the word stands before the part to complete: "--store="
    std::string begun;         ///< that part, as far as it is there
    std::vector<Word> words{}; ///< of the kind "words": all that may stand here

    /// @param program  its commands and options, not parsed
    /// @param line     the program's name and what stands behind it; the last word is to be completed and may be empty
    static WordCompletion of(const CLI::App& program, const std::vector<std::string>& line);

    /// As the shells' scripts read it: "WORD<tab>DESCRIPTION" for each word that fits what has begun, or ":files",
    /// ":directories" where the shell knows itself.
    std::string print() const;
};
