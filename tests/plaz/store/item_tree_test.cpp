#include "plaz/store/HSCPlazItemTree.h"
#include "support/GitRepo.h"
#include "support/HUTFile.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace {

using Tree = HSCPlazItemTree;

const std::string emptyId = "e69de29bb2d1d6434b8b29ae775ad8c2e48c5391";

std::string line(const std::string& path, const std::string& start = "100644 blob " + emptyId) {
    return start + '\t' + path + '\0';
}

std::string summarize(const Tree::Differences& differences) {
    std::string text;
    const auto add = [&text](const char* title, const Names& names) {
        for (const std::string& name : names) text += title + name + '\n';
    };
    add("changed ", differences.changed);
    add("missing ", differences.missing);
    add("additional ", differences.additional);
    add("unreadable ", differences.unreadable);
    EXPECT_EQ(differences.areNone(), text.empty());
    return text;
}

/// An item in a repository of git's, and installed as the hub does it.
class ItemTreeTest : public testing::Test {
protected:
    const std::string& makeItem(const std::string& format) {
        const GitRepo outer(temp.path(format));
        outer.git({"init", "--object-format=" + format, "repo"});
        const std::string repo = outer.getDir() + "/repo";
        const auto git = [&outer](Names args) {
            args.insert(args.begin(), {"-C", "repo", "-c", "core.symlinks=false", "-c", "core.autocrlf=false"});
            return outer.git(args);
        };
        for (const auto& [file, content] : {std::pair<std::string, std::string>{"item.json", "{}\n"},
                                            {"empty", ""},
                                            {"block", std::string(55, 'x')},
                                            {"part", std::string(65536, 'x')},
                                            {"lines.txt", "a\r\nb\n"},
                                            {"bin/run 'x'", "#!/bin/sh\n"},
                                            {"bin/Größe & Maß", "groß"},
                                            {"big", std::string(3 << 20, 'b')},
                                            {"link", "../../elsewhere"}})
            writeFile(repo + "/boards/aurora/" + file, content);
        writeFile(repo + "/boards/aurora2/other", "x");
        git({"add", "--all"});
        git({"update-index", "--chmod=+x", "boards/aurora/bin/run 'x'"});
        const std::string target = git({"hash-object", "boards/aurora/link"});
        git({"update-index", "--cacheinfo", "120000," + target + ",boards/aurora/link"});
        git({"commit", "--message=item"});
        commit = git({"rev-parse", "HEAD"});
        git({"checkout-index", "--all", "--prefix=../installed/"});
        installed = outer.getDir() + "/installed/boards/aurora";
        listing = git({"ls-tree", "-r", "-z", "--full-tree", commit, "boards/aurora"});
        return listing;
    }
    Tree readTree() {
        auto tree = Tree::parse(listing, commit, "boards/aurora", problem);
        EXPECT_TRUE(tree) << problem;
        return tree.value();
    }

    TempDir temp;
    std::string commit, installed, listing, problem;
};

// Fault: what git has checked out is taken for changed, or no longer when the tree comes from its file.
TEST_F(ItemTreeTest, FindsWhatGitHasCheckedOut) {
    for (const char* format : {"sha1", "sha256"}) {
        SCOPED_TRACE(format);
        makeItem(format);
        const Tree tree = readTree();
        EXPECT_EQ(tree.getEntries().size(), 9u);
        EXPECT_EQ(summarize(tree.compare(installed)), "");

        const std::string file = temp.path(std::string(format) + "/trees/aurora");
        ASSERT_TRUE(tree.write(file));
        const auto known = Tree::read(file, commit);
        ASSERT_TRUE(known);
        EXPECT_EQ(summarize(known->compare(installed)), "");
        EXPECT_EQ(summarize(known->findLost(installed)), "");
        EXPECT_FALSE(Tree::read(file, commit.substr(0, 8))) << "another commit";
        EXPECT_EQ(summarize(known->findLost(temp.path("absent"))),
                  "missing big\nmissing bin/Größe & Maß\nmissing bin/run 'x'\nmissing block\nmissing empty\n"
                  "missing item.json\nmissing lines.txt\nmissing link\nmissing part\n");
    }
}

