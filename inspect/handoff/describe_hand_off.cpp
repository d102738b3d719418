#include "inspect/handoff/describe_hand_off.h"

#include "diagnostics/format.h"
#include "diagnostics/messages.h"
#include "inspect/handoff/code_faults.h"
#include "inspect/handoff/room.h"

#include <string.h>

#include <array>

namespace rcp::inspect {
namespace {

using nlohmann::json;

constexpr int kFatalStatus = 255;

template <typename... Values>
std::string recordOf(const MessageRow& message, const Values&... values) {
    const std::array<FormatArgument, sizeof...(Values)> arguments{std::string_view(values)...};
    return expandFormat(message.format, arguments);
}

void settleProgram(json& outcome, const std::string& program) {
    if (const auto fault = startFault(program)) {
        outcome["kind"] = "ends";
        outcome["record"] =
            recordOf(messages.programNotStarted, program) + " : " + strerror(fault->error);
    }
}

void settleLibrary(json& outcome, const std::string& library, const std::string& libraryPath) {
    if (const auto fault = loadFault(library, kPlatformEntryPoints, libraryPath)) {
        outcome["kind"] = "fatal";
        outcome["status"] = kFatalStatus;
        outcome["record"] = recordOf(messages.libraryNotUsable, library, *fault);
    }
}

}  // namespace

void settleHandOff(json& outcome, const std::string& libraryPath) {
    const std::string kind = outcome["kind"];
    if (kind == "ends") {
        return;
    }
    const std::string program = outcome["program"];
    kind == "in-process" ? settleLibrary(outcome, program, libraryPath)
                         : settleProgram(outcome, program);
    if (outcome["kind"] == kind) {
        outcome["beyond"] =
            "handed to " + program + "; what the platform does then is not rehearsed";
    }
}

std::vector<Examined> tellObstacle(json& launch, const Examination& examination) {
    std::vector<Examined> handOff = examineHandOff(examination);
    handOff.push_back(examineRoom(launch["writes"]));
    json& outcome = launch["outcome"];
    const Fault* obstacle = obstacleIn(handOff);
    if (obstacle != nullptr && outcome.contains("beyond")) {
        outcome["obstacle"] = obstacle->code;
    }
    return handOff;
}

json describeHandOff(const std::vector<Examined>& handOff) {
    json all = json::array();
    for (const Examined& examined : handOff) {
        json faults = json::array();
        for (const Fault& fault : examined.faults) {
            faults.push_back({{"code", fault.code},
                              {"file", fault.file},
                              {"line", fault.line},
                              {"message", fault.message}});
        }
        all.push_back({{"what", examined.what}, {"path", examined.path}, {"faults", faults}});
    }
    // Names and values need not be UTF-8.
    return json::parse(all.dump(-1, ' ', false, json::error_handler_t::replace));
}

}  // namespace rcp::inspect
