#include "support/HUTFile.h"
#include "support/HUTFileLock.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

// Fault: an old directory lost before the new one stands, or remains of either left beside it.
TEST(DiskTest, ReplaceDirectory) {
    TempDir temp;
    for (int i = 0; i < 2; ++i) { // dest is absent the first time
        temp.write("fresh/new", "x");
        EXPECT_TRUE(HUTFile::replaceDirectory(temp.path("fresh"), temp.path("deep/er/dest/")));
        EXPECT_EQ(HUTFile::createFileIter(temp.path("deep/er/dest")), Names{"new"});
        temp.write("deep/er/dest/" + std::string(i == 0 ? "old" : "kept"), "x");
    }
    EXPECT_FALSE(HUTFile::replaceDirectory(temp.path("fresh"), temp.path("deep/er/dest"))) << "nothing to put there";
    // A directory cannot move below itself: the old one, moved aside already, has to come back.
    EXPECT_FALSE(HUTFile::replaceDirectory(temp.path("deep"), temp.path("deep/er/dest")));
    EXPECT_EQ(HUTFile::createFileIter(temp.path("deep/er/dest")), (Names{"kept", "new"}));
    EXPECT_EQ(HUTFile::createFileIter(temp.path("deep/er")), Names{"dest"});
    EXPECT_EQ(HUTFile::createFileIter(temp.path()), Names{"deep"});
}

// A lock that two have, and a waiter that is told of another process than the one that holds it.
TEST(DiskTest, LockTellsWhoHoldsIt) {
    const TempDir temp;
    HUTFileLock first(temp.path("lock")), second(temp.path("lock"));
    ASSERT_EQ(first.tryLock(), HUTFileLock::Result::held);
    EXPECT_EQ(second.tryLock(), HUTFileLock::Result::busy);
    EXPECT_GT(second.getHolder(), 0);
    EXPECT_EQ(std::to_string(second.getHolder()) + "\n", readFile(temp.path("lock")));
}
