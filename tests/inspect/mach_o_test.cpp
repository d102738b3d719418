// The reader of Mach-O files: what it finds, and that no file can lead it out of its bytes.
#include "inspect/bundle/mach_o.h"

#include "mach_o_fixture.h"
#include "tests/support/sandbox.h"
#include "tests/unit/paths.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <random>
#include <sstream>

namespace rcp::inspect {
namespace {

MachO everything() {
    MachO file;
    file.type = 6;
    file.weakLibraries = {"@rpath/libmaybe.dylib"};
    file.upwardLibraries = {"@rpath/libabove.dylib"};
    file.searchPaths = {"@loader_path/../lib"};
    file.ownName = "@rpath/libmine.dylib";
    file.signatureFlags = 0x10002;
    file.entitlements = "<plist/>";
    return file;
}

TEST(MachOReader, FindsWhatTheFileSays) {
    const auto images = readMachO(everything().bytes());
    ASSERT_TRUE(images);
    ASSERT_EQ(images->size(), 1U);
    const CodeImage& image = images->front();
    EXPECT_EQ(image.processor, "x86_64");
    EXPECT_EQ(image.kind, CodeKind::kLibrary);
    EXPECT_EQ(image.oldestSystem, (SystemVersion{10, 13}));
    EXPECT_EQ(image.ownName, "@rpath/libmine.dylib");
    ASSERT_EQ(image.libraries.size(), 3U);
    EXPECT_EQ(image.libraries[0].name, "/usr/lib/libSystem.B.dylib");
    EXPECT_FALSE(image.libraries[0].mayBeMissing);
    EXPECT_TRUE(image.libraries[1].mayBeMissing);
    EXPECT_EQ(image.libraries[2].name, "@rpath/libabove.dylib");
    EXPECT_FALSE(image.libraries[2].mayBeMissing);
    EXPECT_EQ(image.searchPaths, std::vector<std::string>{"@loader_path/../lib"});
    ASSERT_TRUE(image.signature);
    EXPECT_EQ(image.signature->identifier, "com.example");
    EXPECT_TRUE(image.signature->isAdHoc);
    EXPECT_TRUE(image.signature->isHardened);
    EXPECT_EQ(image.signature->entitlements, "<plist/>");
}

TEST(MachOReader, FindsEveryProcessor) {
    MachO other = everything();
    other.processor = kArm64;
    const auto images = readMachO(universal({everything(), other}));
    ASSERT_TRUE(images);
    ASSERT_EQ(images->size(), 2U);
    EXPECT_EQ((*images)[0].processor, "x86_64");
    EXPECT_EQ((*images)[1].processor, "arm64");
}

TEST(MachOReader, KnowsItsFilesByTheirStart) {
    EXPECT_TRUE(looksLikeMachO(MachO().bytes()));
    EXPECT_TRUE(looksLikeMachO(universal({MachO()})));
    EXPECT_FALSE(looksLikeMachO(std::string("\xCA\xFE\xBA\xBE\0\0\0\x3D", 8))) << "a Java class";
    EXPECT_FALSE(looksLikeMachO("#!/bin/sh\n"));
    EXPECT_FALSE(looksLikeMachO(""));
}

// What is signed is what is checked: the script that signs is asked the same (tests/packages/check-signing).
TEST(MachOReader, KnowsTheKindsThatAreSigned) {
    std::ifstream table(rcp::test::seen(UNIT_DATA "/code_files.txt"));
    std::map<std::string, int> kinds;
    for (std::string line; std::getline(table, line);) {
        if (line.starts_with('#')) {
            continue;
        }
        std::istringstream fields(line);
        std::string kind;
        std::string what;
        std::string digits;
        std::getline(std::getline(std::getline(fields, kind, '\t'), what, '\t'), digits);
        std::string file;
        for (std::size_t at = 0; at < digits.size(); at += 2) {
            file += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
        }
        const auto images = looksLikeMachO(file.substr(0, 16)) ? readMachO(file) : std::nullopt;
        const CodeKind found = images ? images->front().kind : CodeKind::kOther;
        const bool isLibrary = found == CodeKind::kLibrary || found == CodeKind::kPlugin;
        EXPECT_EQ(found == CodeKind::kProgram ? "program"
                  : isLibrary                 ? "library"
                                              : "none",
                  kind)
            << what;
        ++kinds[kind];
    }
    EXPECT_GE(kinds["program"], 5);
    EXPECT_GE(kinds["library"], 5);
    EXPECT_GE(kinds["none"], 5);
}

// A text may end with its file, so a file may be whole without its last padding.
TEST(MachOReader, RefusesEveryShortenedFile) {
    MachO other = everything();
    other.processor = kArm64;
    for (const std::string& file : {everything().bytes(), universal({everything(), other})}) {
        for (std::size_t size = 0; size < file.size(); ++size) {
            EXPECT_FALSE(readMachO(std::string(file, 0, size))) << size;
        }
    }
}

// Each would have the same bytes read once more, as often as a small file has room to ask for it.
TEST(MachOReader, RefusesASecondSignature) {
    MachO file = everything();
    file.signatureCommands = 2;
    EXPECT_FALSE(readMachO(file.bytes()));
    file.signatureCommands = 4096;
    file.entitlements = std::string(std::size_t{1} << 20, 'x');
    EXPECT_FALSE(readMachO(file.bytes()));
    file.signatureCommands = 1;
    EXPECT_TRUE(readMachO(file.bytes()));
}

TEST(MachOReader, RefusesSecondEntitlements) {
    MachO file = everything();
    file.entitlementsBlobs = 2;
    EXPECT_FALSE(readMachO(file.bytes()));
    file.entitlements.clear();
    EXPECT_FALSE(readMachO(file.bytes())) << "empty ones are some too";
}

TEST(MachOReader, RefusesPartsThatOverlap) {
    // Where the head has the position and the size of a part.
    constexpr std::size_t kFirst = 16;
    constexpr std::size_t kSecond = kFirst + 20;
    constexpr std::size_t kSize = 8;
    const std::string whole = universal({everything(), MachO()});
    std::string turned = whole;
    turned.replace(kFirst, kSize, whole, kSecond, kSize)
        .replace(kSecond, kSize, whole, kFirst, kSize);
    EXPECT_TRUE(readMachO(turned)) << "in any order";
    std::string same = whole;
    same.replace(kSecond, kSize, whole, kFirst, kSize);
    EXPECT_FALSE(readMachO(same));
    for (std::string one : {whole, turned}) {
        ++one[(one == whole ? kFirst : kSecond) + kSize - 1];
        EXPECT_FALSE(readMachO(one)) << "by one byte";
    }
}

TEST(MachOReader, StaysInsideOfEveryDamagedFile) {
    const std::string whole = universal({everything(), MachO()});
    std::minstd_rand random(18);
    std::size_t refused = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string file = whole;
        for (int j = 0; j <= i % 4; ++j) {
            file[random() % file.size()] = static_cast<char>(random());
        }
        refused += readMachO(file) ? 0 : 1;
    }
    EXPECT_GT(refused, 0U);
}

TEST(MachOReader, ReadsVersionsOfSystems) {
    EXPECT_EQ(versionOf("10.13"), (SystemVersion{10, 13}));
    EXPECT_EQ(versionOf("10.15.7"), (SystemVersion{10, 15}));
    EXPECT_EQ(versionOf("11"), (SystemVersion{11, 0}));
    for (const char* text : {"", ".", "10.", "a", "10a", "10.1b", "-1"}) {
        EXPECT_FALSE(versionOf(text)) << text;
    }
    EXPECT_EQ(textOf({10, 9}), "10.9");
    EXPECT_LT((SystemVersion{10, 9}), (SystemVersion{10, 13}));
}

}  // namespace
}  // namespace rcp::inspect
