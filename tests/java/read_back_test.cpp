// The Java side gets back exactly the launcher's text: everything the launcher escapes is read with
// the JRE's own java.util.Properties.
#include "launcher/properties/java_properties.h"
#include "launcher/user_area/startup_arguments.h"
#include "launcher/user_area/user_files.h"
#include "platform/text.h"
#include "tests/unit/long_values.h"

#include <gtest/gtest.h>
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <utility>

namespace rcp {
namespace {

// A JVM that lives for a moment compiles little and collects nothing.
const std::string kJava = "java -XX:TieredStopAtLevel=1 -XX:+UseSerialGC";

using Entries = std::map<std::wstring, std::wstring>;

// The output of a shell command and whether it ended with status 0.
std::pair<std::string, bool> outputOf(const std::string& command) {
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return {output, false};
    }
    std::array<char, 65536> buffer{};
    std::size_t length = 0;
    while ((length = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
        output.append(buffer.data(), length);
    }
    return {output, pclose(pipe) == 0};
}

std::wstring fromDigits(const std::string& digits) {
    std::wstring text;
    for (std::size_t at = 0; at + 4 <= digits.size(); at += 4) {
        text += static_cast<wchar_t>(std::stoul(digits.substr(at, 4), nullptr, 16));
    }
    return text;
}

std::string shown(const std::wstring& text) {
    const std::wstring escaped = convWcharTo8859_1_Key(text);
    return {escaped.begin(), escaped.end()};
}

class JavaReadBack : public testing::Test {
  protected:
    void SetUp() override {
        setlocale(LC_CTYPE, "C.UTF-8");
        static const bool hasJava =
            outputOf(kJava + " --list-modules 2>/dev/null | grep jdk.compiler").second;
        if (!hasJava) {
            GTEST_SKIP() << "no JRE that runs a source file";
        }
        std::filesystem::create_directories(JAVA_FOLDER);
        folder = JAVA_FOLDER "/XXXXXX";
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
    }
    void TearDown() override {
        if (!folder.empty()) {
            std::filesystem::remove_all(folder);
        }
    }

    [[nodiscard]] static Entries read(const std::string& file) {
        const auto [output, succeeded] =
            outputOf(kJava + " '" JAVA_READ_BACK "' '" + file + "' 2>&1");
        EXPECT_TRUE(succeeded) << output.substr(0, 1000);
        Entries entries;
        std::size_t at = 0;
        for (std::size_t end = output.find('\n'); end != std::string::npos && succeeded;
             at = end + 1, end = output.find('\n', at)) {
            const std::size_t equals = output.find('=', at);
            entries[fromDigits(output.substr(at, equals - at))] =
                fromDigits(output.substr(equals + 1, end - equals - 1));
        }
        return entries;
    }

    // Writes the entries as the launcher does and reads them back.
    [[nodiscard]] Entries readBack(const Entries& entries) const {
        const std::string file = folder + "/escaped.properties";
        std::ofstream out(file, std::ios::binary);
        for (const auto& [key, value] : entries) {
            out << toNarrow(convWcharTo8859_1_Key(key)) << '='
                << toNarrow(convWcharTo8859_1_Value(value)) << '\n';
        }
        out.close();
        return read(file);
    }

    static void expectEqual(const Entries& expected, const Entries& actual) {
        EXPECT_EQ(expected.size(), actual.size());
        int shownDifferences = 0;
        for (const auto& [key, value] : expected) {
            const auto found = actual.find(key);
            if (found == actual.end() || found->second != value) {
                ADD_FAILURE() << "key " << shown(key) << "\nwritten " << shown(value) << "\nread "
                              << (found == actual.end() ? "(nothing)" : shown(found->second));
                if (++shownDifferences == 5) {
                    return;
                }
            }
        }
    }

