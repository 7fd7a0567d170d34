#include "support/HIOStream.h"
#include "support/HUTFile.h"
#include "support/HUTFileLock.h"
#include "support/HUTFork.h"
#include "support/HUTSysCall.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

mode_t modeOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(lstat(path.c_str(), &info), 0) << path;
    return info.st_mode & 07777;
}

// Fault: names made absolute or shortened in the wrong place, or links followed in them.
TEST(DiskTest, CanonicalNames) {
    TempDir temp;
    ASSERT_TRUE(HUTSysCall::changeDir(temp.path()));
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},           {".", temp.path()}, {"a/./b/../c/", temp.path("a/c")}, {"/a/..", "/"}, {"/../a", "/a"},
        {"//a//b", "/a/b"}, {"//", "/"},        {"..a", temp.path("..a")}};
    for (const auto& [name, canonical] : cases) EXPECT_EQ(HUTFile::getCanonicalName(name), canonical) << name;
    std::filesystem::create_directory_symlink("/usr", temp.path("link"));
    EXPECT_EQ(HUTFile::getCanonicalName("link/../x"), temp.path("x"));
    EXPECT_TRUE(HUTFile::isAKA("link", "/usr/."));
    EXPECT_FALSE(HUTSysCall::changeDir(temp.path("absent")));
    EXPECT_EQ(HUTSysCall::getCurrDir(), temp.path());
    HUTSysCall::changeDir("/");
}

// Fault: a log, lock or temporary file is written, or read, through a link that somebody else has laid.
TEST(DiskTest, LinksAreNotWrittenThrough) {
    const TempDir temp;
    for (const std::string& target : {temp.write("mine", "x"), temp.path("absent")}) {
        const std::string link = target + ".link";
        std::filesystem::create_symlink(target, link);
        EXPECT_FALSE(HIOStream::openForWriting(link, std::ios::trunc).is_open());
        HUTFork echo;
        echo.setProg("echo", true);
        echo.setLogFile(link);
        EXPECT_EQ(echo.launch(true, true, true, true), 0);
        EXPECT_EQ(HUTFileLock(link).tryLock(), HUTFileLock::Result::link);
        EXPECT_FALSE(HUTFile::makeNew(link) || HUTFile::makeNewDir(link));
        std::string content;
        EXPECT_EQ(HIOStream::readItself(link, content), HIOStream::Status::unreadable);
    }
    EXPECT_EQ(readFile(temp.path("mine")), "x");
    EXPECT_FALSE(HUTFile::exists(temp.path("absent")));
    HIOStream::openForWriting(temp.path("mine"), std::ios::app) << "y";
    EXPECT_EQ(readFile(temp.path("mine")), "xy");
    EXPECT_TRUE(HUTFile::makeNew(temp.path("new")) && !HUTFile::makeNew(temp.path("new")));
}

// Fault: what others have made, or may write to, taken for one's own.
TEST(DiskTest, WhoseAFileIs) {
    if (geteuid() != 0) GTEST_SKIP() << "one user cannot make another's files";
    const TempDir temp;
    constexpr uid_t user = 12345, other = 12346;
    const std::tuple<const char*, uid_t, mode_t, bool> cases[] = {
        {"user's", user, 0700, true}, {"open", user, 0777, true},      {"root's", 0, 0755, true},
        {"group's", 0, 0775, false},  {"everybody's", 0, 0757, false}, {"another's", other, 0755, false}};
    chmod(temp.path().c_str(), 0777); // so that what stands beside tells nothing else
    for (const auto& [name, owner, mode, isOwn] : cases) {
        const std::string dir = temp.makeDir(name);
        ASSERT_TRUE(chown(dir.c_str(), owner, 0) == 0 && chmod(dir.c_str(), mode) == 0);
        ASSERT_EQ(seteuid(user), 0);
        EXPECT_EQ(HUTFile::isOwn(dir), isOwn) << name;
        EXPECT_EQ(HUTFile::isOpenToOthers(dir), owner == user && mode == 0777) << name;
        ASSERT_EQ(seteuid(0), 0);
        EXPECT_EQ(modeOf(dir), mode);
    }
    EXPECT_EQ(HUTFile::createFileIter(temp.path()).size(), std::size(cases));
    std::filesystem::create_directory_symlink(temp.path("root's"), temp.path("link"));
    EXPECT_FALSE(HUTFile::isOwn(temp.path("link")));
}

// Fault: a path that only looks as if it stayed inside.
TEST(DiskTest, Containment) {
    TempDir temp;
    for (const char* dir : {"root", "rooted"}) temp.makeDir(dir);
    EXPECT_FALSE(HUTFile::isBeneath(temp.path("root"), temp.path("rooted")));
    EXPECT_FALSE(HUTFile::isBeneath(temp.path("root"), temp.path(std::string("root/a\0", 7))));
    EXPECT_FALSE(HUTFile::isBeneath("", temp.path("root")) || HUTFile::isBeneath(temp.path("root"), ""));
    EXPECT_TRUE(HUTFile::isBeneath(temp.path("later"), temp.path("later/x"))) << "neither exists yet";
    EXPECT_TRUE(HUTFile::isBeneath("/", temp.path("root")));
}

