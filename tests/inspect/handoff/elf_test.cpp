#include "inspect/handoff/elf.h"

#include "inspect/quiet_read.h"
#include "tests/support/sandbox.h"
#include "tests/unit/paths.h"

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
    const auto image = readElf(library());
    ASSERT_TRUE(image);
    utsname system{};
    ASSERT_EQ(uname(&system), 0);
    EXPECT_EQ(image->machine, system.machine);
    EXPECT_TRUE(image->isShared);
    EXPECT_THAT(image->libraries, Contains("libc.so.6"));
    EXPECT_THAT(image->symbols, Contains("setInitialArgs"));
    EXPECT_THAT(image->symbols, Contains("run"));
    EXPECT_THAT(image->symbols, Not(Contains("execve"))) << "it is needed, not defined";
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
    EXPECT_TRUE(image->symbols.empty());
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
