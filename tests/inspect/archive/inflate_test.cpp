#include "inspect/archive/inflate.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

constexpr std::size_t kMuch = 100000;

// The bytes that pairs of hexadecimal digits stand for.
std::string bytesOf(std::string_view digits) {
    std::string bytes;
    for (std::size_t at = 0; at < digits.size(); at += 2) {
        bytes += static_cast<char>(std::stoi(std::string(digits.substr(at, 2)), nullptr, 16));
    }
    return bytes;
}

// Three blocks of zlib's: one that is stored, one of the fixed codes, one with codes of its own.
const std::string kStoredBlock = bytesOf("010c00f3ff6173206974207374616e6473");
const std::string kFixedBlock = bytesOf("f34dccccd375ce492c2eb65248d4f305f278b97c47c5064c0c00");
const std::string kOwnBlock = bytesOf(
    "1d8fc90104410802536a4410f34f6c9dfd73543d145b9e2c1e8002d1108c41b0f50a55c5ea52b9a652cb47b048"
    "364573186ebf4657b3bbd5eee9f4ea092a512dc91a45eb67b84cb7657b1cefbcc1d4707a349e99cce605a9301d"
    "c59924bb6f0f68ef6c6f682fb4c7fc3eeca33ca863b8cb7bb8c1eb5ffcaff4499dd5699dd7899dd9a9617f");

std::string numbers() {
    std::string text;
    for (int i = 0; i < 120; ++i) {
        text += std::to_string(i);
    }
    return text;
}

TEST(Inflated, IsABlockThatIsStored) {
    EXPECT_EQ(inflated(kStoredBlock, kMuch), "as it stands");
}

TEST(Inflated, IsABlockOfTheFixedCodesWithWhatItRepeats) {
    std::string text;
    for (int i = 0; i < 20; ++i) {
        text += "Main-Class: a.Main\r\n";
    }
    EXPECT_EQ(inflated(kFixedBlock, kMuch), text);
}

TEST(Inflated, IsABlockWithCodesOfItsOwn) {
    EXPECT_EQ(inflated(kOwnBlock, kMuch), numbers());
}

TEST(Inflated, AreSeveralBlocks) {
    std::string first = kStoredBlock;
    first[0] = 0;  // not the last
    EXPECT_EQ(inflated(first + kOwnBlock, kMuch), "as it stands" + numbers());
}

TEST(Inflated, IsNothingLongerThanWanted) {
    EXPECT_TRUE(inflated(kOwnBlock, numbers().size()));
    EXPECT_FALSE(inflated(kOwnBlock, numbers().size() - 1));
}

TEST(Inflated, IsNothingThatWasCut) {
    // The size of the longest stored block looks like what is read behind the end.
    const std::string longest = bytesOf("01ffff0000");
    for (const std::string& block : {kStoredBlock, kFixedBlock, kOwnBlock, longest}) {
        for (std::size_t size = 0; size < block.size(); ++size) {
            EXPECT_FALSE(inflated(block.substr(0, size), kMuch)) << size;
        }
    }
}

TEST(Inflated, WithAnyByteChangedComesToAnEnd) {
    for (std::string block : {kStoredBlock, kFixedBlock, kOwnBlock}) {
        for (char& byte : block) {
            const char former = byte;
            for (int other = 0; other < 256; ++other) {
                byte = static_cast<char>(other);
                const auto text = inflated(block, kMuch);
                EXPECT_LE(text.value_or("").size(), kMuch);
            }
            byte = former;
        }
    }
}

}  // namespace
}  // namespace rcp::inspect
