#include "support/HIOStream.h"
#include "support/HUTFile.h"
#include "support/HUTSysCall.h"
#include "support/System.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <functional>
#include <thread>

namespace {

using Status = HIOStream::Status;

HANDLE openForReading(const std::string& file, DWORD share) {
    return CreateFileA(file.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

// Fault: drives, shares or backslashes taken for parts of a name; names that are not recorded in generic form.
TEST(DiskTest, CanonicalNames) {
    TempDir temp;
    ASSERT_TRUE(HUTSysCall::changeDir(temp.path()));
    const std::string drive = temp.path().substr(0, 2);
    const std::pair<std::string, std::string> cases[] = {{"", ""},
                                                         {"a\\.\\b\\..\\c", temp.path("a/c")},
                                                         {"C:\\x\\..\\y/z", "C:/y/z"},
                                                         {"C:/../a", "C:/a"},
                                                         {"C:x", "C:/x"},
                                                         {"/a/b", drive + "/a/b"},
                                                         {"C:/\xFF", "C:/\xEF\xBF\xBD"}, // no text
                                                         {"//server/share/x/../y", "//server/share/y"}};
    for (const auto& [name, canonical] : cases) EXPECT_EQ(HUTFile::getCanonicalName(name), canonical) << name;
    EXPECT_EQ(HUTSysCall::getCurrDir(), temp.path());
    HUTSysCall::changeDir(drive + "/");
}

// Fault: a name that only looks as if it stayed inside, or one that does and is written otherwise.
TEST(DiskTest, Containment) {
    TempDir temp;
    temp.makeDir("Root/dir");
    for (const char* inside : {"Root", "root\\DIR\\new", "Root/dir/../x", "ROOT/new/file"})
        EXPECT_TRUE(HUTFile::isBeneath(temp.path("root"), temp.path(inside))) << inside;
    for (const char* outside : {"rooted", "Root/../x", "Root\\..\\x"})
        EXPECT_FALSE(HUTFile::isBeneath(temp.path("root"), temp.path(outside))) << outside;

    temp.write("Root/dir/file", "inside");
    temp.write("secret", "secret");
    const HIOStream::Root root(temp.path("Root"));
    std::string content;
    for (const char* name : {"dir/file", "dir/../dir/./FILE"}) EXPECT_EQ(root.read(name, content), Status::ok) << name;
    for (const std::string& name : {std::string("../secret"), std::string("dir/../../secret"), temp.path("secret"),
                                    std::string("/x"), std::string("..\\secret"), std::string("dir/file:stream")})
        EXPECT_EQ(root.read(name, content), Status::outside) << name;
    EXPECT_EQ(root.read("dir", content), Status::notRegular);
    for (const char* name : {"absent", "absent/file", ""}) EXPECT_EQ(root.read(name, content), Status::missing) << name;
}

// Fault: names beyond 260 characters, or beyond the system's own code page, that some operation does not know.
TEST(DiskTest, LongAndForeignNames) {
    TempDir temp;
    std::string deep = temp.path("t");
    for (int i = 0; i < 4; ++i) deep += "/" + std::string(100, 'x');
    for (const std::string& dir : {deep, temp.path("\xC3\xBC \xE8\xA8\x88 \xF0\x9F\x98\x80")}) {
        SCOPED_TRACE(dir);
        const std::string file = dir + "/f \xC3\xA4";
        ASSERT_TRUE(HUTFile::mkDirRecursive(dir) && HUTFile::writeAtomically(file, "old"));
        HIOStream::openForWriting(file, std::ios::app) << "\nnew";
        std::string content;
        EXPECT_EQ(HIOStream::read(file, content), Status::ok);
        EXPECT_EQ(content, "old\nnew");
        EXPECT_NE(HUTFile::getStamp(file), "");
        EXPECT_NE(HUTFile::getLastMod(file), 0);
        EXPECT_TRUE(HUTFile::isWriteable(dir) && HUTFile::isWriteable(file));
        EXPECT_TRUE(HUTFile::copyToRecursive(dir, dir + "2", HUTFile::copyOver));
        EXPECT_TRUE(HUTFile::rename(dir + "2", dir + "3"));
        EXPECT_TRUE(HUTFile::replaceDirectory(dir + "3", dir));
        EXPECT_EQ(HUTFile::listTree(dir), Names{"f \xC3\xA4"});
        EXPECT_TRUE(HUTFile::rmRecursive(dir) && !HUTFile::exists(dir));
    }
}

// Fault: read-only files, as those of git, that stay, or stand in the way of a new one.
TEST(DiskTest, ReadOnlyFilesAreNoObstacle) {
    TempDir temp;
    const auto makeReadOnly = [](const std::string& file) {
        ASSERT_TRUE(SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_READONLY));
    };
    makeReadOnly(temp.write("tree/objects/ab/cd", "x"));
    EXPECT_TRUE(HUTFile::rmRecursive(temp.path("tree")) && !HUTFile::exists(temp.path("tree")));
    makeReadOnly(temp.write("file", "old"));
    EXPECT_TRUE(HUTFile::writeAtomically(temp.path("file"), "new"));
    EXPECT_EQ(readFile(temp.path("file")), "new");
    EXPECT_TRUE(HUTFile::writeAtomically(temp.path("secret"), "s", true));
    EXPECT_FALSE(test_system::isReadableByOthers(temp.path("secret")));
    EXPECT_TRUE(test_system::isReadableByOthers(temp.path("file"))) << "the test cannot tell";
}

// Fault: what somebody reads for a moment is not replaced, flushed or removed; what stays open is lost, loses its
// attributes, or leaves rubbish.
TEST(DiskTest, WhatIsOpenIsTriedAgain) {
    TempDir temp;
    const std::string file = temp.write("dir/file", "old");
    const auto whileHeld = [](HANDLE held, const std::function<bool()>& act) {
        EXPECT_NE(held, INVALID_HANDLE_VALUE);
        std::thread reader([held] {
            Sleep(200);
            CloseHandle(held);
        });
        const bool isDone = act();
        reader.join();
        return isDone;
    };
    SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_READONLY);
    HANDLE held = openForReading(file, FILE_SHARE_READ);
    EXPECT_FALSE(HUTFile::writeAtomically(file, "new"));
    EXPECT_EQ(readFile(file), "old");
    EXPECT_EQ(GetFileAttributesA(file.c_str()) & FILE_ATTRIBUTE_READONLY, DWORD{FILE_ATTRIBUTE_READONLY});
    EXPECT_EQ(HUTFile::createFileIter(temp.path("dir")), Names{"file"});
    EXPECT_TRUE(whileHeld(held, [&] { return HUTFile::writeAtomically(file, "new"); }));
    EXPECT_EQ(readFile(file), "new");

    held = openForReading(file, FILE_SHARE_READ);
    EXPECT_TRUE(HUTFile::isWriteable(file)) << "the right to write is there";
    EXPECT_TRUE(whileHeld(held, [&] { return HUTFile::flush(temp.path("dir")); }));
    held = openForReading(file, FILE_SHARE_READ | FILE_SHARE_DELETE);
    EXPECT_TRUE(whileHeld(held, [&] { return HUTFile::rmRecursive(file) && !HUTFile::exists(file); }));
    held = openForReading(temp.path("dir"), FILE_SHARE_READ);
    EXPECT_TRUE(whileHeld(held, [&] { return HUTFile::rmRecursive(temp.path("dir")); }));
    EXPECT_FALSE(HUTFile::rmRecursive("//server.invalid/share/file")) << "what cannot be reached is not gone";
}

} // namespace
