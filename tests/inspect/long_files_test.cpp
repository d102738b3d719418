// Files of gigabytes where some kilobytes are usual: their beginning is looked at, and that is told.
#include "tests/inspect/explain_fixture.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

namespace rcp::inspect::test {
namespace {

using ::testing::HasSubstr;

constexpr std::uintmax_t kLong = std::uintmax_t{3} << 30U;

class LongFiles : public ExplainTest {
  protected:
    // What a command says that may write no file of more than `blocks`.
    [[nodiscard]] std::string told(const std::string& command,
                                   const std::string& blocks = "204800") const {
        Program program({"/bin/sh", "-c", "ulimit -f \"$1\"; shift; exec \"$@\" 2>&1", "sh", blocks,
                         seen(INSPECT_PROGRAM), command, "--install", installation()},
                        launchEnvironment());
        std::string output = program.rest();
        EXPECT_LT(program.wait(), 3) << command << ": " << output;
        return output;
    }
    void makeLong(const std::string& file) const {
        std::filesystem::create_directories((folder_.path() / file).parent_path());
        std::ofstream(folder_.path() / file, std::ios::app) << "";
        std::filesystem::resize_file(folder_.path() / file, kLong);
    }
    // The most memory that a process which has ended needed.
    [[nodiscard]] static std::uintmax_t mostMemory() {
        struct rusage used {};
        getrusage(RUSAGE_CHILDREN, &used);
        constexpr std::uintmax_t kUnit =
#ifdef __APPLE__
            1;
#else
            1024;
#endif
        return static_cast<std::uintmax_t>(used.ru_maxrss) * kUnit;
    }
};

TEST_F(LongFiles, AreNeitherHeldNorCopiedWhole) {
    const std::string base = "client/rcp/eclipse/plugins/com.ovr.rcp.base/config/user/";
    for (const std::string& file :
         {base + "config.ini", std::string(kMaster), std::string(kJvmFile),
          std::string(kProperties), std::string(kConfiguration) + "/config.ini"}) {
        makeLong(file);
        for (const char* command : {"check", "doctor"}) {
            (void)told(command);
        }
        EXPECT_LT(mostMemory(), kLong / 3) << file;
    }
}

// Whose copy is as long, but has a hole for what was not copied.
TEST_F(LongFiles, AreNotHeldWholeWhereALaunchWritesThem) {
    makeLong("home/workspace/ann/logs/rcplauncher.log");
    for (const char* command : {"explain", "status"}) {
        (void)told(command, "unlimited");
    }
    EXPECT_LT(mostMemory(), kLong / 3);
}

TEST_F(LongFiles, AreToldByCheck) {
    for (const std::string& file : {std::string(kJvmFile), std::string(kProperties)}) {
        makeLong(file);
        EXPECT_THAT(told("check"), HasSubstr("warning RI813 too-large"));
    }
}

}  // namespace
}  // namespace rcp::inspect::test
