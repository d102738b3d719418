#include "inspect/check/finding.h"
#include "inspect/commands.h"
#include "inspect/explain/rehearse_launch.h"
#include "inspect/messages.h"
#include "inspect/why/beyond.h"
#include "inspect/why/chains.h"

#include <algorithm>
#include <exception>
#include <iostream>

namespace rcp::inspect {
namespace {

using nlohmann::json;

json aboutMessages(const std::string& subject) {
    json chains = json::array();
    for (const MessageRecord& message : messages()) {
        if (!message.id.empty() && message.id.substr(0, message.id.find(' ')) == subject) {
            json chain{{"what", message.id + ": " + message.text}, {"steps", json::array()}};
            if (!message.step.empty()) {
                chain["steps"].push_back({{"step", "while"}, {"text", message.step}});
            }
            chain["steps"].push_back({{"step", "remedy"}, {"text", message.remedy}});
            chains.push_back(chain);
        }
    }
    return chains;
}

json aboutFinding(const std::string& subject) {
    json chains = json::array();
    for (const FindingRule& rule : findingRules()) {
        if (subject == rule.code || subject == rule.name) {
            chains.push_back({{"what", std::string(rule.code) + " " + rule.name +
                                           ", of check: " + levelName(rule.level)},
                              {"steps",
                               {{{"step", "meaning"}, {"text", rule.meaning}},
                                {{"step", "remedy"}, {"text", rule.remedy}}}}});
        }
    }
    return chains;
}

// A number is known in small letters too.
json aboutNumber(const std::string& subject) {
    std::string number = subject;
    std::transform(number.begin(), number.end(), number.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    });
    for (const json& chains :
         {aboutMessages(number), aboutFinding(number), aboutFinding(subject)}) {
        if (!chains.empty()) {
            return chains;
        }
    }
    return json::array();
}

json chainsAbout(const Options& options) {
    return needsLaunch(options.subject)
               ? launchChains(explainLaunch(options), beyondChains(options), options.subject)
               : aboutNumber(options.subject);
}

std::string toText(const json& chains, const std::string& subject) {
    if (chains.empty()) {
        return "nothing of a launch has to do with \"" + subject + "\"\n";
    }
    constexpr std::size_t kColumn = 10;
    std::string text;
    for (const json& chain : chains) {
        text += (text.empty() ? "" : "\n") + chain["what"].get<std::string>() + "\n";
        for (const json& step : chain["steps"]) {
            const std::string name = step["step"];
            text += "  " + name +
                    std::string(name.size() < kColumn ? kColumn - name.size() : 1, ' ') +
                    step["text"].get<std::string>() + "\n";
        }
    }
    return text;
}

}  // namespace

bool needsLaunch(const std::string& subject) {
    return aboutNumber(subject).empty();
}

int why(const Options& options) {
    if (options.subject.empty()) {
        std::cerr << "rcpinspect: why wants an option, a key, a variable, a path or a message's "
                     "number, such as -Xmx or rcp.data\n";
        return kWrongUse;
    }
    try {
        const json chains = chainsAbout(options);
        if (options.format == Format::kJson) {
            const json told{{"layout", 1},
                            {"command", "why"},
                            {"subject", options.subject},
                            {"chains", chains}};
            std::cout << told.dump(2, ' ', false, json::error_handler_t::replace) << '\n';
        } else {
            std::cout << toText(chains, options.subject);
        }
        return chains.empty() ? kUnknown : kSuccess;
    } catch (const std::exception& problem) {
        std::cerr << "rcpinspect: " << problem.what() << '\n';
        return kFailure;
    }
}

}  // namespace rcp::inspect
