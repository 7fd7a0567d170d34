#include "support/TempDir.h"

#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/System.h"

#include <boost/filesystem.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = boost::filesystem;

namespace {

std::filesystem::path nativeName(const std::string& file) {
    return fs::path(file).native();
}

} // namespace

TempDir::TempDir()
    : m_path(
          (fs::path(test_system::findTempDirectory()) / fs::unique_path("plaz-test-%%%%-%%%%-%%%%")).generic_string()) {
    fs::create_directory(m_path);
}

TempDir::~TempDir() {
    HUTFile::rmRecursive(m_path);
}

std::string TempDir::write(const std::string& relative, const std::string& content) const {
    return writeFile(path(relative), content);
}

std::string TempDir::makeDir(const std::string& relative) const {
    fs::create_directories(path(relative));
    return path(relative);
}

EnvGuard::~EnvGuard() {
    for (const auto& [name, value] : m_old) test_system::putVariable(name, value);
}

void EnvGuard::set(const std::string& name, const std::optional<std::string>& value) {
    std::string old;
    m_old.try_emplace(name, HUTEnv::getEnv(name, old) ? std::optional<std::string>(old) : std::nullopt);
    test_system::putVariable(name, value);
}

std::string filled(const std::string& text, const std::vector<std::string>& values) {
    std::string result;
    auto value = values.begin();
    for (const char c : text) result += c == '%' ? *value++ : std::string(1, c);
    return result;
}

std::string writeFile(const std::string& file, const std::string& content) {
    fs::create_directories(fs::path(file).parent_path());
    std::ofstream(nativeName(file), std::ios::binary) << content;
    return file;
}

std::string readFile(const std::string& file) {
    std::ifstream stream(nativeName(file), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}
