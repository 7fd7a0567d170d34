#include "support/TempDir.h"

#include <boost/filesystem.hpp>
#include <boost/filesystem/fstream.hpp>

#include <cstdlib>
#include <iterator>

namespace fs = boost::filesystem;

namespace {

void put(const std::string& name, const std::optional<std::string>& value) {
    if (value)
        setenv(name.c_str(), value->c_str(), 1);
    else
        unsetenv(name.c_str());
}

} // namespace

TempDir::TempDir()
    : m_path((fs::canonical(fs::temp_directory_path()) / fs::unique_path("plaz-test-%%%%-%%%%-%%%%")).string()) {
    fs::create_directory(m_path);
}

TempDir::~TempDir() {
    boost::system::error_code error;
    fs::remove_all(m_path, error);
}

std::string TempDir::write(const std::string& relative, const std::string& content) const {
    return writeFile(path(relative), content);
}

std::string TempDir::makeDir(const std::string& relative) const {
    fs::create_directories(path(relative));
    return path(relative);
}

EnvGuard::~EnvGuard() {
    for (const auto& [name, value] : m_old) put(name, value);
}

void EnvGuard::set(const std::string& name, const std::optional<std::string>& value) {
    const char* old = std::getenv(name.c_str());
    m_old.try_emplace(name, old ? std::optional<std::string>(old) : std::nullopt);
    put(name, value);
}

std::string filled(const std::string& text, const std::vector<std::string>& values) {
    std::string result;
    auto value = values.begin();
    for (const char c : text) result += c == '%' ? *value++ : std::string(1, c);
    return result;
}

std::string writeFile(const std::string& file, const std::string& content) {
    fs::create_directories(fs::path(file).parent_path());
    fs::ofstream(file, std::ios::binary) << content;
    return file;
}

std::string readFile(const std::string& file) {
    fs::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}
