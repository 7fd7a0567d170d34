#pragma once

#include <CLI/CLI.hpp>

#include <string>

/// What people may have meant by a word that the program does not know, such as " Did you mean `install`?": the word
/// that other tools use for it, else what is spelled alike. Empty where nothing is.
namespace Suggestions {

std::string ofCommand(const std::string& word, const CLI::App& app);
/// @param app  the program; the command that was chosen counts with its options
std::string ofOption(const std::string& word, const CLI::App& app);

} // namespace Suggestions
