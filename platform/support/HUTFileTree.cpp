#include "support/HUTFileTree.h"

#include "support/PlatformTree.h"

#include <boost/filesystem/operations.hpp>

#include <iterator>

namespace {

std::string nameOf(const std::string& dir, const std::string& inside) {
    return inside.empty() ? dir : dir + "/" + inside;
}

} // namespace

HUTFileTree HUTFileTree::scan(const std::string& dir) {
    HUTFileTree tree;
    std::vector<std::string> waiting{""}; // directories, relative
    while (!waiting.empty()) {
        const std::string inside = std::move(waiting.back());
        waiting.pop_back();
        std::vector<Entry> found;
        if (platform::listDirectory(nameOf(dir, inside), found) == HIOStatus::unreadable)
            tree.unreadable.push_back(inside.empty() ? "." : inside);
        for (Entry& entry : found) {
            if (!inside.empty()) entry.path.insert(0, inside + "/");
            if (entry.type == Entry::Type::directory) waiting.push_back(entry.path);
        }
        std::move(found.begin(), found.end(), std::back_inserter(tree.entries));
    }
    return tree;
}

bool HUTFileTree::isLink(const std::string& path) {
    boost::system::error_code failure;
    const auto type = boost::filesystem::symlink_status(path, failure).type();
    return type == boost::filesystem::symlink_file || type == boost::filesystem::reparse_file;
}

HIOStatus HUTFileTree::getSize(const std::string& file, std::uint64_t& bytes) {
    return platform::getSize(file, bytes);
}
