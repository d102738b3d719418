#include "launcher/user_area/reset.h"

#include "base/system_calls.h"
#include "platform/files.h"
#include "tests/unit/held_directory.h"
#include "tests/unit/user_area/user_area_fixture.h"

#include <algorithm>

namespace rcp::test {
namespace {

class Reset : public UserAreaTest {
  protected:
    void writeArea(const std::string& platformXml = "p") const {
        folder_.write("ws/.config/rcpinstall.properties", "a=1\n");
        folder_.write("ws/.config/org.eclipse.update/platform.xml", platformXml);
        folder_.write("ws/.config/org.eclipse.update/registry", "r");
        folder_.write("ws/.config/org.eclipse.update/bookmarks.xml", "b");
    }
    void reuse() const { createReusableWorkspace(workspace(), configuration()); }
    void reset() const { resetWorkspace(inputs_, base()); }
    [[nodiscard]] std::string inWorkspace(const std::string& name) const {
        return folder_.read("ws/" + name);
    }
    [[nodiscard]] bool workspaceHas(const std::string& name) const {
        return folder_.has("ws/" + name);
    }
    [[nodiscard]] std::size_t filesInConfiguration() const {
        std::size_t count = 0;
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(folder_.path() / "ws/.config")) {
            count += entry.is_regular_file() ? 1U : 0U;
        }
        return count;
    }
};

// --- Reuse ---

TEST_F(Reset, ReuseSetsTheConfigurationAsideAndKeepsRegistryAndBookmarks) {
    writeArea();
    reuse();
    EXPECT_EQ(own("org.eclipse.update/registry"), "r");
    EXPECT_EQ(own("org.eclipse.update/bookmarks.xml"), "b");
    EXPECT_EQ(filesInConfiguration(), 2U);
    EXPECT_EQ(inWorkspace(".configbak/rcpinstall.properties"), "a=1\n");
    EXPECT_EQ(inWorkspace(".configbak/org.eclipse.update/registry"), "r");
}

TEST_F(Reset, ReuseLeavesThePlatformDescriptionInTheWorkspaceAndNothingElse) {
    writeArea();
    reuse();
    EXPECT_EQ(inWorkspace("platform.xml.old"), "p");
    EXPECT_FALSE(workspaceHas("registry.old"));
    EXPECT_FALSE(workspaceHas("bookmarks.xml.old"));
    EXPECT_FALSE(hasOwn("org.eclipse.update/platform.xml"));
}

TEST_F(Reset, ReuseReplacesWhatAnEarlierOneSaved) {
    writeArea("new");
    folder_.write("ws/platform.xml.old", "older");
    folder_.write("ws/registry.old", "older");
    reuse();
    EXPECT_EQ(inWorkspace("platform.xml.old"), "new");
    EXPECT_EQ(own("org.eclipse.update/registry"), "r");
}

TEST_F(Reset, ReuseWithoutUpdateDirectorySaysSoAndMakesAnEmptyOne) {
    folder_.write("ws/.config/config.ini", "c");
    const Records records(folder_);
    setDebug(true);
    reuse();
    setDebug(false);
    for (const char* name : {"platform.xml", "registry", "bookmarks.xml"}) {
        EXPECT_TRUE(records.has("ZYPRA0110I: '" + folder_.narrow("ws/.config/org.eclipse.update/") +
                                name + "' not found\n"))
            << records.text();
    }
    EXPECT_EQ(inWorkspace(".configbak/config.ini"), "c");
    EXPECT_TRUE(std::filesystem::is_empty(folder_.path() / "ws/.config/org.eclipse.update"));
}

TEST_F(Reset, WhatAnInterruptedRenewalLeftInTheWorkspaceComesBack) {
    folder_.write("ws/registry.old", "r");
    folder_.write("ws/bookmarks.xml.old", "b");
    reuse();
    EXPECT_EQ(own("org.eclipse.update/registry"), "r");
    EXPECT_EQ(own("org.eclipse.update/bookmarks.xml"), "b");
}

TEST_F(Reset, ReuseWithoutConfigurationIsFatal) {
    std::filesystem::remove_all(folder_.path() / "ws/.config");
    EXPECT_FATAL(reuse(), "ZYPRA0109E: Unable to locate '.*/ws/.config' for copying");
}

TEST_F(Reset, BackslashesOfTheConfigurationAreTurned) {
    writeArea();
    createReusableWorkspace(workspace(), folder_.wide() + L"\\ws\\.config");
    EXPECT_EQ(own("org.eclipse.update/registry"), "r");
    EXPECT_TRUE(workspaceHas(".configbak/rcpinstall.properties"));
}

// --- Reset ---

TEST_F(Reset, ResetKeepsRegistryAndBookmarksButNotThePlatformDescription) {
    writeArea();
    reset();
    EXPECT_EQ(own("org.eclipse.update/registry"), "r");
    EXPECT_EQ(own("org.eclipse.update/bookmarks.xml"), "b");
    EXPECT_EQ(filesInConfiguration(), 2U);
    EXPECT_FALSE(workspaceHas("platform.xml.old"));
    EXPECT_FALSE(workspaceHas("registry.old"));
    EXPECT_EQ(inWorkspace(".configbak/org.eclipse.update/platform.xml"), "p");
}

TEST_F(Reset, SecondResetReplacesTheConfigurationSetAside) {
    writeArea("first");
    reset();
    writeArea("second");
    reset();
    EXPECT_EQ(inWorkspace(".configbak/org.eclipse.update/platform.xml"), "second");
    EXPECT_FALSE(workspaceHas(".configbakdeleteme0001"));
}

TEST_F(Reset, RemovalsThatDidNotFinishAreFinishedByTheNextReset) {
    writeArea();
    folder_.write("ws/.configbak/f", "older");
    for (const char* number : {"1", "2", "3", "4", "5"}) {
        folder_.write(std::string("ws/.configbakdeleteme000") + number + "/d/f", "left");
    }
    folder_.write("ws/.configbakdeleteme0006/f", "not one of these");
    reset();
    for (const char* number : {"1", "2", "3", "4", "5"}) {
        EXPECT_FALSE(workspaceHas(std::string(".configbakdeleteme000") + number));
    }
    EXPECT_TRUE(workspaceHas(".configbakdeleteme0006/f"));
    EXPECT_FALSE(workspaceHas(".configbak/f"));
}

std::vector<std::string> namesGiven;

int noteName(const char* source, const char* target) {
    namesGiven.emplace_back(target);
    return kSystemsOwnCalls.rename(source, target);
}

int findBusy(int /*folder*/, const char* /*name*/, int /*flags*/) {
    errno = EBUSY;
    return -1;
}

class ResetWithTakenNumbers : public Reset {
  protected:
    /// The names that a reset gives where the numbers up to five are taken and `unlinkat` removes.
    [[nodiscard]] const std::vector<std::string>& namesGivenWith(
        decltype(SystemCalls::unlinkat) unlinkat) const {
        writeArea();
        folder_.write("ws/.configbak/f", "older");
        for (const char* number : {"1", "2", "3", "4", "5"}) {
            folder_.write(std::string("ws/.configbakdeleteme000") + number + "/f", "left");
        }
        SystemCalls calls = systemCalls;
        calls.rename = &noteName;
        calls.unlinkat = unlinkat;
        const InstalledCalls installed(calls);
        namesGiven.clear();
        reset();
        return namesGiven;
    }
};

TEST_F(ResetWithTakenNumbers, FirstIsChosenOnceItIsFree) {
    EXPECT_THAT(namesGivenWith(kSystemsOwnCalls.unlinkat),
                testing::Contains(folder_.narrow("ws/.configbakdeleteme0001")));
}

TEST_F(ResetWithTakenNumbers, NextIsChosenWhenNoneBecomesFree) {
    EXPECT_THAT(namesGivenWith(&findBusy),
                testing::Contains(folder_.narrow("ws/.configbakdeleteme0006")));
}

TEST_F(Reset, SmallestFreeNumberIsChosenForTheRemoval) {
    NEED_HELD_DIRECTORY();
    writeArea();
    const HeldDirectory held(folder_.path() / "ws/.configbak/held");
    folder_.write("ws/.configbakdeleteme0001/f", "");
    reset();
    EXPECT_FALSE(workspaceHas(".configbakdeleteme0001"));
    EXPECT_TRUE(workspaceHas(".configbakdeleteme0002/held"));
}

TEST_F(Reset, RemovalsThatNeverFinishStopNoLaterReset) {
    NEED_HELD_DIRECTORY();
    std::vector<std::unique_ptr<HeldDirectory>> held;
    for (int i = 0; i < 8; ++i) {
        writeArea();
        held.push_back(std::make_unique<HeldDirectory>(folder_.path() / "ws/.config/held"));
        reset();
    }
    EXPECT_EQ(own("org.eclipse.update/registry"), "r");
    EXPECT_TRUE(workspaceHas(".configbak/held"));
}

TEST_F(Reset, LinkInTheConfigurationSetAsideGoesWithItAndNothingIsLeft) {
    folder_.write("base/f", "kept");
    for (int i = 0; i < 3; ++i) {
        writeArea();
        std::filesystem::create_symlink("nowhere", folder_.path() / "ws/.config/dangling");
        std::filesystem::create_directory_symlink(folder_.path() / "base",
                                                  folder_.path() / "ws/.config/link");
        reset();
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path() / "ws")) {
        EXPECT_EQ(entry.path().string().find("deleteme"), std::string::npos) << entry.path();
    }
    EXPECT_EQ(folder_.read("base/f"), "kept");
}