// Fault: an old file spoilt by a write that fails, a temporary file left behind, rights widened or lost.
TEST(DiskTest, WriteAtomically) {
    TempDir temp;
    const std::string file = temp.path("dir/file");
    EXPECT_FALSE(HUTFile::writeAtomically(file, "x")) << "the directory is missing";
    temp.makeDir("dir");
    const mode_t mask = umask(022);
    EXPECT_TRUE(HUTFile::writeAtomically(file, "old"));
    EXPECT_EQ(modeOf(file), 0644u);
    chmod(file.c_str(), 0640);
    EXPECT_TRUE(HUTFile::writeAtomically(file, std::string(1000, 'x')));
    EXPECT_EQ(modeOf(file), 0640u);
    EXPECT_TRUE(HUTFile::writeAtomically(file, "secret", true));
    EXPECT_EQ(modeOf(file), 0600u);
    umask(mask);

    // A disk that is full.
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{1000, limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_FALSE(HUTFile::writeAtomically(file, std::string(5000, 'y')));
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(readFile(file), "secret");
    EXPECT_FALSE(HUTFile::writeAtomically(temp.path("dir"), "x")) << "over a directory";
    EXPECT_EQ(HUTFile::createFileIter(temp.path("dir")), Names{"file"});
    EXPECT_EQ(HUTFile::createFileIter(temp.path()), Names{"dir"});
}

// Fault: removal that follows a link, stops at read-only directories or takes the kept entry along.
TEST(DiskTest, Removal) {
    TempDir temp;
    temp.write("outside/file", "x");
    const auto makeTree = [&temp] {
        chmod(temp.write("tree/dir/deep/file", "x").c_str(), 0444);
        std::filesystem::create_directory_symlink("../outside", temp.path("tree/link"));
        chmod(temp.path("tree/dir/deep").c_str(), 0);
        chmod(temp.path("tree/dir").c_str(), 0555);
    };
    makeTree();
    if (geteuid() == 0) { // to root nothing is read-only
        for (const char* entry : {"", "/tree", "/tree/dir", "/tree/dir/deep", "/tree/dir/deep/file"})
            ASSERT_EQ(chown((temp.path() + entry).c_str(), 65534, 65534), 0);
        chmod(temp.path().c_str(), 0700);
    }
    if (::fork() == 0) {
        const bool isUser = geteuid() != 0 || (setgid(65534) == 0 && setuid(65534) == 0);
        _exit(isUser && HUTFile::rmRecursive(temp.path("tree")) ? 0 : 1);
    }
    int status = 1;
    wait(&status);
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(HUTFile::exists(temp.path("tree")));
    EXPECT_TRUE(HUTFile::rmRecursive(temp.path("tree"))) << "gone already";
    EXPECT_EQ(readFile(temp.path("outside/file")), "x");

    makeTree();
    EXPECT_TRUE(HUTFile::rmEntriesExcept(temp.path("tree"), "link"));
    EXPECT_EQ(HUTFile::createFileIter(temp.path("tree")), Names{"link"});
    EXPECT_TRUE(HUTFile::rmRecursive(temp.path("tree/link")));
    EXPECT_EQ(readFile(temp.path("outside/file")), "x");
}

// Fault: a copy that writes through a link or into a second name of the old file, loses permissions or never ends.
TEST(DiskTest, Copy) {
    TempDir temp;
    temp.write("outside/file", "safe");
    temp.write("source/dir/file", "new");
    chmod(temp.write("source/run", "#!").c_str(), 0755);
    chmod(temp.path("source/dir").c_str(), 0555);
    std::filesystem::create_symlink("dir/file", temp.path("source/link"));
    ASSERT_EQ(mkfifo(temp.path("source/pipe").c_str(), 0600), 0);
    temp.makeDir("dest");
    std::filesystem::create_directory_symlink("../outside", temp.path("dest/dir"));
    std::filesystem::create_symlink("../outside/file", temp.path("dest/run"));
    temp.write("dest/link", "was a file");
    temp.write("dest/stays", "x");

    ASSERT_TRUE(HUTFile::copyToRecursive(temp.path("source"), temp.path("dest"), HUTFile::copyOver));
    EXPECT_EQ(HUTFile::createFileIter(temp.path("dest")), (Names{"dir", "link", "run", "stays"}));
    EXPECT_EQ(readFile(temp.path("outside/file")), "safe");
    EXPECT_EQ(std::filesystem::read_symlink(temp.path("dest/link")), "dir/file");
    EXPECT_EQ(modeOf(temp.path("dest/run")), 0755u);
    EXPECT_EQ(modeOf(temp.path("dest/dir")), 0755u) << "the owner can write to what was copied";

    EXPECT_FALSE(HUTFile::copyToRecursive(temp.path("source"), temp.path("source/dir/x"), HUTFile::copyOver));
    EXPECT_FALSE(HUTFile::copyTo(temp.path("source/run"), temp.path("dest/dir"), HUTFile::copyOver));
    EXPECT_FALSE(HUTFile::copyTo(temp.path("source/run"), temp.path("dest/stays"), 0));
    EXPECT_TRUE(HUTFile::copyTo(temp.path("source/run"), temp.path("dest/stays"), HUTFile::copyOver));
    EXPECT_EQ(readFile(temp.path("dest/stays")), "#!");
    // /proc cannot be linked to from elsewhere: what cannot share is copied.
    EXPECT_TRUE(HUTFile::cloneTree("/proc/sys/kernel/random", temp.path("far"), [](const auto&) { return true; }));
    EXPECT_TRUE(HUTFile::isRegularFile(temp.path("far/poolsize")));
}

} // namespace
