#include "support/System.h"

#include "support/TempDir.h"

#include <cstdlib>
#include <filesystem>
#include <unistd.h>

const char* const test_system::homeVariable = "HOME";
const char* const test_system::pathListSeparator = ":";
const char* const test_system::programSuffix = "";

std::string test_system::findTempDirectory() {
    return std::filesystem::canonical(std::filesystem::temp_directory_path());
}

bool test_system::makeLink(const std::string& target, const std::string& link) {
    std::filesystem::create_symlink(target, link);
    return true;
}

bool test_system::giveAway(const std::string& path) {
    constexpr uid_t somebody = 12345;
    return lchown(path.c_str(), somebody, somebody) == 0;
}

bool test_system::openToAll(const std::string& path) {
    std::filesystem::permissions(path, std::filesystem::perms::all);
    return true;
}

bool test_system::isReadableByOthers(const std::string& file) {
    constexpr auto others = std::filesystem::perms::group_all | std::filesystem::perms::others_all;
    return (std::filesystem::status(file).permissions() & others) != std::filesystem::perms::none;
}

void test_system::putVariable(const std::string& name, const std::optional<std::string>& value) {
    if (value)
        setenv(name.c_str(), value->c_str(), 1);
    else
        unsetenv(name.c_str());
}

void test_system::startAside(const std::string& program, const char* argument) {
    if (fork() == 0) execl(program.c_str(), program.c_str(), argument, nullptr);
}

std::string test_system::toShellName(const std::string& path) {
    return path;
}

void test_system::writeProgram(const std::string& file, const std::string& script, const std::string& /*dir*/) {
    writeFile(file, "#!/bin/sh\n" + script + "\n");
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
}
