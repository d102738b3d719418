#include "launcher/instance/provisioning.h"

#include "platform/text.h"
#include "tests/unit/child_process.h"
#include "tests/unit/held_directory.h"
#include "tests/unit/records.h"

#include <gmock/gmock.h>

namespace rcp {
namespace {

using test::ChildProcess;
using test::Records;

const std::wstring kOne = L"1";
const std::wstring kTwo = L"2";

TEST(ProvisioningLevel, IsNewWhenTheUserHasNoneOrAnother) {
    EXPECT_TRUE(isNewProvisioningLevel(nullptr, &kOne));
    EXPECT_TRUE(isNewProvisioningLevel(nullptr, nullptr));
    EXPECT_TRUE(isNewProvisioningLevel(&kOne, &kTwo));
    const std::wstring blank = L"1 ";
    EXPECT_TRUE(isNewProvisioningLevel(&kOne, &blank)) << "compared exactly";
    const std::wstring same = L"1";
    EXPECT_FALSE(isNewProvisioningLevel(&kOne, &same));
}

TEST(ProvisioningLevel, WithoutAPlatformLevelNothingIsNew) {
    EXPECT_FALSE(isNewProvisioningLevel(&kOne, nullptr));
}

TEST(InstallerLaunch, NeedsBothOptionsAnywhere) {
    EXPECT_TRUE(isISMPProvisioning({L"p", L"-provManifest", L"x", L"-rcpLauncherWait"}));
    EXPECT_TRUE(isISMPProvisioning({L"p", L"-rcpLauncherWait", L"-provManifest"}));
    EXPECT_FALSE(isISMPProvisioning({L"p", L"-provManifest"}));
    EXPECT_FALSE(isISMPProvisioning({L"p", L"-rcpLauncherWait"}));
    EXPECT_FALSE(isISMPProvisioning({L"-rcpLauncherWait", L"-provManifest"}))
        << "the program path is no option";
    EXPECT_FALSE(isISMPProvisioning({L"p", L"-rcplauncherwait", L"-provmanifest"}));
}

class Provisioning : public test::LauncherTest {
  protected:
    Provisioning() {
        inputs_.traits.eConfig = InstallConfiguration::kUser;
        folder_.write("base/macosx/x86/eclipse", "");
        std::filesystem::permissions(folder_.path() / "base/macosx/x86/eclipse",
                                     std::filesystem::perms::owner_all);
        folder_.write("base/macosx/x86/eclipse_1615.so", "");
        folder_.write("custom.ini", "");
        set(L"rcp.base.location", folder_.wide("base"));
        set(L"rcp.install.id", L"abc");
        set(L"plugincustomization", folder_.wide("custom.ini"));
        set(L"provisioning", L"true");
        set(L"provisioning.application", L"com.ovr.provision");
        set(kLevel, L"2");
        inputs_.userProperties.append({kLevel, L"2", {}});
        inputs_.arguments = {L"p"};
        inputs_.workspace = folder_.wide();
        inputs_.configuration = folder_.wide(".config");
        inputs_.installDir = folder_.wide("install");
    }

    void set(const std::wstring& key, const std::wstring& value) {
        unset(key);
        inputs_.properties.append({key, value, {}});
    }
    void unset(const std::wstring& key) {
        PropertyList kept;
        for (const Property& property : inputs_.properties.entries()) {
            if (property.key != key) {
                kept.append(property);
            }
        }
        inputs_.properties = kept;
    }
    void setUserLevel(const std::wstring& value) {
        inputs_.userProperties = PropertyList();
        inputs_.userProperties.append({kLevel, value, {}});
    }
    // What is planned; none when no provisioning is due. Each asks a launch of its own.
    [[nodiscard]] std::optional<LaunchKind> check() const {
        LaunchInputs inputs = inputs_;
        return checkForProvisioning(inputs);
    }

