// The install configuration: what kind of installation this is ("install.configuration").
#pragma once

#include "launcher/core/property_list.h"

#include <string>

namespace rcp {

/// The codes of `eConfig`. The numbers are fixed: they are what the table of names is about.
enum class InstallConfiguration {
    kService = 1,
    kLockdown = 2,
    kUser = 3,
    kSerialMultiuser = 4,
    kUnknown = 5,
    kMultiuser = 6,
    kMultiuserServiceInit = 7,  // forced by the flag of SetInstallConfiguration
    kUserpb = 8,
};

/// The install configuration of this launch.
extern InstallConfiguration eConfig;

/// Sets `eConfig` and the lockdown flag from the properties; with `initMuService` the code is the
/// multi-user service initialisation whatever the property says. Always true.
bool SetInstallConfiguration(const PropertyList& properties, bool initMuService);

/// Whether the configuration is "lockdown".
bool isLockdownConfig();

/// Whether the command line is a plain Java command line ("service" and the multi-user service
/// initialisation) instead of one for the launcher library.
bool isDirectJavaShape();

/// Whether the configuration is one of the two whose user area lives inside the installation.
bool isServiceConfig();

/// The name that the platform is told; empty for an unknown configuration.
std::wstring installConfigurationName();

}  // namespace rcp
