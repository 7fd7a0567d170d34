#include "BareCatalog.h"

#include "BareStartUp.h"
#include "BenchData.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/git/HSCPlazGitEnv.h"
#include "support/HUTEnv.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr const char* itemFile = "/item.json";

void copyFile(const std::string& file, const std::string& sourceDir, const std::string& destDir) {
    fs::copy_file(sourceDir + "/" + file, destDir + "/" + file, fs::copy_options::overwrite_existing);
}

} // namespace

BareCatalog::BareCatalog(std::string area, std::string url, std::size_t items)
    : m_area(std::move(area)), m_index(m_area + "/.plaz/.index"), m_staging(m_area + "/.staging"),
      m_url(std::move(url)), m_items(items) {}

void BareCatalog::refresh() {
    fetchCatalog();
    fetchDescriptions();
    const std::string schemas = HUTEnv::getGDAAppRoot("data") + "/plaz/schemas/json";
    if (readStoreBare(m_area, schemas) != m_items) throw std::runtime_error("the bare refresh lacks items");
    moveHead();
}

void BareCatalog::check() {
    m_git.run({"log", "--oneline", "-n", "1"}, m_index);
    m_git.run({"ls-remote", m_url}, m_index);
}

void BareCatalog::createIndex() {
    fs::create_directories(m_index);
    m_git.run({"init"}, m_index);
    m_git.configure("http.sslVerify", "true", m_index);
    BenchData::writeFile(m_index + "/.git/info/attributes", HSCPlazGitEnv::plainAttributes);
    const fs::path installation = fs::path(HSCPlazGit::getGitExePath()).parent_path().parent_path();
    const fs::path bundle = installation / "mingw64/etc/ssl/certs/ca-bundle.crt";
    if (fs::exists(bundle)) m_git.configure("http.sslcainfo", bundle, m_index);
    m_git.run({"config", "--local", "credential.helper", ""}, m_index);
    m_git.runBracketed({"remote", "add", "origin", m_url}, m_index);
    m_git.runBracketed({"fetch"}, m_index);
}

void BareCatalog::fetchCatalog() {
    if (!fs::exists(m_index))
        createIndex();
    else
        m_git.runBracketed({"fetch"}, m_index);
    checkOut("store.json\ncatalog.json\n");
    for (const char* file : {"store.json", "catalog.json"}) copyFile(file, m_staging, m_area);
    fs::remove_all(m_staging);
}

void BareCatalog::fetchDescriptions() {
    std::string patterns;
    for (std::size_t i = 0; i < m_items; ++i) {
        const std::string root = BenchData::itemRoot(i);
        patterns += root + itemFile + "\n" + root + "/changelog.txt\n";
    }
    m_git.runBracketed({"fetch"}, m_index);
    checkOut(patterns);
    for (std::size_t i = 0; i < m_items; ++i) {
        fs::create_directories(m_area + "/" + BenchData::itemRoot(i));
        copyFile(BenchData::itemRoot(i) + itemFile, m_staging, m_area);
    }
    fs::remove_all(m_staging);
}

void BareCatalog::checkOut(const std::string& patterns) {
    copyIndexBare(m_index, m_staging);
    m_git.select(patterns, m_staging);
    m_git.runBracketed({"checkout", "master"}, m_staging);
}

// The working copy counts as being at what has been fetched.
void BareCatalog::moveHead() const {
    std::string commit;
    std::ifstream(m_index + "/.git/refs/remotes/origin/master") >> commit;
    BenchData::writeFile(m_index + "/.git/HEAD", commit + "\n");
}

std::string BareCatalog::copyDetached() const {
    const std::string copy = m_area + "/detached";
    fs::remove_all(copy);
    copyIndexBare(m_index, copy);
    fs::remove_all(copy + "/.git/refs/remotes");
    return copy;
}
