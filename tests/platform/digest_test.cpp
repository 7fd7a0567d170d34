#include "support/GitRepo.h"
#include "support/HUTDigest.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <sstream>

using Kind = HUTDigest::Kind;

// Fault: a digest that is not git's: of an empty file, at the borders of its blocks or of the parts that are read, or
// of bytes that some would take for text.
TEST(DigestTest, IsThatOfGit) {
    const TempDir temp;
    const GitRepo repo(temp.path("repo"));
    std::vector<std::string> contents = {"a\r\nb\n", std::string("\0\x1a\xff", 3)};
    for (const std::size_t size :
         {0u, 1u, 46u, 47u, 48u, 54u, 55u, 56u, 57u, 63u, 64u, 65535u, 65536u, 65537u, 131072u, 5u << 20}) {
        contents.emplace_back(size, 'x');
        for (std::size_t i = 0; i < size; i += 97) contents.back()[i] = static_cast<char>(i);
    }
    Names files;
    for (const std::string& content : contents)
        files.push_back(temp.write("file-" + std::to_string(files.size()), content));

    for (const auto& [kind, format] : {std::pair{Kind::sha1, "sha1"}, {Kind::sha256, "sha256"}}) {
        repo.git({"init", "--object-format=" + std::string(format), format});
        Names command = {"-C", format, "hash-object", "--no-filters"};
        for (std::size_t i = 0; i < files.size(); ++i) command.push_back("../../file-" + std::to_string(i));
        std::istringstream ids(repo.git(command));
        for (std::size_t i = 0; i < files.size(); ++i) {
            SCOPED_TRACE(std::string(format) + ", " + std::to_string(contents[i].size()) + " bytes");
            std::string expected;
            ids >> expected;
            EXPECT_EQ(HUTDigest::ofBlob(kind, contents[i]), expected);
            const HUTDigest::File file = HUTDigest::ofFile(kind, files[i]);
            EXPECT_EQ(file.status, HIOStatus::ok);
            EXPECT_EQ(file.id, expected);
        }
    }
}

// Fault: a digest given for what could not be read.
TEST(DigestTest, OfNoFile) {
    const TempDir temp;
    temp.write("dir/file", "x");
    const std::pair<std::string, HIOStatus> cases[] = {{temp.path("absent"), HIOStatus::missing},
                                                       {temp.path("dir/file/x"), HIOStatus::missing},
                                                       {temp.path("dir/file") + '\0', HIOStatus::missing},
                                                       {"", HIOStatus::missing},
                                                       {temp.path("dir"), HIOStatus::notRegular}};
    for (const auto& [file, status] : cases) {
        const HUTDigest::File read = HUTDigest::ofFile(Kind::sha1, file);
        EXPECT_EQ(read.status, status) << file;
        EXPECT_EQ(read.id, "") << file;
    }
}
