// The install configuration: what kind of installation this is ("install.configuration").
#pragma once

#include "launcher/properties/property_list.h"

#include <string>

namespace rcp {

/// The numbers are fixed: they are what the table of names is about.
enum class InstallConfiguration {
    kService = 1,
    kLockdown = 2,
    kUser = 3,
    kSerialMultiuser = 4,
    kUnknown = 5,
    kMultiuser = 6,
    kMultiuserServiceInit = 7,  // the multi-user service's initialisation, which no property names
    kUserpb = 8,
};

/// That of the properties: kUser without the property, kUnknown for a value that is none of the names.
InstallConfiguration installConfigurationOf(const PropertyList& properties);

/// Whether the configuration is "service" or the multi-user service's initialisation: their user area lives
/// inside the installation, and the JVM runs the platform without the launcher library.
bool isServiceConfig(InstallConfiguration configuration);

/// The name that the platform is told; empty for an unknown configuration.
std::wstring installConfigurationName(InstallConfiguration configuration);

}  // namespace rcp
