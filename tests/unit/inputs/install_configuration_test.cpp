#include "launcher/inputs/install_configuration.h"

#include "diagnostics/svc_debug.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/records.h"

namespace rcp {
namespace {

using test::propertyList;

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
    static InstallConfiguration of(const wchar_t* value) {
        return installConfigurationOf(propertyList({{L"install.configuration", value}}));
    }
};

TEST_F(Configuration, EachNameHasItsCodeAndTellsItself) {
    for (const Known& known : kKnown) {
        EXPECT_EQ(static_cast<int>(of(known.property)), known.code) << known.property;
        EXPECT_EQ(installConfigurationName(of(known.property)), known.name);
    }
}

TEST_F(Configuration, OtherValuesAreUnknownAndNameless) {
    for (const wchar_t* value : {L"Service", L"USER", L"", L" user", L"user ", L"multi", L"3"}) {
        EXPECT_EQ(static_cast<int>(of(value)), 5) << '"' << value << '"';
        EXPECT_EQ(installConfigurationName(of(value)), L"");
        EXPECT_FALSE(isServiceConfig(of(value)));
    }
}

TEST_F(Configuration, MissingPropertyIsTheUserConfigurationAndTraced) {
    setDebug(true);
    const test::Records records(folder_);
    EXPECT_EQ(static_cast<int>(installConfigurationOf(PropertyList())), 3);
    EXPECT_TRUE(
        records.has("ZYPRA0041I: Missed install configuration in property file. Using default "
                    "setting!\n"));
}

TEST_F(Configuration, MissingPropertyIsNotReportedWithoutTracing) {
    const test::Records records(folder_);
    (void)installConfigurationOf(PropertyList());
    EXPECT_EQ(records.text(), "");
}

TEST_F(Configuration, GivenPropertyIsNotTraced) {
    setDebug(true);
    const test::Records records(folder_);
    (void)of(L"user");
    EXPECT_FALSE(records.has("ZYPRA0041I"));
}

TEST_F(Configuration, FirstEntryWins) {
    EXPECT_EQ(installConfigurationOf(propertyList({{L"install.configuration", L"lockdown"},
                                                   {L"install.configuration", L"service"}})),
              InstallConfiguration::kLockdown);
}

TEST_F(Configuration, ServiceInitialisationIsToldAsTheServiceOfManyUsers) {
    EXPECT_EQ(installConfigurationName(InstallConfiguration::kMultiuserServiceInit), L"multiuser");
    EXPECT_EQ(static_cast<int>(InstallConfiguration::kMultiuserServiceInit), 7);
}

TEST_F(Configuration, OnlyServiceAndItsInitialisationAreStartedWithPlainJava) {
    for (int code = 1; code <= 8; ++code) {
        const auto configuration = static_cast<InstallConfiguration>(code);
        EXPECT_EQ(isServiceConfig(configuration), code == 1 || code == 7) << code;
    }
}

}  // namespace
}  // namespace rcp
