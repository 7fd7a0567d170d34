#include "support/HUTSysCall.h"

#include "support/PlatformSystem.h"

#include <boost/filesystem.hpp>

#include <cstdio>
#include <iostream>

namespace fs = boost::filesystem;

std::string HUTSysCall::getCurrDir() {
    boost::system::error_code error;
    return fs::current_path(error).generic_string();
}

bool HUTSysCall::changeDir(const std::string& dir) {
    boost::system::error_code error;
    fs::current_path(dir, error);
    return !error;
}

std::vector<std::string> HUTSysCall::startProgram(int argc, const char* const* argv) {
    return platform::startProgram(argc, argv);
}

int HUTSysCall::runShell(const std::string& command) {
    return platform::runShell(command);
}

bool HUTSysCall::isPlainShellWord(const std::string& text) {
    static const std::string plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~:/@+,=" + platform::plainInShell;
    return !text.empty() && text.find_first_not_of(plain) == std::string::npos;
}

int HUTSysCall::divertStandardOutput() {
    std::cout.flush();
    std::fflush(stdout);
    return platform::divertStandardOutput();
}

void HUTSysCall::restoreStandardOutput(int kept) {
    std::cout.flush();
    std::fflush(stdout);
    platform::restoreStandardOutput(kept);
}

int HUTSysCall::getTerminalWidth() {
    return platform::getTerminalWidth();
}

bool HUTSysCall::showsColours(Stream stream) {
    return platform::showsColours(stream == Stream::errors);
}

bool HUTSysCall::isInputTerminal() {
    return platform::isInputTerminal();
}

void HUTSysCall::letCtrlCEndReads() {
    platform::letCtrlCEndReads();
}
