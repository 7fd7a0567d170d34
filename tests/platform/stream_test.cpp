#include "support/HIOStream.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cstdint>

using Status = HIOStream::Status;

// Fault: a protected file that does not come back as it was, or a damaged one that is read as if it were whole.
TEST(StreamTest, Container) {
    TempDir temp;
    const std::string file = temp.path("file");
    std::string content;
    for (const std::string& plain : {std::string(), std::string("{\"plaz\": {}}"), std::string(70000, '\0')}) {
        SCOPED_TRACE(plain.size());
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
        SCOPED_TRACE(damaged);
        EXPECT_EQ(HIOStream::read(temp.write("file", damaged), content), Status::unreadable);
        EXPECT_EQ(content, "");
    };
    for (const std::string& damaged : {good.substr(0, 20), good.substr(0, good.size() - 1), good + "x"}) check(damaged);
    for (const std::size_t at : {8u, 9u, 12u, 16u, 24u, 32u})
        check(good.substr(0, at) + static_cast<char>(good[at] ^ 4) + good.substr(at + 1));
    EXPECT_FALSE(HIOStream::isContainer(temp.write("file", good.substr(0, 7))));
}
