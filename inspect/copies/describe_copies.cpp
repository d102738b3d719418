#include "inspect/copies/describe_copies.h"

#include "inspect/copies/user_copies.h"
#include "platform/text.h"

namespace rcp::inspect {

using nlohmann::json;

json describeStaleCopies(const Examination& examination) {
    json copies = json::array();
    for (const StaleEntry& entry : staleEntries(examination)) {
        copies.push_back({{"copy", toNarrow(entry.copy)},
                          {"master", toNarrow(entry.master)},
                          {"line", entry.line},
                          {"message", entry.message()}});
    }
    // Names and values need not be UTF-8.
    return json::parse(copies.dump(-1, ' ', false, json::error_handler_t::replace));
}

}  // namespace rcp::inspect
