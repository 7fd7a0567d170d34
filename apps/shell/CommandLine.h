#pragma once

#include "Options.h"

#include <string>
#include <vector>

/// The command line, taken apart.
struct CommandLine {
    enum class Kind { command, help, version, wrong };

    Kind kind;
    Options options;  ///< as far as they could be read
    std::string text; ///< the help, the version or what is wrong

    /// Prints nothing and ends nothing. @param args  the name of the program first, in UTF-8
    static CommandLine parse(const std::vector<std::string>& args);
};