    std::string folder;
};

// Escaping in front of a value's first character is not the launcher's way, and the Java reader
// skips blanks there: only those are lost. Every other white space is written as a number.
std::wstring asValue(const std::wstring& text) {
    return text.substr(std::min(text.find_first_not_of(L' '), text.size()));
}

constexpr wchar_t kLastCharacter = 0xFFFF;

// A text of every kind of character that could go wrong, and blanks at both ends now and then.
std::wstring makeText(std::mt19937& random) {
    static const std::wstring special = L" \t\n\r\f#!=:\\\"'%u0";
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    std::wstring text;
    const std::size_t length = below(24);
    while (text.size() < length) {
        switch (random() % 5) {
            case 0:
            case 1:
                text += special[below(special.size())];
                break;
            case 2:
                text += static_cast<wchar_t>(below(0x100));
                break;
            case 3:
                text += static_cast<wchar_t>(0x4E00 + below(0x5200));
                break;
            default:
                text += static_cast<wchar_t>(below(0x10000));
        }
    }
    if (random() % 4 == 0) {
        text = L" " + text;
    }
    if (random() % 4 == 0) {
        text += L"  ";
    }
    return text;
}

TEST_F(JavaReadBack, EveryCharacterOfAValueComesBack) {
    Entries entries;
    for (wchar_t c = 0; c <= kLastCharacter; ++c) {
        entries[L"k" + std::to_wstring(c)] = {L'x', c, c, L'y', c};
    }
    expectEqual(entries, readBack(entries));
}

TEST_F(JavaReadBack, EveryCharacterOfAKeyComesBack) {
    Entries entries;
    for (wchar_t c = 0; c <= kLastCharacter; ++c) {
        entries[{c}] = std::to_wstring(c);
        entries[{c, L'x', c}] = L"";
    }
    expectEqual(entries, readBack(entries));
}

TEST_F(JavaReadBack, FirstCharacterOfAValueComesBackUnlessItIsABlank) {
    Entries entries;
    Entries expected;
    for (wchar_t c = 0; c <= kLastCharacter; ++c) {
        const std::wstring key = L"k" + std::to_wstring(c);
        entries[key] = {c, L'x'};
        expected[key] = c == L' ' ? L"x" : entries[key];
    }
    expectEqual(expected, readBack(entries));
}

TEST_F(JavaReadBack, GeneratedTextsComeBack) {
    std::mt19937 random(1);  // NOLINT: the same texts in every run
    Entries entries;
    Entries expected;
    for (int i = 0; i < 20'000; ++i) {
        const std::wstring key = makeText(random) + std::to_wstring(i);
        const std::wstring value = makeText(random);
        entries[key] = value;
        expected[key] = asValue(value);
    }
    expectEqual(expected, readBack(entries));
}

TEST_F(JavaReadBack, RecordedArgumentsComeBack) {
    std::mt19937 random(2);  // NOLINT: the same texts in every run
    Arguments arguments = {L"rcplauncher"};
    const std::wstring restartExe = L"/日本/é x#!=:\\";
    Entries expected = {{L"arg0", restartExe},
                        {L"argc", L"3001"},
                        {L"com.ovr.rcp.core.internal.librarypath", L"/ä: /b=c "}};
    for (int i = 1; i <= 3000; ++i) {
        arguments.push_back(makeText(random));
        expected[L"arg" + std::to_wstring(i)] = asValue(arguments.back().text);
    }
    setenv("DYLD_LIBRARY_PATH", "/ä: /b=c ", 1);
    writeStartupArgs(arguments, toWide(folder), restartExe, {}, L"/opt/i");
    unsetenv("DYLD_LIBRARY_PATH");
    expectEqual(expected, read(folder + "/args.properties"));
}

TEST_F(JavaReadBack, PathsOfTheUsersFileComeBack) {
    std::mt19937 random(3);  // NOLINT: the same texts in every run
    std::ofstream(folder + "/core.properties");
    for (int i = 0; i < 3; ++i) {
        std::wstring paths[] = {L"/jre ", L"/base"};
        for (int part = 0; part < 200; ++part) {
            paths[part % 2] += L"/" + makeText(random);
        }
        std::wstring expected[2];
        for (int k = 0; k < 2; ++k) {
            std::erase(paths[k], L'%');  // the lines are their own format, where it has a meaning
            expected[k] = paths[k];
            convertBS2S(expected[k]);
        }
        PropertyList properties;
        properties.append({L"rcp.install.id", L"abc", {}});
        properties.append({L"jvm.location", paths[0], {}});
        properties.append({L"rcp.base.location", paths[1], {}});
        const std::string target = folder + "/rcpinstall.properties";
        ASSERT_TRUE(fixUserRCPInstallProperties(toWide(folder + "/core.properties"), toWide(target),
                                                properties));
        expectEqual({{L"rcp.install.id", L"abc"},
                     {L"vm", expected[0]},
                     {L"rcp.base.location", expected[1]},
                     {L"install.configuration", L"user"}},
                    read(target));
    }
}

TEST_F(JavaReadBack, LongValuesComeBackFromSeveralLines) {
    const std::string file = folder + "/long.properties";
    std::ofstream out(file, std::ios::binary);
    Entries expected;
    for (const std::wstring& value : test::longValues()) {
        const std::wstring key = L"k" + std::to_wstring(expected.size());
        const std::string written = toNarrow(test::escapedValue(value));
        out << propertyLines(toNarrow(key), written);
        expected[key] = key.size() + written.size() < 2000 ? asValue(value) : value;
    }
    out.close();
    expectEqual(expected, read(file));
}

// What is not escaped is not printable ASCII either; on one line and on several it means the same.
TEST_F(JavaReadBack, LongValuesThatAreNotEscapedMeanWhatTheyMeantOnOneLine) {
    std::mt19937 random(6);  // NOLINT: the same values in every run
    std::ofstream single(folder + "/single.properties", std::ios::binary);
    std::ofstream several(folder + "/several.properties", std::ios::binary);
    for (const std::size_t length : test::longLengths()) {
        const std::string key = "k" + std::to_string(length);
        const std::string raw = test::longRawValue(random, length);
        single << key << '=' << raw << '\n';
        several << propertyLines(key, raw);
    }
    single.close();
    several.close();
    expectEqual(read(folder + "/single.properties"), read(folder + "/several.properties"));
}

TEST_F(JavaReadBack, LongRecordedArgumentsComeBack) {
    const std::wstring restartExe = L"/r/exe";
    Arguments arguments = {L"rcplauncher"};
    for (const std::wstring& value : test::longValues()) {
        arguments.push_back(L"velmo://" + value);
    }
    unsetenv("DYLD_LIBRARY_PATH");
    writeStartupArgs(arguments, toWide(folder), restartExe, {}, L"/opt/i");
    Entries expected = {{L"arg0", restartExe},
                        {L"argc", std::to_wstring(arguments.size())},
                        {L"com.ovr.rcp.core.internal.librarypath", L""}};
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        expected[L"arg" + std::to_wstring(i)] = arguments[i].text;
    }
    expectEqual(expected, read(folder + "/args.properties"));
}

}  // namespace
}  // namespace rcp
