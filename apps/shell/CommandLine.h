#pragma once

#include "Options.h"

#include <string>

/// The command line, taken apart.
struct CommandLine {
    enum class Kind { command, help, version, wrong };

    Kind kind;
    Options options;  ///< as far as they could be read
    std::string text; ///< the help, the version or what is wrong

    /// Prints nothing and ends nothing.
    static CommandLine parse(int argc, const char* const* argv);
};
