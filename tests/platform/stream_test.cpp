#include "support/HIOStream.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace {

using Status = HIOStream::Status;

// Fault: a name that leads out of the directory, a pipe that hangs the reader, a directory read as a file.
TEST(StreamTest, RootConfinesReading) {
    TempDir temp;
    temp.write("secret", "secret");
    temp.write("root/dir/file", "inside");
    for (const auto& [name, target] : {std::pair<std::string, std::string>{"link", "dir/file"},
                                       {"absolute_link", temp.path("root/dir/file")},
                                       {"link_out", "../secret"},
                                       {"absolute_link_out", temp.path("secret")},
                                       {"dir_out", ".."},
                                       {"loop", "loop"}})
        std::filesystem::create_symlink(target, temp.path("root/" + name));
    ASSERT_EQ(mkfifo(temp.path("root/pipe").c_str(), 0600), 0);

    const HIOStream::Root root(temp.path("root"));
    const std::pair<Status, std::vector<std::string>> cases[] = {
        {Status::ok, {"dir/file", "dir/../dir/./file", "link", "absolute_link", "dir/../../root/dir/file"}},
        {Status::outside,
         {"link_out", "absolute_link_out", "dir_out/secret", "../secret", "../absent", temp.path("root/dir/file")}},
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
}

// Fault: a buffer's old content showing through, files without a size read as empty, a giant that takes all memory.
TEST(StreamTest, ReadsWholeFiles) {
    TempDir temp;
    std::string content(100, 'x');
    for (const std::size_t size : {0u, 4096u, 4097u}) {
        EXPECT_EQ(HIOStream::read(temp.write("file", std::string(size, 'a')), content), Status::ok);
        EXPECT_EQ(content, std::string(size, 'a'));
    }
    EXPECT_EQ(HIOStream::read("/proc/self/status", content), Status::ok);
    EXPECT_EQ(content.rfind("Name:", 0), 0u);
    EXPECT_EQ(HIOStream::read("/dev/null", content), Status::notRegular);
    std::filesystem::resize_file(temp.path("file"), std::uintmax_t{1} << 40); // no bytes on disk
    EXPECT_EQ(HIOStream::read(temp.path("file"), content), Status::unreadable);
}

// Fault: a protected file that does not come back as it was, or a damaged one that is read as if it were whole.
TEST(StreamTest, Container) {
    TempDir temp;
    const std::string file = temp.path("file");
    std::string content;
    for (const std::string& plain : {std::string(), std::string("{\"plaz\": {}}"), std::string(70000, '\0')}) {
        ASSERT_TRUE(HIOStream::writeContainer(file, plain) && HIOStream::isContainer(file));
        EXPECT_EQ(HIOStream::read(file, content), Status::ok);
        EXPECT_EQ(content, plain);
    }
    EXPECT_EQ(HIOStream::Root(temp.path()).read("file", content), Status::ok);

    // The layout, byte by byte: CRC-32 of "123456789" is cbf43926, and the first key byte follows from it.
    ASSERT_TRUE(HIOStream::writeContainer(file, "123456789"));
    const std::string good = readFile(file);
    EXPECT_EQ(good.substr(0, 24), std::string("\x89HPF\r\n\x1A\n\1\0\0\0\x26\x39\xF4\xCB\x09\0\0\0\0\0\0\0", 24));
    const std::uint32_t key = 0xcbf43926u * 1664525u + 1013904223u;
    EXPECT_EQ(static_cast<unsigned char>(good[24]), '1' ^ key >> 24);

    const auto check = [&](const std::string& damaged) {
        EXPECT_EQ(HIOStream::read(temp.write("file", damaged), content), Status::unreadable) << damaged.size();
        EXPECT_EQ(content, "");
    };
    for (const std::string& damaged : {good.substr(0, 20), good.substr(0, good.size() - 1), good + "x"}) check(damaged);
    for (const std::size_t at : {8u, 9u, 12u, 16u, 24u, 32u})
        check(good.substr(0, at) + static_cast<char>(good[at] ^ 4) + good.substr(at + 1));
    EXPECT_FALSE(HIOStream::isContainer(temp.write("file", good.substr(0, 7))));
}

} // namespace