TEST_F(Reset, RemovalThatFailsIsTracedAndTheResetGoesOn) {
    NEED_HELD_DIRECTORY();
    writeArea();
    folder_.write("ws/.configbak/f", "");
    const HeldDirectory held(folder_.path() / "ws/.configbak/held");
    const Records records(folder_);
    setDebug(true);
    reset();
    setDebug(false);
    EXPECT_TRUE(records.has("Can't delete dir " + folder_.narrow("ws/.configbakdeleteme0001/held") +
                            "  - "))
        << records.text();
    EXPECT_EQ(own("org.eclipse.update/registry"), "r");
}

TEST_F(Reset, LinkInPlaceOfTheConfigurationSetAsideIsReplacedWithoutFollowingIt) {
    writeArea();
    folder_.write("base/f", "kept");
    std::filesystem::create_directory_symlink(folder_.path() / "base",
                                              folder_.path() / "ws/.configbak");
    reset();
    EXPECT_EQ(folder_.read("base/f"), "kept");
    EXPECT_TRUE(workspaceHas(".configbak/rcpinstall.properties"));
}

// --- Failures ---

TEST_F(Reset, UpdateDirectoryThatCannotBeMadeIsFatalUnderTwoNumbers) {
    // Long enough that the directory's own path still is one and the one below is not.
    std::wstring deep = workspace();
    while (deep.size() < 4085) {
        deep += L"/" + std::wstring(std::min<std::size_t>(200, 4089 - deep.size()), L'd');
    }
    folder_.write("base/rcpinstall.properties", "");
    ensureDirectory(deep, messages.resetFolderNotMade);
    EXPECT_FATAL(createReusableWorkspace(workspace(), deep), "ZYPRA0044E: Unable to create /.*d/");
    std::filesystem::remove_all(deep + L"bak");
    ensureDirectory(deep, messages.resetFolderNotMade);
    inputs_.configuration = deep;
    EXPECT_FATAL(resetWorkspace(inputs_, base()), "ZYPRA0045E: Unable to create /.*d/");
}

