#include "launcher/inputs/traits.h"

#include "launcher/vocabulary/keys.h"
#include "platform/install_location.h"
#include "platform/platform.h"

#include <charconv>

namespace rcp {

Traits traitsOf(const PropertyList& properties, Start start) {
    return {.eConfig = installConfigurationOf(properties),
            .invokeDylib = handsOffInProcess(properties),
            .start = start};
}

bool handsOffInProcess(const PropertyList& properties) {
    const std::string path = launcherExecutable();
    if (path.substr(path.rfind('/') + 1) != "rcplauncher") {
        return true;
    }
    if (const std::wstring* value = findProperty(keys::kInvokeEclipseDylib, properties)) {
        return *value == L"1";
    }
    return isInProcessVersion(platform::productVersion());
}

bool isInProcessVersion(const std::string& version) {
    const char* const end = version.data() + version.size();
    unsigned major = 0;
    unsigned minor = 0;
    const char* dot = std::from_chars(version.data(), end, major).ptr;
    if (dot != end && *dot == '.') {
        std::from_chars(dot + 1, end, minor);
    }
    return major == 10 && minor == 15;
}

std::wstring getMainProcessName(const Traits& traits, const PropertyList& properties) {
    return traits.invokeDylib ? L"Velmo" : getEclipseExeName(properties);
}

std::wstring getEclipseExeName(const PropertyList& properties) {
    const std::wstring* property = findProperty(keys::kEclipseName, properties);
    return property == nullptr ? defaults::kEclipseName : *property;
}

}  // namespace rcp
