#include "inspect/check/launcher_end.h"
#include "inspect/commands.h"
#include "inspect/doctor/answers.h"
#include "launcher/process_entry.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <nlohmann/json.hpp>

namespace rcp::inspect {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kColumn = 24;
// So many problems of one answer are shown; check shows the rest.
constexpr std::size_t kShown = 2;

struct Sign {
    const char* name;
    const char* glyph;
    const char* color;
};

Sign signOf(Mark mark) {
    switch (mark) {
        case Mark::kGood:
            return {"good", "✓", "\033[32m"};
        case Mark::kOdd:
            return {"odd", "!", "\033[33m"};
        default:
            return {"bad", "✗", "\033[31m"};
    }
}

std::string lineOf(const Answer& answer, bool isColored) {
    const Sign sign = signOf(answer.mark());
    const std::string glyph =
        isColored ? std::string(sign.color) + sign.glyph + "\033[0m" : sign.glyph;
    return glyph + " " + answer.question +
           std::string(answer.question.size() < kColumn ? kColumn - answer.question.size() : 1,
                       ' ') +
           answer.text + "\n";
}

std::string problemsText(const Answer& answer) {
    std::string text;
    const std::size_t shown = std::min(answer.problems.size(), kShown);
    for (std::size_t i = 0; i < shown; ++i) {
        const Problem& problem = answer.problems[i];
        text += "    " + (problem.place.empty() ? "" : problem.place + ": ") + problem.cause + "\n";
        text += problem.remedy.empty() ? "" : "    -> " + problem.remedy + "\n";
    }
    if (shown < answer.problems.size()) {
        text += "    … and " + std::to_string(answer.problems.size() - shown) +
                " more; rcpinspect check lists them\n";
    }
    return text;
}

std::string toText(const std::vector<Answer>& all, bool isColored) {
    std::string text;
    for (const Answer& answer : all) {
        text += lineOf(answer, isColored) + problemsText(answer);
    }
    return text;
}

Json toJson(const std::vector<Answer>& all, const Options& options) {
    Json told = Json::array();
    for (const Answer& answer : all) {
        Json problems = Json::array();
        for (const Problem& problem : answer.problems) {
            problems.push_back({{"mark", signOf(problem.mark).name},
                                {"cause", problem.cause},
                                {"place", problem.place},
                                {"remedy", problem.remedy}});
        }
        told.push_back({{"question", answer.question},
                        {"mark", signOf(answer.mark()).name},
                        {"text", answer.text},
                        {"problems", problems}});
    }
    return {{"layout", 1},
            {"command", "doctor"},
            {"launcher", options.launcher},
            {"installation", options.installation},
            {"answers", told}};
}

// 0 all is good, 1 something is odd, 2 something is bad: as check's.
int statusOf(const std::vector<Answer>& all) {
    Mark worst = Mark::kGood;
    for (const Answer& answer : all) {
        worst = std::max(worst, answer.mark());
    }
    return static_cast<int>(worst);
}

}  // namespace

int doctor(const Options& options) {
    endOf(&setCharacterLocale);  // texts are read as the launcher reads them
    try {
        const std::vector<Answer> all = answers(options);
        if (options.format == Format::kJson) {
            std::cout << toJson(all, options).dump(2, ' ', false, Json::error_handler_t::replace)
                      << '\n';
        } else {
            std::cout << toText(all, options.isColored);
        }
        return statusOf(all);
    } catch (const std::exception& problem) {
        std::cerr << "rcpinspect: " << problem.what() << '\n';
        return kFailure;
    }
}

}  // namespace rcp::inspect