TEST_F(Reset, MissingSourceMattersOnlyWhenItIsRequired) {
    const Records records(folder_);
    handleCopy({workspace(), L"t"}, {workspace(), L"missing"}, Need::kOptional, Transfer::kCopy);
    handleFileMove({workspace(), L"t"}, {workspace(), L"missing"}, Need::kOptional);
    EXPECT_EQ(records.text(), "") << "information is traced only";
    EXPECT_FALSE(workspaceHas("t"));
    EXPECT_FATAL(handleFileMove({workspace(), L"t"}, {workspace(), L"missing"}, Need::kRequired),
                 "ZYPRA0109E: Unable to locate '.*/ws/missing' for copying");
}

TEST_F(Reset, MissingSourceLeavesTheTarget) {
    folder_.write("ws/t", "kept");
    handleCopy({workspace(), L"t"}, {workspace(), L"missing"}, Need::kOptional, Transfer::kCopy);
    EXPECT_EQ(inWorkspace("t"), "kept");
}

TEST_F(Reset, CopyKeepsTheSourceAndMoveDoesNot) {
    folder_.write("ws/s", "text");
    folder_.write("ws/t", "older");
    handleCopy({workspace(), L"t"}, {workspace(), L"s"}, Need::kRequired, Transfer::kCopy);
    EXPECT_EQ(inWorkspace("t"), "text");
    EXPECT_EQ(inWorkspace("s"), "text");
    handleFileMove({workspace(), L"u"}, {workspace(), L"s"}, Need::kRequired);
    EXPECT_EQ(inWorkspace("u"), "text");
    EXPECT_FALSE(workspaceHas("s"));
}

