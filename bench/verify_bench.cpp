#include "benchmarks.h"

#include "BenchData.h"
#include "Comparison.h"
#include "Workspace.h"
#include "plaz/store/HSCPlazItemTree.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"

#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr std::size_t items = 1000;
constexpr std::size_t filesOfItem = 10;
constexpr int rounds = 11;
constexpr double ratioOfVerification = 1.2;
constexpr double ratioOfQuickLook = 0.5;

const std::string commit(40, 'a');

using Look = HSCPlazItemTree::Differences (HSCPlazItemTree::*)(const std::string& dir) const;

/// "item.json", "src/file-1.tcl", ...
std::string fileOfItem(std::size_t number) {
    return number == 0 ? "item.json"
                       : (number % 2 == 0 ? "doc/" : "src/") + std::string("file-") + std::to_string(number);
}

void require(bool holds, const std::string& what) {
    if (!holds) throw std::runtime_error(what);
}

/// Installed items with what is known of their trees.
class InstalledItems {
public:
    /// @param largest  size of a file in bytes; the smallest has a sixteenth of it
    explicit InstalledItems(std::size_t largest) : m_dir(Workspace::get().path("verify")), m_largest(largest) {
        for (std::size_t item = 0; item < items; ++item)
            for (std::size_t file = 0; file < filesOfItem; ++file) writeOne(item, fileOfItem(file));
        BenchData::writeFile(m_dir + "/paths", m_paths);
        hashByGit();
        writeTrees(readFile(m_dir + "/ids"));
    }
    ~InstalledItems() { HUTFile::rmRecursive(m_dir); }
    InstalledItems(const InstalledItems&) = delete;
    InstalledItems& operator=(const InstalledItems&) = delete;

    void hashByGit() const {
        HUTFork git;
        git.setProg("/bin/sh", true);
        for (const std::string& arg : {std::string("-c"), "exec git hash-object --no-filters --stdin-paths <'" + m_dir +
                                                              "/paths' >'" + m_dir + "/ids'"})
            git.addArg(arg);
        git.setDir(m_dir);
        require(git.launch(true, true, true, true) == 0, "git hash-object failed");
    }

    void verify(Look look) const {
        for (std::size_t item = 0; item < items; ++item) {
            const auto tree = HSCPlazItemTree::read(treeOf(item), commit);
            require(tree && ((*tree).*look)(folderOf(item)).areNone(), folderOf(item) + " differs");
        }
    }

private:
    std::string folderOf(std::size_t item) const { return m_dir + "/" + BenchData::itemRoot(item); }
    std::string treeOf(std::size_t item) const { return m_dir + "/trees/" + BenchData::itemName(item); }

    void writeOne(std::size_t item, const std::string& file) {
        std::string content(m_largest / 16 + m_random() % (m_largest - m_largest / 16), '\0');
        for (char& c : content) c = static_cast<char>(m_random() & 0x7f);
        BenchData::writeFile(folderOf(item) + "/" + file, content);
        m_paths += folderOf(item) + "/" + file + "\n";
    }

    void writeTrees(const std::string& ids) const {
        std::istringstream lines(ids);
        for (std::size_t item = 0; item < items; ++item) {
            std::string listing;
            for (std::size_t file = 0; file < filesOfItem; ++file) {
                std::string id;
                lines >> id;
                listing += "100644 blob " + id + "\t" + fileOfItem(file) + '\0';
            }
            std::string problem;
            const auto tree = HSCPlazItemTree::parse(listing, commit, "", problem);
            require(tree && tree->write(treeOf(item)), "a tree " + problem);
        }
    }

    const std::string m_dir;
    const std::size_t m_largest;
    std::string m_paths;
    std::mt19937 m_random{1};
};

void verify(benchmark::State& state, std::size_t largest, double ratio, Look look) {
    const InstalledItems installed(largest);
    compare(
        state, rounds, {ratio}, items, [&](int) { return secondsOf([&] { installed.verify(look); }); },
        [&](int) { return secondsOf([&] { installed.hashByGit(); }); });
}

} // namespace

void addVerification() {
    const auto add = [](const char* name, std::size_t largest, double ratio, Look look) {
        benchmark::RegisterBenchmark(name, verify, largest, ratio, look)->Iterations(1)->UseManualTime();
    };
    add("verify of 1,000 items", 8192, ratioOfVerification, &HSCPlazItemTree::compare);
    // Of tiny files the names cost more than the contents, and git looks for no file that it is not told of: no target.
    add("verify of 1,000 items, tiny files", 512, 0, &HSCPlazItemTree::compare);
    add("verify, quick look at 1,000 items", 8192, ratioOfQuickLook, &HSCPlazItemTree::findLost);
}
