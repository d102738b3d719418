// The adapter's answers against the table of what Core Foundation answers. On a Mac they are its own; on Linux
// the table says where the adapter is known to differ.
#include "platform/platform.h"
#include "tests/support/sandbox.h"
#include "tests/unit/paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <vector>

namespace rcp::platform {
namespace {

#ifdef __APPLE__
constexpr bool kIsLinux = false;
#else
constexpr bool kIsLinux = true;
#endif

std::string unescaped(const std::string& text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            result += text[at];
        } else if (text[at + 1] == 'x') {
            result += static_cast<char>(std::stoi(text.substr(at + 2, 2), nullptr, 16));
            at += 3;
        } else {
            result += text[++at] == 'n' ? '\n' : '\t';
        }
    }
    return result;
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == separator) {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

std::string valueUnderA(const std::string& text) {
    const auto list = parsePropertyList(text);
    return list ? list->stringForKey("a").value_or("none") : "refused";
}

struct Question {
    std::size_t arguments;
    std::function<std::string(const std::vector<std::string>&)> ask;
};

const std::map<std::string, Question> kQuestions{
    {"path",
     {2, [](const auto& given) { return absolutePath(given[0], given[1]).value_or("none"); }}},
    {"same",
     {2, [](const auto& given) { return equalIgnoringCase(given[0], given[1]) ? "yes" : "no"; }}},
    {"list", {1, [](const auto& given) { return valueUnderA(given[0]); }}},
};

TEST(CoreFoundationTable, IsWhatTheAdapterAnswers) {
    std::ifstream table(test::seen(UNIT_DATA "/core_foundation.txt"));
    std::map<std::string, int> asked;
    std::size_t number = 0;
    for (std::string line; std::getline(table, line);) {
        ++number;
        if (line.starts_with('#')) {
            continue;
        }
        std::vector<std::string> fields = split(line, '\t');
        const Question& question = kQuestions.at(fields[0]);
        ASSERT_TRUE(
            fields.size() == question.arguments + 2 ||
            (fields.size() == question.arguments + 4 && fields[question.arguments + 2] == "linux"))
            << "line " << number;
        std::vector<std::string> given(fields.begin() + 1,
                                       fields.begin() + 1 + static_cast<long>(question.arguments));
        std::transform(given.begin(), given.end(), given.begin(), unescaped);
        const bool differs = fields.size() > question.arguments + 2;
        std::vector<std::string> right =
            split(kIsLinux && differs ? fields.back() : fields[question.arguments + 1], '|');
        std::transform(right.begin(), right.end(), right.begin(), unescaped);
        const std::string answer = question.ask(given);
        EXPECT_NE(std::find(right.begin(), right.end(), answer), right.end())
            << "line " << number << ": " << line << "\nanswers: " << answer;
        ++asked[fields[0]];
    }
    for (const auto& [name, question] : kQuestions) {
        EXPECT_GE(asked[name], 10) << name << " is hardly asked for";
    }
}

}  // namespace
}  // namespace rcp::platform
