#include "support/HUTDigest.h"

#include <gtest/gtest.h>

namespace {

// Fault: a digest of the part that came before reading failed, or before a file became longer.
TEST(DigestTest, OfFileThatDoesNotHold) {
    for (const char* file : {"/proc/self/mem", "/proc/self/status"}) { // gives no bytes; tells a size of 0
        const HUTDigest::File read = HUTDigest::ofFile(HUTDigest::Kind::sha1, file);
        EXPECT_EQ(read.status, HIOStatus::unreadable) << file;
        EXPECT_EQ(read.id, "") << file;
    }
}

} // namespace
