#include "inspect/expansion.h"

#include "launcher/vocabulary/variables.h"

namespace rcp::inspect {

std::wstring expanded(std::wstring value, Expansion expansion, const StandardLocations& locations) {
    switch (expansion) {
        case Expansion::kNone:
            break;
        case Expansion::kRcpHome:
            replaceEvery(value, placeholders::kRcpHome, locations.installDir);
            break;
        case Expansion::kWorkspace:
            replaceEvery(value, placeholders::kWorkspaceLocation, locations.workspace);
            break;
        case Expansion::kStandard:
        case Expansion::kAll:
            replaceStdPlaceholders(locations, value);
            break;
    }
    return value;
}

}  // namespace rcp::inspect
