#include "launcher/core/install_configuration.h"

#include "diagnostics/svc_debug.h"

#include <string_view>

namespace rcp {

InstallConfiguration eConfig = InstallConfiguration::kUnknown;

namespace {

bool IS_LOCKDOWN = false;

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

bool SetInstallConfiguration(const PropertyList& properties, bool initMuService) {
    const std::wstring* name = findProperty(L"install.configuration", properties);
    if (name == nullptr) {
        SvcDebugOutA(
            "ZYPRA0041I: Missed install configuration in property file. Using default setting!");
    }
    eConfig = name == nullptr ? InstallConfiguration::kUser : codeOf(*name);
    IS_LOCKDOWN = eConfig == InstallConfiguration::kLockdown;
    if (initMuService) {
        eConfig = InstallConfiguration::kMultiuserServiceInit;
    }
    return true;
}

bool isLockdownConfig() {
    return IS_LOCKDOWN;
}

bool isDirectJavaShape() {
    return isServiceConfig();
}

bool isServiceConfig() {
    return eConfig == InstallConfiguration::kService ||
           eConfig == InstallConfiguration::kMultiuserServiceInit;
}

std::wstring installConfigurationName() {
    if (eConfig == InstallConfiguration::kMultiuserServiceInit) {
        return L"multiuser";  // the platform knows no name of its own for the initialisation
    }
    for (const NamedConfiguration& configuration : kConfigurations) {
        if (configuration.code == eConfig) {
            return std::wstring(configuration.name);
        }
    }
    return {};
}

}  // namespace rcp
