#include "support/HIOStream.h"
#include "support/HUTDigest.h"
#include "support/HUTFile.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <sys/stat.h>

using Status = HIOStream::Status;

// Fault: a name that leads out of the directory, a pipe that hangs the reader, a directory read as a file, one that
// cannot be opened taken for one that is not there.
TEST(StreamTest, RootConfinesReading) {
    TempDir temp;
    temp.write("secret", "secret");
    temp.write("root/dir/file", "inside");
    std::filesystem::create_symlink("loop", temp.path("root/loop"));
    ASSERT_EQ(mkfifo(temp.path("root/pipe").c_str(), 0600), 0);

    const HIOStream::Root root(temp.path("root"));
    const std::pair<Status, std::vector<std::string>> cases[] = {
        {Status::ok, {"dir/file", "dir/../dir/./file"}},
        {Status::outside, {"../secret", "../absent", temp.path("root/dir/file")}},
        {Status::notRegular, {"dir", ".", "pipe"}},
        {Status::missing, {"absent", "dir/file/below", "", std::string("dir/file\0x", 10)}},
        {Status::unreadable, {"loop"}}};
    std::string content;
    for (const auto& [status, names] : cases)
        for (const std::string& name : names) {
            content = "old";
            EXPECT_EQ(root.read(name, content), status) << name;
            EXPECT_EQ(content, status == Status::ok ? "inside" : "") << name;
        }
    EXPECT_EQ(HIOStream::Root(temp.path("absent")).read("file", content), Status::missing);
    EXPECT_EQ(HIOStream::Root(temp.path("root/loop")).read("file", content), Status::unreadable);
}

// Fault: links and names that together lead out of a directory and are not seen to, or stay inside and are refused.
// What the system itself resolves is the judge.
TEST(StreamTest, ConfinesAsTheSystemResolves) {
    TempDir temp;
    const std::string area = temp.path("area");
    temp.write("area/a/b/file", "inside");
    temp.write("area/file", "inside");
    temp.write("out/file", "outside");
    temp.write("out/a/file", "outside");
    const std::pair<const char*, std::string> links[] = {{"in", "a/b"},
                                                         {"in_abs", area + "/a"},
                                                         {"out_rel", "../out"},
                                                         {"out_abs", temp.path("out")},
                                                         {"up", ".."},
                                                         {"loop", "loop"},
                                                         {"dangling", "../absent"},
                                                         {"back", "../out/../area/a"},
                                                         {"a/top", "../.."},
                                                         {"a/b/away", "../../../out/file"}};
    for (const auto& [name, target] : links) std::filesystem::create_symlink(target, area + "/" + name);
    const char* names[] = {"a",    "b",   "file", "in",  "in_abs", "out_rel", "out_abs", "up", "loop", "dangling",
                           "back", "top", "away", "new", "area",   "out",     "..",      "..", ".",    ""};
    const HIOStream::Root root(area);
    std::minstd_rand random(3);
    std::map<bool, int> seen;
    for (int left = 2000; left > 0; --left) {
        std::string relative = names[random() / 7 % std::size(names)];
        for (auto more = random() / 7 % 5; more > 0; --more)
            relative += std::string("/") + names[random() / 7 % std::size(names)];
        const auto realPath = [](const std::string& path) {
            std::array<char, PATH_MAX> resolved{};
            return std::string(realpath(path.c_str(), resolved.data()) ? resolved.data() : "");
        };
        const auto isInside = [&](const std::string& real) { return (real + "/").rfind(area + "/", 0) == 0; };
        const std::string path = area + "/" + relative, real = realPath(path);
        std::string existing = path;
        while (realPath(existing).empty()) existing.resize(existing.rfind('/'));
        const bool isBeneath = HUTFile::isBeneath(area, path);
        EXPECT_TRUE((!isBeneath && real.empty()) || isBeneath == isInside(realPath(existing))) << relative;
        ++seen[isBeneath];
        if (relative.empty() || relative.front() == '/') continue;
        std::string content;
        const bool isFile = isInside(real) && std::filesystem::is_regular_file(real);
        EXPECT_EQ(root.read(relative, content) == Status::ok, isFile) << relative;
        EXPECT_EQ(content, isFile ? "inside" : "") << relative;
    }
    EXPECT_GT(std::min(seen[true], seen[false]), 400);
}

// Fault: a buffer's old content showing through, files without a size read as empty, a giant that takes all memory.
TEST(StreamTest, ReadsWholeFiles) {
    TempDir temp;
    std::string content(100, 'x');
    for (const std::size_t size : {0u, 4096u, 4097u}) {
        EXPECT_EQ(HIOStream::read(temp.write("file", std::string(size, 'a')), content), Status::ok) << size;
        EXPECT_EQ(content, std::string(size, 'a')) << size;
    }
    EXPECT_EQ(HIOStream::read("/proc/self/status", content), Status::ok);
    EXPECT_EQ(content.rfind("Name:", 0), 0u);
    EXPECT_EQ(HIOStream::read("/dev/null", content), Status::notRegular);
    std::filesystem::resize_file(temp.path("file"), std::uintmax_t{1} << 40); // no bytes on disk
    EXPECT_EQ(HIOStream::read(temp.path("file"), content), Status::tooLarge);
}

// Fault: a digest of the part that came before reading failed, or before a file became longer.
TEST(DigestTest, OfFileThatDoesNotHold) {
    for (const char* file : {"/proc/self/mem", "/proc/self/status"}) { // gives no bytes; tells a size of 0
        const HUTDigest::File read = HUTDigest::ofFile(HUTDigest::Kind::sha1, file);
        EXPECT_EQ(read.status, HIOStatus::unreadable) << file;
        EXPECT_EQ(read.id, "") << file;
    }
}
