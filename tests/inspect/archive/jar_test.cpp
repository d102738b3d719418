#include "inspect/archive/jar.h"

#include "inspect/archive/zip_archive.h"
#include "inspect/quiet_read.h"
#include "tests/support/sandbox.h"
#include "tests/unit/fixture.h"
#include "tests/unit/paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace rcp::inspect {
namespace {

class Jar : public ::testing::Test {
  protected:
    Jar()
        : bytes_(
              readQuietly(std::filesystem::path(rcp::test::seen(STANDIN_PLATFORM)).parent_path() /
                          "standin.jar")) {}
    [[nodiscard]] std::optional<std::set<std::string>> entriesOf(const std::string& bytes) const {
        folder_.write("a.jar", bytes);
        return jarEntries(folder_.narrow("a.jar"));
    }
    rcp::test::TestFolder folder_;
    std::string bytes_;
};

TEST_F(Jar, TellsTheNamesOfWhatItHolds) {
    const auto entries = entriesOf(bytes_);
    ASSERT_TRUE(entries);
    EXPECT_THAT(*entries, ::testing::IsSupersetOf({"META-INF/MANIFEST.MF",
                                                   "org/eclipse/core/launcher/Main.class",
                                                   "org/eclipse/equinox/launcher/Main.class"}));
}

TEST_F(Jar, IsReadBehindWhatStandsInFrontOfIt) {
    EXPECT_EQ(entriesOf("#!/bin/sh\n" + bytes_), entriesOf(bytes_));
}

TEST_F(Jar, IsReadWithACommentAtItsEnd) {
    std::string commented = bytes_;
    commented[commented.size() - 2] = 3;
    EXPECT_EQ(entriesOf(commented + "abc"), entriesOf(bytes_));
    EXPECT_FALSE(entriesOf(commented + "ab"));
}

TEST_F(Jar, ThatWasCutOrIsNoneIsNone) {
    EXPECT_FALSE(entriesOf(""));
    EXPECT_FALSE(entriesOf("no jar"));
    for (std::size_t size = 1; size < bytes_.size(); size += 7) {
        EXPECT_FALSE(entriesOf(bytes_.substr(0, size))) << size;
    }
    EXPECT_FALSE(jarEntries(folder_.narrow("nothing")));
    EXPECT_FALSE(jarEntries(folder_.narrow()));
}

TEST_F(Jar, WhoseEntriesAreNotWhereItsDirectorySaysIsNone) {
    std::string other = bytes_;
    other.replace(0, 4, "none");
    EXPECT_FALSE(entriesOf(other));
    other = bytes_;
    ++other[other.size() - 12];  // the number of entries
    EXPECT_FALSE(entriesOf(other));
}

TEST_F(Jar, TellsTheClassThatItsManifestNames) {
    const auto named = [&](const std::string& manifest) {
        ZipArchive archive(0);
        archive.add(kManifest, manifest);
        folder_.write("b.jar", archive.bytes());
        return mainClassOf(folder_.narrow("b.jar"));
    };
    EXPECT_EQ(named("Manifest-Version: 1.0\r\nmain-class: a.b.Main\r\n"), "a.b.Main");
    EXPECT_EQ(named("Main-Class: a.\n b.Ma\n in \nOther: c\n"), "a.b.Main");
    EXPECT_EQ(named("Main-Class-Not: a\n\nMain-Class: b\n"), "");
    EXPECT_EQ(named(""), "");
    EXPECT_EQ(mainClassOf(folder_.narrow("nothing")), "");
}

TEST_F(Jar, WithAnyByteChangedIsReadToAnEnd) {
    for (std::size_t at = 0; at < bytes_.size(); ++at) {
        std::string other = bytes_;
        other[at] = '\xff';
        (void)entriesOf(other);
        (void)mainClassOf(folder_.narrow("a.jar"));
    }
}

}  // namespace
}  // namespace rcp::inspect
