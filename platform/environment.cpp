#include "platform/environment.h"

#include "base/system_calls.h"
#include "diagnostics/svc_debug.h"
#include "platform/text.h"

#include <stdlib.h>
#include <unistd.h>

namespace rcp {

const wchar_t* getEnv(const std::wstring& name, std::wstring& value) {
    const char* found = getenv(toNarrow(name).c_str());
    if (found == nullptr) {
        value.clear();
        SvcDebugOutW(L"ZYPRA0081I:  Environmental variable '%s' is not set\n", name);
        return nullptr;
    }
    return chartowstr(found, value);
}

bool setEnv(const std::wstring& name, const std::wstring& value, bool overwrite) {
    const std::string narrow = toNarrow(value);
    if (narrow.empty() && !value.empty()) {
        report(noReason(),
               "Error: setEnv: the value of %ls is no text of this locale; the variable stays.",
               name);
        return true;
    }
    return setenv(toNarrow(name).c_str(), narrow.c_str(), overwrite ? 1 : 0) != 0;
}

bool unsetEnv(const std::wstring& name) {
    unsetenv(toNarrow(name).c_str());
    return true;
}

const wchar_t* getUserHome(std::wstring& home) {
    getEnv(L"HOME", home);
    return home.c_str();
}

bool userIsAdmin(const std::wstring& /*user*/) {
    return getuid() == 0;
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