    static constexpr wchar_t kLevel[] = L"provisioning.manifest.version";
    LaunchInputs inputs_;
};

TEST_F(Provisioning, NotAtTheSameLevel) {
    EXPECT_FALSE(check());
    EXPECT_FALSE(checkForProvisioning(inputs_));
    EXPECT_FALSE(inputs_.userFirstLaunch);
}

TEST_F(Provisioning, OnAFirstLaunch) {
    inputs_.userFirstLaunch = true;
    EXPECT_TRUE(check());
}

TEST_F(Provisioning, AtANewLevelWhichMakesAFirstLaunch) {
    setUserLevel(L"1");
    ASSERT_TRUE(checkForProvisioning(inputs_));
    EXPECT_TRUE(inputs_.userFirstLaunch);
    inputs_.userFirstLaunch = false;
    EXPECT_TRUE(check());
    inputs_.userProperties = PropertyList();
    EXPECT_TRUE(check()) << "a user without a level";
}

TEST_F(Provisioning, NotWhenThePlatformHasNoLevel) {
    unset(kLevel);
    EXPECT_FALSE(check());
}

TEST_F(Provisioning, OnAnInstallersLaunch) {
    inputs_.arguments = {L"p", L"-rcpLauncherWait", L"-provManifest", L"m"};
    EXPECT_TRUE(check());
    inputs_.arguments = {L"p", L"-provManifest", L"m"};
    EXPECT_FALSE(check());
    inputs_.arguments = {L"p", L"-rcpLauncherWait"};
    EXPECT_FALSE(check());
}

TEST_F(Provisioning, OnlyWhenItIsExactlyTrue) {
    inputs_.userFirstLaunch = true;
    for (const wchar_t* value : {L"True", L"true ", L"TRUE", L"", L"1", L"false"}) {
        set(L"provisioning", value);
        EXPECT_FALSE(check()) << testing::PrintToString(value);
    }
    unset(L"provisioning");
    EXPECT_FALSE(check());
    set(L"provisioning", L"true");
    EXPECT_TRUE(check());
}

TEST_F(Provisioning, OnlyInConfigurationsThatProvision) {
    using enum InstallConfiguration;
    inputs_.userFirstLaunch = true;
    for (const InstallConfiguration code : {kUser, kMultiuser, kLockdown}) {
        inputs_.traits.eConfig = code;
        EXPECT_TRUE(check()) << static_cast<int>(code);
    }
    for (const InstallConfiguration code :
         {kService, kMultiuserServiceInit, kSerialMultiuser, kUserpb, kUnknown}) {
        inputs_.traits.eConfig = code;
        EXPECT_FALSE(check()) << static_cast<int>(code);
    }
}

TEST_F(Provisioning, IsTheUsersOrTheInstallers) {
    inputs_.userFirstLaunch = true;
    EXPECT_EQ(check(), LaunchKind::kUserProvisioning);
    inputs_.arguments = {L"p", L"-rcpLauncherWait", L"-provManifest", L"m"};
    EXPECT_EQ(check(), LaunchKind::kInstallerProvisioning);
}

TEST_F(Provisioning, IsTracedOnlyWhenItIsDue) {
    const Records records(folder_);
    debug = true;
    EXPECT_FALSE(checkForProvisioning(inputs_));
    EXPECT_EQ(records.text(), "");
    inputs_.userFirstLaunch = true;
    EXPECT_TRUE(checkForProvisioning(inputs_));
    EXPECT_TRUE(
        records.has("ZYPRA0076I: Detected platform initial launch or user initial launch. "
                    "Executing platform provisioning.\n"))
        << records.text();
}

TEST_F(Provisioning, TurnsTheSharedClassesOffInTheMap) {
    inputs_.vmargMap[L"vmarg.Dshare"] = L"-Xshareclasses:name=velmo";
    EXPECT_FALSE(checkForProvisioning(inputs_));
    EXPECT_EQ(inputs_.vmargMap[L"vmarg.Dshare"], L"-Xshareclasses:name=velmo");
    inputs_.userFirstLaunch = true;
    EXPECT_TRUE(checkForProvisioning(inputs_));
    EXPECT_EQ(inputs_.vmargMap[L"vmarg.Dshare"], L"-Xshareclasses=none");
}

TEST_F(Provisioning, SwitchesSharedClassesOff) {
    const Records records(folder_);
    debug = true;
    VmArgumentMap map;
    map[L"vmarg.Dshare"] = L"-Xshareclasses:name=velmo";
    map[L"vmarg.other"] = L"-Dother";
    defeateSharedClassesInProvisioning(map);
    EXPECT_EQ(map.size(), 2U);
    EXPECT_EQ(map[L"vmarg.Dshare"], L"-Xshareclasses=none");
    EXPECT_EQ(map[L"vmarg.other"], L"-Dother");
    EXPECT_TRUE(
        records.has("ZYPRA0120I: \"vmarg.Dshare\" shared classes property found. Setting "
                    "-Xsharedclasses=none while provisioning\n"));
}

TEST_F(Provisioning, SharedClassesThatAreNotThereStayAbsent) {
    const Records records(folder_);
    debug = true;
    VmArgumentMap map;
    map[L"vmarg.dshare"] = L"-Xother";
    defeateSharedClassesInProvisioning(map);
    EXPECT_EQ(map.size(), 1U);
    EXPECT_TRUE(
        records.has("ZYPRA0121I: \"vmarg.Dshare\" shared classes property was not detected. No "
                    "special action needed while provisioning\n"));
}

class SharedClasses : public Provisioning {
  protected:
    SharedClasses() {
        folder_.write("shared/cache", "classes");
        folder_.write("shared/deep/er/cache", "classes");
        setUserLevel(L"1");
    }
    void setDirectory(const std::wstring& path) {
        inputs_.userProperties.append({L"jvm.shareclasses.fullpath", path, {}});
    }
    [[nodiscard]] bool isEmptied() const {
        return folder_.has("shared") && std::filesystem::is_empty(folder_.path() / "shared");
    }
};

TEST_F(SharedClasses, AreEmptiedAtANewLevel) {
    inputs_.workspace = folder_.wide("workspace");
    setDirectory(folder_.wide("shared"));
    emptySharedClassesOnNewLevel(inputs_);
    EXPECT_TRUE(isEmptied());
}

TEST_F(SharedClasses, AreKeptAtTheSameLevel) {
    setUserLevel(L"2");
    setDirectory(folder_.wide("shared"));
    emptySharedClassesOnNewLevel(inputs_);
    EXPECT_TRUE(folder_.has("shared/deep/er/cache"));
}

TEST_F(SharedClasses, PathHasEitherSeparator) {
    std::wstring path = folder_.wide("shared");
    path[path.rfind(L'/')] = L'\\';
    setDirectory(path);
    emptySharedClassesOnNewLevel(inputs_);
    EXPECT_TRUE(isEmptied());
}

TEST_F(SharedClasses, MissingPropertyOrDirectoryChangesNothing) {
    const Records records(folder_);
    emptySharedClassesOnNewLevel(inputs_);
    setDirectory(folder_.wide("missing"));
    emptySharedClassesOnNewLevel(inputs_);
    EXPECT_TRUE(folder_.has("shared/cache"));
    EXPECT_FALSE(records.has("Error"));
}

TEST_F(SharedClasses, PropertyOfTheLaunchersOwnListDoesNotCount) {
    set(L"jvm.shareclasses.fullpath", folder_.wide("shared"));
    emptySharedClassesOnNewLevel(inputs_);
    EXPECT_TRUE(folder_.has("shared/cache"));
}

TEST_F(SharedClasses, WhatCannotBeRemovedIsFatalWithTheList) {
    NEED_HELD_DIRECTORY();
    const test::HeldDirectory held(folder_.path() / "shared/held");
    setDirectory(folder_.wide("shared"));
    EXPECT_FATAL(emptySharedClassesOnNewLevel(inputs_),
                 "\nZYPRA0086I begin: Information collected while removing shared classes "
                 "directory\n(.*\n)*.*held.*\n(.*\n)*"
                 "ZYPRA0087I end: Unable to remove all files in the shared classes directory\\.\n");
}

TEST_F(SharedClasses, LinkAmongThemIsRemovedAndItsTargetStays) {
    std::filesystem::create_directory_symlink(folder_.path(), folder_.path() / "shared/link");
    setDirectory(folder_.wide("shared/"));
    emptySharedClassesOnNewLevel(inputs_);
    EXPECT_TRUE(isEmptied());
    EXPECT_TRUE(folder_.has("custom.ini"));
}

TEST_F(SharedClasses, DirectoryThatMayHoldMoreIsLeftAloneWithOneRecord) {
    std::filesystem::create_directory_symlink(folder_.path() / "shared", folder_.path() / "link");
    const std::wstring shared = folder_.wide("shared");
    const std::wstring link = folder_.wide("link");
    struct Case {
        std::wstring LaunchInputs::*area;
        std::wstring directory;
        std::wstring reason;
    };
    for (const Case& each :
         {Case{&LaunchInputs::workspace, shared, shared + L" is the workspace"},
          Case{&LaunchInputs::configuration, shared + L"//",
               shared + L" is the configuration area"},
          Case{&LaunchInputs::installDir, shared + L"/.", shared + L" is the installation"},
          Case{nullptr, link, link + L" is a symbolic link"},
          Case{nullptr, link + L"/", link + L" is a symbolic link"},
          Case{nullptr, link + L"/.//", link + L" is a symbolic link"},
          Case{nullptr, L"shared", L"shared is no absolute path"}}) {
        LaunchInputs inputs;
        inputs.properties = inputs_.properties;
        if (each.area != nullptr) {
            inputs.*each.area = shared;
        }
        inputs.userProperties.append({L"jvm.shareclasses.fullpath", each.directory, {}});
        const Records records(folder_);
        emptySharedClassesOnNewLevel(inputs);
        EXPECT_EQ(records.text(), "Error: jvm.shareclasses.fullpath is not emptied: " +
                                      toNarrow(each.reason) + ".\n");
        EXPECT_TRUE(folder_.has("shared/cache"));
    }
}

// In a process of its own, whose current directory it is.
TEST_F(SharedClasses, CurrentDirectoryIsLeftAlone) {
    for (const wchar_t* path : {L".", L"./", L"deep/.."}) {
        setDirectory(path);
        ChildProcess launcher([this] {
            if (chdir(folder_.narrow("shared").c_str()) != 0) {
                return 2;
            }
            emptySharedClassesOnNewLevel(inputs_);
            return 0;
        });
        EXPECT_EQ(launcher.wait(), 0);
        EXPECT_TRUE(folder_.has("shared/cache"));
        inputs_.userProperties = PropertyList();
        setUserLevel(L"1");
    }
}

// Behind a root of its own: should it ever be emptied, only the test's folder is.
TEST_F(SharedClasses, RootDirectoryIsLeftAlone) {
    if (getuid() != 0) {
        GTEST_SKIP() << "needs a root directory of its own";
    }
    inputs_.workspace = inputs_.configuration = inputs_.installDir = L"/missing";
    setDirectory(L"/");
    ChildProcess launcher([this] {
        if (chroot(folder_.narrow().c_str()) != 0 || chdir("/") != 0) {
            return 2;
        }
        setenv("HOME", "/missing", 1);
        emptySharedClassesOnNewLevel(inputs_);
        return 0;
    });
    EXPECT_EQ(launcher.wait(), 0);
    EXPECT_TRUE(folder_.has("shared/cache"));
}

}  // namespace
}  // namespace rcp