// Fault: a difference that is not seen, is seen as another one, or is none.
TEST_F(ItemTreeTest, TellsWhatDiffers) {
    makeItem("sha1");
    const Tree tree = readTree();
    const auto put = [this](const std::string& file, const std::string& content) {
        HUTFile::rmRecursive(installed + "/" + file.substr(0, file.find('/')));
        writeFile(installed + "/" + file, content);
    };
    put(".done", "");
    put(".git/config", "x");
    HUTFile::mkDirRecursive(installed + "/empty folder");
    EXPECT_EQ(summarize(tree.compare(installed)), "additional .done\nadditional .git/config\n") << "no directories";

    put("big", std::string((3 << 20) - 1, 'b') + "c");
    put("empty", "x");
    put("lines.txt", "a\nb\n");
    put("item.json", "");
    put("link/file", "x");
    put("bin", "x");
    put("new/.git", "x");
    EXPECT_EQ(summarize(tree.compare(installed)),
              "changed big\nchanged empty\nchanged item.json\nchanged lines.txt\nchanged link\n"
              "missing bin/Größe & Maß\nmissing bin/run 'x'\nadditional .done\nadditional .git/config\nadditional "
              "bin\nadditional link/file\nadditional new/.git\n");
    EXPECT_EQ(summarize(tree.findLost(installed)), "changed item.json\nchanged link\nmissing bin/Größe & Maß\n"
                                                   "missing bin/run 'x'\n");
}

// Fault: a listing that is not git's, or leads elsewhere, is believed.
TEST_F(ItemTreeTest, RefusesListings) {
    const std::string good = line("r/a");
    const std::string id64 = emptyId + std::string(24, '0');
    const std::pair<std::string, const char*> cases[] = {
        {"", "holds no files"},
        {line("r/.done"), "holds no files"},
        {"fatal: Not a valid object name", "is no listing of git"},
        {good + "100644 blob " + emptyId + "\tr/b", "is no listing of git"},
        {good + '\0', "is no listing of git"},
        {good + line("r/b", "100644 blob"), "is no listing of git"},
        {good + good, "holds \"a\", which is there twice"},
        {line("other/a"), "holds \"other/a\", which is not the item's"},
        {line("r"), "holds \"r\", which is not the item's"},
        {line("r/b", "040000 tree " + emptyId), "holds \"r/b\", which is listed in a way that is none of git's"},
        {line("r/b", "100944 blob " + emptyId), "holds \"r/b\", which is listed in a way that is none of git's"},
        {line("r/b", "100644 blob " + emptyId + "0"), "holds \"r/b\", which is listed in a way that is none of git's"},
        {line("r/b", "100644 blob E" + emptyId.substr(1)),
         "holds \"r/b\", which is listed in a way that is none of git's"},
        {good + line("r/b", "100644 blob " + id64), "holds \"r/b\", which is listed in a way that is none of git's"}};
    for (const auto& [text, expected] : cases) {
        EXPECT_FALSE(Tree::parse(text, "c", "r", problem)) << text;
        EXPECT_EQ(problem, expected) << text;
    }
    for (const char* path :
         {"", "..", "../a", "a/../../b", "/a", "a//b", "a/", "./a", ".git", "a/.GIT/hooks/x", ".git/config"}) {
        EXPECT_FALSE(Tree::parse(good + line("r/" + std::string(path)), "c", "r", problem)) << path;
        EXPECT_NE(problem.find("is no path inside the item's folder"), std::string::npos) << problem;
    }

    const auto tree = Tree::parse(line("b", "100664 blob " + emptyId) + line("sub", "160000 commit " + emptyId) +
                                      line(".done/x") + line("a/.gitignore", "100775 blob " + emptyId),
                                  "c", "", problem);
    ASSERT_TRUE(tree) << problem;
    std::string found;
    for (const Tree::Entry& entry : tree->getEntries()) found += entry.mode + " " + entry.path + "\n";
    EXPECT_EQ(found, "100755 a/.gitignore\n100644 b\n") << "without submodules and marks, with the modes of today";
}

// Fault: a damaged file that says what an item consists of.
TEST_F(ItemTreeTest, DoesNotKnowDamagedFiles) {
    const std::string file = temp.path("tree");
    const auto tree = Tree::parse(line("r/a") + line("r/b"), emptyId, "r", problem);
    ASSERT_TRUE(tree && tree->write(file) && Tree::read(file, emptyId));
    const std::string good = readFile(file);
    const auto expectUnknown = [&](const std::string& content) {
        EXPECT_FALSE(Tree::read(temp.write("tree", content), emptyId)) << content;
    };
    for (std::size_t i = 0; i < good.size(); ++i) {
        expectUnknown(good.substr(0, i));
        expectUnknown(good.substr(0, i) + static_cast<char>(good[i] ^ 1) + good.substr(i + 1));
    }
    for (const std::string& content : {good + line("c"), std::string("{}\n"), line("a")}) expectUnknown(content);
    for (const std::string root : {"../../r", "/r", ".git"})
        expectUnknown(Tree::parse(line(root + "/a"), emptyId, root, problem)->toText()); // whose folder would be moved
    EXPECT_FALSE(Tree::read(temp.path("absent"), emptyId));
    EXPECT_FALSE(tree->write(temp.makeDir("directory")));
}

} // namespace
