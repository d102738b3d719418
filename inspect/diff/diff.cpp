#include "inspect/commands.h"
#include "inspect/diff/compare.h"
#include "inspect/locate.h"
#include "inspect/rehearsal/staged_tree.h"

#include <exception>
#include <iostream>

namespace rcp::inspect {
namespace {

using nlohmann::json;

// What a launch with the arguments of the recorded one would do now.
json sinceLast(const Options& options) {
    const RecordedLaunch last = recordedLaunch(options);
    Options again = options;
    again.arguments = last.arguments;
    return compare(last.side, explainedSide(again));
}

// What a staged tree brings is compared with what is installed.
Side otherSide(const Options& options) {
    const Unstaged own;
    Options other = options;
    other.launcher = options.other;
    other.installation = installationOf(options.other);
    return explainedSide(other);
}

json compareAsAsked(const Options& options) {
    if (options.isSinceLast) {
        return sinceLast(options);
    }
    return compare(otherSide(options), explainedSide(options));
}

}  // namespace

int diff(const Options& options) {
    if (options.isSinceLast != options.other.empty()) {
        std::cerr << "rcpinspect: diff wants either --with DIR or --since-last\n";
        return kWrongUse;
    }
    try {
        const json result = compareAsAsked(options);
        if (options.format == Format::kJson) {
            std::cout << result.dump(2, ' ', false, json::error_handler_t::replace) << '\n';
        } else {
            std::cout << differenceText(result, {options.isColored, options.isAll});
        }
        return result["isDifferent"] == true ? kDifferent : kSuccess;
    } catch (const std::exception& problem) {
        std::cerr << "rcpinspect: " << problem.what() << '\n';
        return kFailure;
    }
}

}  // namespace rcp::inspect
