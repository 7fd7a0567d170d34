#include "plaz/store/HSCPlazItemTree.h"
#include "support/HUTDigest.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Tree = HSCPlazItemTree;

/// A folder with some files, and the tree that they were when it was made.
class PosixItemTreeTest : public testing::Test {
protected:
    PosixItemTreeTest() {
        std::string listing, problem;
        for (const char* name : {"plain", "program", "say \"hi\"\\", "dir/a", "dir/b"}) {
            const bool isProgram = std::string(name) == "program";
            chmod(temp.write("item/" + std::string(name), name).c_str(), isProgram ? 0755 : 0644);
            listing += (isProgram ? "100755 blob " : "100644 blob ") + HUTDigest::ofBlob(HUTDigest::Kind::sha1, name) +
                       '\t' + name + '\0';
        }
        tree = Tree::parse(listing, "c", "", problem);
    }
    std::string item(const std::string& file) const { return temp.path("item/" + file); }

    TempDir temp;
    std::optional<Tree> tree;
};

// Fault: the right to run a file not seen, or that of others taken for it; a link followed, a pipe that hangs.
TEST_F(PosixItemTreeTest, RightsAndLinks) {
    chmod(item("plain").c_str(), 0654);
    EXPECT_TRUE(tree->compare(temp.path("item")).areNone());

    chmod(item("plain").c_str(), 0744);
    chmod(item("program").c_str(), 0655);
    std::filesystem::rename(item("say \"hi\"\\"), temp.path("moved"));
    std::filesystem::create_symlink("../moved", item("say \"hi\"\\"));
    std::filesystem::rename(item("dir"), temp.path("dir"));
    std::filesystem::create_symlink("../dir", item("dir"));
    ASSERT_EQ(mkfifo(item("pipe").c_str(), 0600), 0);
    const Tree::Differences found = tree->compare(temp.path("item"));
    EXPECT_EQ(found.changed, (Names{"plain", "program", "say \"hi\"\\"}));
    EXPECT_EQ(found.missing, (Names{"dir/a", "dir/b"}));
    EXPECT_EQ(found.additional, (Names{"dir", "pipe"}));
    EXPECT_EQ(found.unreadable, Names());
    EXPECT_EQ(tree->findLost(temp.path("item")).changed, Names{"say \"hi\"\\"});
}

// Fault: what cannot be read is told as whole, as missing, or not at all.
TEST_F(PosixItemTreeTest, Unreadable) {
    const auto compareAsUser = [this](const Names& unreadable) {
        if (::fork() == 0) { // to root all is readable
            const bool isUser = geteuid() != 0 || (setgid(65534) == 0 && setuid(65534) == 0);
            const Tree::Differences found = tree->compare(temp.path("item"));
            _exit(isUser && found.unreadable == unreadable && found.changed.empty() && found.missing.empty() &&
                          found.additional.empty()
                      ? 0
                      : 1);
        }
        int status = 1;
        wait(&status);
        return status == 0;
    };
    if (geteuid() == 0) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(temp.path()))
            ASSERT_EQ(chown(entry.path().c_str(), 65534, 65534), 0);
    }
    chmod(temp.path().c_str(), 0755);
    ASSERT_TRUE(compareAsUser({}));

    chmod(item("plain").c_str(), 0200);
    EXPECT_TRUE(compareAsUser({"plain"}));
    chmod(item("dir").c_str(), 0600); // its names can be seen
    EXPECT_TRUE(compareAsUser({"dir/a", "dir/b", "plain"}));
    chmod(item("dir").c_str(), 0300);
    EXPECT_TRUE(compareAsUser({"dir", "dir/a", "dir/b", "plain"}));
    chmod(item("dir").c_str(), 0755);
    chmod(item("").c_str(), 0);
    EXPECT_TRUE(compareAsUser({".", "dir/a", "dir/b", "plain", "program", "say \"hi\"\\"}));
    chmod(item("").c_str(), 0755);
}

} // namespace
