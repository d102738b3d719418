#include "launcher/inputs/traits.h"

#include "tests/unit/launch_pieces.h"
#include "tests/unit/probe.h"

namespace rcp {
namespace {

using test::propertyList;

class LaunchTraits : public test::LauncherTest {};

TEST_F(LaunchTraits, InProcessPlatformIsLookedForUnderTheProductsName) {
    EXPECT_EQ(getMainProcessName({.invokeDylib = true}, propertyList({{L"eclipse.name", L"a"}})),
              L"Velmo");
}

TEST_F(LaunchTraits, ExecutedPlatformIsLookedForUnderItsExecutablesName) {
    EXPECT_EQ(getMainProcessName({}, PropertyList()), L"eclipse");
    EXPECT_EQ(
        getMainProcessName({}, propertyList({{L"eclipse.name", L"a"}, {L"eclipse.name", L"b"}})),
        L"a");
}

TEST_F(LaunchTraits, AreReadFromTheProperties) {
    const Traits traits =
        traitsOf(propertyList({{L"install.configuration", L"service"}}), Start::kRestart);
    EXPECT_EQ(traits.eConfig, InstallConfiguration::kService);
    EXPECT_TRUE(traits.isDirectJavaShape());
    EXPECT_EQ(traits.start, Start::kRestart);
    EXPECT_TRUE(traits.invokeDylib) << "these tests are not called rcplauncher";
}

// --- The kind of hand-off -----------------------------------------------------------------------

TEST(InProcessVersion, Only1015HandsOffInProcess) {
    for (const char* version : {"10.15", "10.15.7", "10.15.", "10.15beta"}) {
        EXPECT_TRUE(isInProcessVersion(version)) << version;
    }
    for (const char* version :
         {"10.14.6", "11.2", "10.16", "10.150", "11.15", "1.15", "10", "10.", "10-15", "10..15",
          "garbage", "", ".15", "99999999999999999999.15", "10.99999999999999999999"}) {
        EXPECT_FALSE(isInProcessVersion(version)) << version;
    }
}

TEST_F(LaunchTraits, AnyOtherExecutableNameHandsOffInProcess) {
    EXPECT_TRUE(handsOffInProcess(propertyList({{L"invoke.eclipse.dylib", L"0"}})))
        << "these tests are not called rcplauncher";
}

const test::Probe kChoice("hand-off choice", [](const std::vector<std::string>& arguments) {
    PropertyList properties;
    if (!arguments.empty()) {
        properties = propertyList({{L"invoke.eclipse.dylib", toWide(arguments.front())}});
    }
    return handsOffInProcess(properties) ? 3 : 4;
});

TEST_F(LaunchTraits, PropertyDecidesForTheLaunchersOwnNameAndOneAloneMeansInProcess) {
    const std::string program = folder_.narrow("rcplauncher");
    test::linkProgram(program);
    EXPECT_EQ(test::runProbe("hand-off choice", {"1"}, program).status, 3);
    for (const char* value : {"true", "0", "", "11", "01"}) {
        EXPECT_EQ(test::runProbe("hand-off choice", {value}, program).status, 4) << value;
    }
}

#ifdef __linux__
TEST_F(LaunchTraits, WithoutTheKeyASystemWithoutAProductVersionExecutes) {
    const std::string program = folder_.narrow("rcplauncher");
    test::linkProgram(program);
    EXPECT_EQ(test::runProbe("hand-off choice", {}, program).status, 4);
}
#endif

TEST_F(LaunchTraits, NameIsThatUnderWhichTheProgramWasStarted) {
    test::linkProgram(folder_.narrow("rcplauncher"));
    for (const char* name : {"client", "rcplauncher2", "RCPLauncher"}) {
        const std::string link = folder_.narrow(std::string("links/") + name);
        std::filesystem::create_directories(folder_.path() / "links");
        std::filesystem::create_symlink(folder_.path() / "rcplauncher", link);
        EXPECT_EQ(test::runProbe("hand-off choice", {"0"}, link).status, 3) << name;
    }
}

}  // namespace
}  // namespace rcp
