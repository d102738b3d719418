#include "inspect/redaction/salted_digest.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

// The key 00 01 ... 0f of the function's own test values.
constexpr Salt kTestKey{0x0706050403020100U, 0x0f0e0d0c0b0a0908U};

TEST(SaltedDigest, IsSipHash) {
    EXPECT_EQ(sipHash(kTestKey, ""), 0x726fdb47dd0e0e31U);
    EXPECT_EQ(sipHash(kTestKey, std::string("\x00", 1)), 0x74f839c593dc67fdU);
    std::string bytes;
    for (char byte = 0; byte < 15; ++byte) {
        bytes += byte;
    }
    EXPECT_EQ(sipHash(kTestKey, bytes), 0xa129ca6149be45e5U);
}

TEST(SaltedDigest, IsTheSameForTheSameValueInOneReportOnly) {
    EXPECT_EQ(saltedDigest(kTestKey, "hunter2"), saltedDigest(kTestKey, "hunter2"));
    EXPECT_NE(saltedDigest(kTestKey, "hunter2"), saltedDigest(kTestKey, "hunter3"));
    EXPECT_NE(saltedDigest(kTestKey, "hunter2"), saltedDigest({1, 2}, "hunter2"));
    EXPECT_EQ(saltedDigest(kTestKey, "hunter2").size(), 6U);
    EXPECT_NE(freshSalt(), freshSalt());
}

}  // namespace
}  // namespace rcp::inspect
