#include "inspect/commands.h"
#include "inspect/copies/describe_copies.h"
#include "inspect/explain/explain_text.h"
#include "inspect/explain/rehearse_launch.h"
#include "inspect/handoff/describe_hand_off.h"

#include <exception>
#include <iostream>
#include <utility>
#include <vector>

namespace rcp::inspect {

int explain(const Options& options) {
    try {
        nlohmann::json explanation = explainLaunch(options);
        const Examination examination = examine(options);
        explanation["copies"] = describeStaleCopies(examination);
        explanation["handOff"] = describeHandOff(tellObstacle(explanation, examination));
        if (options.format == Format::kJson) {
            std::cout << explanation.dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
                      << '\n';
        } else {
            std::cout << explanationText(explanation, {options.isColored, options.isAll});
        }
    } catch (const std::exception& problem) {
        std::cerr << "rcpinspect: " << problem.what() << '\n';
        return kFailure;
    }
    return kSuccess;
}

}  // namespace rcp::inspect
