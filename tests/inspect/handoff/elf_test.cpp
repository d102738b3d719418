#include "inspect/handoff/elf.h"

#include "inspect/bundle/bytes.h"
#include "inspect/quiet_read.h"
#include "tests/support/sandbox.h"
#include "tests/unit/fixture.h"
#include "tests/unit/paths.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/utsname.h>

namespace rcp::inspect {
namespace {

using ::testing::Contains;
using ::testing::Not;

std::string library() {
    return readQuietly(rcp::test::seen(STANDIN_LIBRARY));
}

TEST(Elf, OfALibraryTellsMachineNeedsAndSymbols) {
    const std::string file = library();
    const auto image = readElf(file);
    ASSERT_TRUE(image && image->symbols);
    utsname system{};
    ASSERT_EQ(uname(&system), 0);
    EXPECT_EQ(image->machine, system.machine);
    EXPECT_TRUE(image->isShared);
    EXPECT_THAT(image->libraries, Contains("libc.so.6"));
    EXPECT_THAT(*image->symbols, Contains("setInitialArgs"));
    EXPECT_THAT(*image->symbols, Contains("run"));
    EXPECT_THAT(*image->symbols, Not(Contains("execve"))) << "it is needed, not defined";
}

TEST(Elf, OfAProgramTellsTheInterpreter) {
    const auto image = readElf(readQuietly("/proc/self/exe"));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->interpreter.front(), '/');
    EXPECT_THAT(image->libraries, Contains("libc.so.6"));
}

TEST(Elf, OfAnotherMachineOnlyTheMachineIsTold) {
    std::string file = library();
    file[4] = 1;  // 32 bits
    file[18] = 40;
    file[19] = 0;
    const auto image = readElf(file);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->machine, "arm");
    EXPECT_FALSE(image->symbols);
}

// The loader never looks at the table of sections.
TEST(Elf, WithoutSectionsTellsNoSymbols) {
    constexpr std::size_t kPlaceOfTable = 40;
    for (const char byte : {'\0', '\x7f'}) {  // none, and one far beyond the end
        std::string file = library();
        file.replace(kPlaceOfTable, 8, 8, byte);
        const auto image = readElf(file);
        ASSERT_TRUE(image);
        EXPECT_FALSE(image->symbols);
        EXPECT_THAT(image->libraries, Contains("libc.so.6"));
    }
}

// A table whose rows are of no length would be read as often as its count says.
TEST(Elf, WhoseSegmentsAreOfAnotherLengthIsLoadedByNobody) {
    constexpr std::size_t kLengthOfSegment = 54;
    std::string file = library();
    ASSERT_EQ(file[kLengthOfSegment], 56);
    file[kLengthOfSegment] = 0;
    EXPECT_FALSE(readElf(file));
    const rcp::test::TestFolder folder;
    folder.write("library.so", file);
    EXPECT_EQ(dlopen(folder.narrow("library.so").c_str(), RTLD_NOW), nullptr);
}

TEST(Elf, TellsNoNameThatIsLongerThanAPath) {
    const std::string file = library() + std::string(100000, 'a');
    const std::string_view texts = file;
    const std::size_t begin = file.size() - 100000;
    EXPECT_EQ(Bytes(texts, ByteOrder::kLittle).text(begin).size(), 4096U);
}

TEST(Elf, ThatWasCutIsNone) {
    const std::string file = library();
    for (std::size_t size = 0; size < file.size() / 4 * 3; size += 97) {
        EXPECT_FALSE(readElf(std::string_view(file).substr(0, size))) << size;
    }
}

TEST(Elf, WithAnyByteChangedIsReadToAnEnd) {
    std::string file = library();
    for (std::size_t at = 0; at < 1024; ++at) {
        const char former = file[at];
        for (const char other : {'\0', '\x7f', '\xff'}) {
            file[at] = other;
            (void)readElf(file);
        }
        file[at] = former;
    }
}

TEST(Elf, IsNotAnyText) {
    EXPECT_FALSE(readElf(""));
    EXPECT_FALSE(readElf(std::string(64, 'x')));
}

}  // namespace
}  // namespace rcp::inspect
