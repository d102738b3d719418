#include "launcher/user_area/startup_arguments.h"
#include "tests/unit/user_area/user_area_fixture.h"

#include <sys/stat.h>

namespace rcp::test {
namespace {

// Replacing a file gives it a new number.
class UnchangedStartupArguments : public UserAreaTest {
  protected:
    ino_t fileNumberAfter(const Arguments& arguments) const {
        const std::wstring program = L"/r/exe";
        writeStartupArgs(arguments, configuration(), program, {}, L"/opt/i");
        struct stat status {};
        EXPECT_EQ(stat(folder_.narrow("ws/.config/args.properties").c_str(), &status), 0);
        return status.st_ino;
    }
};

TEST_F(UnchangedStartupArguments, AreNotWrittenAgain) {
    const ino_t first = fileNumberAfter({L"rcplauncher", L"-nosplash"});
    EXPECT_EQ(fileNumberAfter({L"rcplauncher", L"-nosplash"}), first);
    EXPECT_NE(fileNumberAfter({L"rcplauncher", L"-noSplash"}), first);
    EXPECT_EQ(own("args.properties"),
              "arg0=/r/exe\narg1=-noSplash\nargc=2\n"
              "com.ovr.rcp.core.internal.librarypath=\n");
}

TEST_F(UnchangedStartupArguments, AreKnownWithoutAnotherLook) {
    const auto record = [this] {
        return writeStartupArgs({L"rcplauncher"}, configuration(), L"/r/exe", {}, L"/opt/i");
    };
    EXPECT_EQ(record(), std::nullopt) << "written: whether it can be read is another matter";
    EXPECT_EQ(record(), own("args.properties"));
}

}  // namespace
}  // namespace rcp::test
