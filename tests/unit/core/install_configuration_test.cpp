#include "launcher/core/install_configuration.h"

#include "diagnostics/svc_debug.h"
#include "tests/unit/core/launch_pieces.h"
#include "tests/unit/core/records.h"

namespace rcp {
namespace {

using test::propertyList;

const InstallConfiguration kAtStart = eConfig;

struct Known {
    const wchar_t* property;
    int code;
    const wchar_t* name;
};

constexpr Known kKnown[] = {
    {L"service", 1, L"service"},     {L"lockdown", 2, L"lockdown"},
    {L"user", 3, L"user"},           {L"serial.multiuser", 4, L"serial.multiuser"},
    {L"multiuser", 6, L"multiuser"}, {L"userpb", 8, L"userpb"},
};

class Configuration : public test::LauncherTest {
  protected:
    static int set(const wchar_t* value, bool initMuService = false) {
        EXPECT_TRUE(SetInstallConfiguration(propertyList({{L"install.configuration", value}}),
                                            initMuService));
        return static_cast<int>(eConfig);
    }
};

TEST_F(Configuration, IsUnknownBeforeItIsSet) {
    EXPECT_EQ(static_cast<int>(kAtStart), 5);
}

TEST_F(Configuration, EachNameHasItsCodeAndTellsItself) {
    for (const Known& known : kKnown) {
        EXPECT_EQ(set(known.property), known.code) << known.property;
        EXPECT_EQ(installConfigurationName(), known.name);
    }
}

TEST_F(Configuration, OtherValuesAreUnknownAndNameless) {
    for (const wchar_t* value : {L"Service", L"USER", L"", L" user", L"user ", L"multi", L"3"}) {
        EXPECT_EQ(set(value), 5) << '"' << value << '"';
        EXPECT_EQ(installConfigurationName(), L"");
        EXPECT_FALSE(isDirectJavaShape());
    }
}

TEST_F(Configuration, MissingPropertyIsTheUserConfigurationAndTraced) {
    setDebug(true);
    const test::Records records(folder_);
    EXPECT_TRUE(SetInstallConfiguration(PropertyList(), false));
    EXPECT_EQ(static_cast<int>(eConfig), 3);
    EXPECT_EQ(installConfigurationName(), L"user");
    EXPECT_TRUE(
        records.has("ZYPRA0041I: Missed install configuration in property file. Using default "
                    "setting!\n"));
}

TEST_F(Configuration, MissingPropertyIsNotReportedWithoutTracing) {
    const test::Records records(folder_);
    SetInstallConfiguration(PropertyList(), false);
    EXPECT_EQ(records.text(), "");
}

TEST_F(Configuration, GivenPropertyIsNotTraced) {
    setDebug(true);
    const test::Records records(folder_);
    set(L"user");
    EXPECT_FALSE(records.has("ZYPRA0041I"));
}

TEST_F(Configuration, FirstEntryWins) {
    SetInstallConfiguration(propertyList({{L"install.configuration", L"lockdown"},
                                          {L"install.configuration", L"service"}}),
                            false);
    EXPECT_EQ(static_cast<int>(eConfig), 2);
}

TEST_F(Configuration, FlagForcesTheServiceInitialisationWhateverThePropertySays) {
    for (const Known& known : kKnown) {
        EXPECT_EQ(set(known.property, true), 7) << known.property;
    }
    EXPECT_EQ(set(L"nonsense", true), 7);
    SetInstallConfiguration(PropertyList(), true);
    EXPECT_EQ(static_cast<int>(eConfig), 7);
    EXPECT_EQ(installConfigurationName(), L"multiuser");
}

TEST_F(Configuration, OnlyServiceAndItsInitialisationAreStartedWithPlainJava) {
    for (int code = 1; code <= 8; ++code) {
        eConfig = static_cast<InstallConfiguration>(code);
        EXPECT_EQ(isDirectJavaShape(), code == 1 || code == 7) << code;
        EXPECT_EQ(isServiceConfig(), code == 1 || code == 7) << code;
    }
}

TEST_F(Configuration, LockdownFlagFollowsTheLastCall) {
    for (const Known& known : kKnown) {
        set(known.property);
        EXPECT_EQ(isLockdownConfig(), known.code == 2) << known.property;
    }
    set(L"lockdown");
    ASSERT_TRUE(isLockdownConfig());
    SetInstallConfiguration(PropertyList(), false);
    EXPECT_FALSE(isLockdownConfig());
}

TEST_F(Configuration, LockdownFlagTellsThePropertyEvenWhenTheCodeIsForced) {
    set(L"lockdown", true);
    EXPECT_TRUE(isLockdownConfig());
    set(L"user", true);
    EXPECT_FALSE(isLockdownConfig());
}

}  // namespace
}  // namespace rcp
