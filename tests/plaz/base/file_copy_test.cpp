#include "plaz/base/HSCPlazFileCopy.h"

#include "support/HUTFile.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

// A copy that takes the repository along, or empties what it copies onto itself.
TEST(FileCopyTest, LeavesOutGitAndMarkerAndNeverCopiesOntoItself) {
    const TempDir temp;
    for (const char* file : {"src/.git/config", "src/.done", "src/sub/file"}) temp.write(file, "text");
    EXPECT_TRUE(copyWithoutRepository(temp.path("src"), temp.path("dest/deep")));
    EXPECT_EQ(HUTFile::createFileIter(temp.path("dest/deep")), std::vector<std::string>{"sub"});
    EXPECT_EQ(readFile(temp.path("dest/deep/sub/file")), "text");
    EXPECT_TRUE(copyWithoutRepository(temp.path("src"), temp.path("src/.")));
    EXPECT_FALSE(copyWithoutRepository(temp.path("src"), temp.path("src/sub/file/below")));
    EXPECT_EQ(readFile(temp.path("src/sub/file")), "text");
}
