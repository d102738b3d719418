#include "platform/environment.h"

#include "base/system_calls.h"
#include "diagnostics/svc_debug.h"
#include "launcher/vocabulary/variables.h"
#include "platform/text.h"

#include <stdlib.h>
#include <unistd.h>

namespace rcp {

std::optional<std::wstring> getEnv(VariableName name) {
    const char* found = getenv(toNarrow(std::wstring(name)).c_str());
    if (found == nullptr) {
        trace(messages.variableNotSet, name);
        return std::nullopt;
    }
    return toWide(found);
}

bool setEnv(VariableName name, const std::wstring& value, Overwrite overwrite) {
    const std::string narrow = toNarrow(value);
    if (narrow.empty() && !value.empty()) {
        report(noReason(), messages.valueNoText, name);
        return true;
    }
    return setenv(toNarrow(std::wstring(name)).c_str(), narrow.c_str(),
                  overwrite == Overwrite::kYes ? 1 : 0) != 0;
}

bool unsetEnv(VariableName name) {
    unsetenv(toNarrow(std::wstring(name)).c_str());
    return true;
}

std::wstring getUserHome() {
    return getEnv(variables::kHome).value_or(L"");
}

const wchar_t* getOS() {
    return L"macosx";
}

timeval getTick() {
    timeval now{};
    gettimeofday(&now, nullptr);
    return now;
}

unsigned sysSleep(unsigned seconds) {
    return calls::sleep(seconds);
}

}  // namespace rcp
