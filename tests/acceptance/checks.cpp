#include "checks.h"

#include <algorithm>

namespace acceptance {

const char* const kDefaultJvm =
    "/Applications/ZUN Velmo.app/jre/Contents/Home/lib/jli/libjli.dylib";

namespace {

std::string numbered(const Texts& texts) {
    std::string result;
    for (size_t i = 0; i < texts.size(); ++i) {
        result += "  [" + std::to_string(i) + "] " + texts[i] + "\n";
    }
    return result;
}

Texts linesBetween(const std::string& log, const std::string& begin, const std::string& end) {
    const Texts lines = splitLines(log);
    auto first = std::find(lines.begin(), lines.end(), begin);
    const auto last = std::find(first, lines.end(), end);
    if (last == lines.end()) {
        return {"(not in the log)"};
    }
    return {first + 1, last};
}

bool isRecord(const std::string& line, const std::string& record) {
    return line == record || line.starts_with(record + " : ") || line.starts_with(record + " (");
}

}  // namespace

void expectList(const Texts& expected, const Texts& actual) {
    if (expected == actual) {
        return;
    }
    const auto [left, right] =
        std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
    ADD_FAILURE() << "first difference at [" << (left - expected.begin())
                  << "]\n  expected: " << (left == expected.end() ? "(end)" : *left)
                  << "\n  actual:   " << (right == actual.end() ? "(end)" : *right)
                  << "\nexpected\n"
                  << numbered(expected) << "actual\n"
                  << numbered(actual);
}

Texts splitLines(const std::string& text) {
    Texts lines;
    size_t begin = 0;
    for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', begin)) {
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    if (begin < text.size()) {
        lines.push_back(text.substr(begin));
    }
    return lines;
}

bool hasLine(const std::string& text, const std::string& line) {
    const Texts lines = splitLines(text);
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

bool hasLineStart(const std::string& text, const std::string& start) {
    const Texts lines = splitLines(text);
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string& line) { return line.starts_with(start); });
}

Texts launchParameters(const std::string& log) {
    return linesBetween(log, "ZYPRA0132I: ===== Begin Launch Parameters =====",
                        "ZYPRA0133I: ===== End Launch Parameters =====");
}

Texts provisioningParameters(const std::string& log) {
    return linesBetween(log, "ZYPRA0129I: ===== Begin Provisioning Parameters =====",
                        "ZYPRA0130I: ===== End Provisioning Parameters =====");
}

void expectFatal(const Launch& launch, const std::string& log, const std::string& record) {
    EXPECT_EQ(launch.status, 255) << "signal " << launch.signal;
    EXPECT_FALSE(launch.platform.has_value());
    EXPECT_EQ(launch.output, "");
    Texts lines = splitLines(log);
    while (!lines.empty() && lines.back().empty()) {
        lines.pop_back();
    }
    EXPECT_TRUE(!lines.empty() && isRecord(lines.back(), record))
        << "expected the last record: " << record << "\nlog: " << log;
}

void expectEarlyFatal(const Launch& launch, const std::string& record) {
    expectFatal(launch, launch.temporaryLog, record);
}

void expectLateFatal(const Launch& launch, const std::string& record) {
    expectFatal(launch, launch.log, record);
    EXPECT_EQ(launch.temporaryLog, "");
}

void expectBareRecord(const std::string& log, const std::string& record) {
    EXPECT_TRUE(hasLine(log, record)) << "expected: " << record << "\nlog: " << log;
}

}  // namespace acceptance