TEST_F(Reset, DirectoryInTheWayOfAFileIsRemoved) {
    folder_.write("ws/s", "text");
    folder_.write("ws/t/d/f", "older");
    handleFileMove({workspace(), L"t"}, {workspace(), L"s"}, Need::kRequired);
    EXPECT_EQ(inWorkspace("t"), "text");
    EXPECT_FALSE(workspaceHas("tdeleteme0001"));
}

TEST_F(Reset, DirectoryIsMovedWithAllThatIsInIt) {
    folder_.write("ws/s/d/f", "text");
    handleDirMove(folder_.wide("ws/t"), folder_.wide() + L"\\ws\\s", Need::kRequired);
    EXPECT_EQ(inWorkspace("t/d/f"), "text");
    EXPECT_FALSE(workspaceHas("s"));
}

TEST_F(Reset, FileThatCannotBeReplacedIsFatal) {
    folder_.write("ws/s", "");
    folder_.write("closed/t", "");
    close("closed");
    EXPECT_FATAL_AS_ORDINARY_USER(handleCopy({folder_.wide("closed"), L"t"}, {workspace(), L"s"},
                                             Need::kRequired, Transfer::kCopy),
                                  "ZYPRA0111E: Can't delete old copy of file '" +
                                      folder_.narrow("closed/t") + "' : Permission denied");
}

TEST_F(Reset, DirectoryThatCannotBeReplacedIsFatal) {
    folder_.write("ws/s", "");
    folder_.write("closed/t/f", "");
    close("closed");
    EXPECT_FATAL_AS_ORDINARY_USER(handleCopy({folder_.wide("closed"), L"t"}, {workspace(), L"s"},
                                             Need::kRequired, Transfer::kMove),
                                  "ZYPRA0112E: Can't move file/dir  '" +
                                      folder_.narrow("closed/t") + "' : Permission denied");
}

TEST_F(Reset, MoveThatFailsIsFatal) {
    folder_.write("closed/s", "");
    close("closed");
    EXPECT_FATAL_AS_ORDINARY_USER(handleFileMove({folder_.wide("log"), L"t"},
                                                 {folder_.wide("closed"), L"s"}, Need::kRequired),
                                  "ZYPRA0141E: Can't move file/dir  '" +
                                      folder_.narrow("closed/s") + "' : Permission denied");
}

// --- The program to restart with ---

std::optional<std::wstring> restartExe(const Arguments& arguments, const PropertyList& properties) {
    return getRestartExe(arguments, properties, L"/opt/i");
}

TEST_F(Reset, RestartProgramIsThatOfTheNamedConfiguration) {
    const PropertyList properties =
        listOf({{L"config.initial.restartExe.macosx", L"${rcp.home}\\bin/x ${rcp.home}"},
                {L"config.other.restartExe.macosx", L"/other"}});
    EXPECT_EQ(restartExe({L"p", L"-config", L"initial"}, properties), L"/opt/i/bin/x ${rcp.home}");
    EXPECT_EQ(restartExe({L"p", L"-config", L"other"}, properties), L"/other");
    EXPECT_EQ(restartExe({L"p", L"-config", L"other", L"-config", L"initial"}, properties),
              L"/other");
}

TEST_F(Reset, RestartProgramIsNoneWithoutANamedConfigurationThatHasOne) {
    const PropertyList properties = listOf(
        {{L"config.initial.restartExe.macosx", L"/x"}, {L"config.linux.restartExe.linux", L"/y"}});
    for (const Arguments& arguments :
         {Arguments{L"p"}, Arguments{L"p", L"-config"}, Arguments{L"p", L"-config", L"none"},
          Arguments{L"p", L"-config", L"linux"}, Arguments{L"p", L"-Config", L"initial"}}) {
        EXPECT_EQ(restartExe(arguments, properties), std::nullopt);
    }
}

}  // namespace
}  // namespace rcp::test
