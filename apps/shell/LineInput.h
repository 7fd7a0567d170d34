#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// How the last word of a line could go on.
struct Completion {
    std::size_t begin;              ///< where the word begins
    std::vector<std::string> words; ///< whole words in its place, sorted
};

/// Where a shell's lines come from.
class LineInput {
public:
    enum class Outcome {
        line,
        dropped, ///< the person has thrown the line away
        end
    };

    virtual ~LineInput() = default;
    /// @param prompt  shown to a person
    /// @param line    receives the line without its end
    virtual Outcome read(const std::string& prompt, std::string& line) = 0;
    /// Keeps a command for the person to come back to.
    virtual void remember(const std::string& command) = 0;
};

/// The terminal, with editing, completion and a history of limited length.
///
/// @param complete     is asked with the line up to the cursor
/// @param historyFile  keeps the history; readable by its owner alone
std::unique_ptr<LineInput> makeLineEditor(std::function<Completion(const std::string& before)> complete,
                                          const std::string& historyFile);
