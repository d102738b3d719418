#include "launcher/inputs/install_configuration.h"

#include "diagnostics/svc_debug.h"
#include "launcher/vocabulary/keys.h"

#include <string_view>

namespace rcp {

namespace {

struct NamedConfiguration {
    std::wstring_view name;
    InstallConfiguration code;
};

constexpr NamedConfiguration kConfigurations[] = {
    {L"service", InstallConfiguration::kService},
    {L"user", InstallConfiguration::kUser},
    {L"serial.multiuser", InstallConfiguration::kSerialMultiuser},
    {L"lockdown", InstallConfiguration::kLockdown},
    {L"userpb", InstallConfiguration::kUserpb},
    {L"multiuser", InstallConfiguration::kMultiuser},
};

InstallConfiguration codeOf(std::wstring_view name) {
    for (const NamedConfiguration& configuration : kConfigurations) {
        if (configuration.name == name) {
            return configuration.code;
        }
    }
    return InstallConfiguration::kUnknown;
}

}  // namespace

InstallConfiguration installConfigurationOf(const PropertyList& properties) {
    const std::wstring* name = findProperty(keys::kInstallConfiguration, properties);
    if (name == nullptr) {
        trace(messages.installConfigurationMissing);
        return InstallConfiguration::kUser;
    }
    return codeOf(*name);
}

bool isServiceConfig(InstallConfiguration configuration) {
    return configuration == InstallConfiguration::kService ||
           configuration == InstallConfiguration::kMultiuserServiceInit;
}

std::wstring installConfigurationName(InstallConfiguration configuration) {
    if (configuration == InstallConfiguration::kMultiuserServiceInit) {
        return L"multiuser";  // the platform knows no name of its own for the initialisation
    }
    for (const NamedConfiguration& named : kConfigurations) {
        if (named.code == configuration) {
            return std::wstring(named.name);
        }
    }
    return {};
}

}  // namespace rcp
