// The account of a rehearsed launch, given at its end from the launch itself and what was witnessed.
#pragma once

#include "inspect/explain/losers.h"
#include "inspect/explain/sources.h"
#include "inspect/explain/witness.h"
#include "inspect/rehearsal/rehearsal.h"
#include "launcher/launch.h"

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace rcp::inspect {

using Variables = std::map<std::string, std::string>;

/// The variables of this process.
Variables environmentNow();

struct Account {
    const Witness& witness;
    const Sources& sources;
    const Launch& launch;
    const Losers& losers;
    const CommandLine& line;  // the plan's; empty where the launch ended before it had one
    const Variables& before;  // the environment at the beginning
    int status;               // of the launch's end
};

/// The parts of the layout, each as its name says.
nlohmann::json describeElements(const Account& account);
nlohmann::json describeDropped(const Account& account);
nlohmann::json describeEnvironment(const Account& account);
nlohmann::json describeFiles(const Account& account);
nlohmann::json describeChanges(const Rehearsal& rehearsal);
/// The lines of the launch's log.
nlohmann::json describeRecords(const Rehearsal& rehearsal);
/// How the launch ended as far as it knows itself: kind, role and program.
nlohmann::json describeOutcome(const Launch& launch);

/// The facts of the layout. Asked of the real tree, as the launch found it.
nlohmann::json describeFacts(const Account& account, const nlohmann::json& outcome);

/// The elements that come from there, as the reader counts them.
std::vector<std::size_t> elementsFrom(const Origin& origin, const Account& account);

}  // namespace rcp::inspect
