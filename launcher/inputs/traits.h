// What a launch is: known once its properties are read, and constant from then on.
#pragma once

#include "launcher/inputs/install_configuration.h"
#include "launcher/properties/property_list.h"

#include <string>

namespace rcp {

/// The user's start, or that of a platform that restarts itself.
enum class Start { kOrdinary, kRestart };

struct Traits {
    InstallConfiguration eConfig = InstallConfiguration::kUnknown;
    /// Hands off inside this process through the launcher library, not with execv(3).
    bool invokeDylib = false;
    Start start = Start::kOrdinary;

    /// A plain Java command line instead of one for the launcher library.
    [[nodiscard]] bool isDirectJavaShape() const { return isServiceConfig(eConfig); }
};

/// The executable's name and the system version count for the hand-off.
Traits traitsOf(const PropertyList& properties, Start start);

/// Whether a launch hands off in-process: one whose executable has another name than the launcher's own,
/// else as the properties say, else as the system's version.
bool handsOffInProcess(const PropertyList& properties);
/// Whether a system of this product version ("10.15.7") hands off in-process: only 10.15.
bool isInProcessVersion(const std::string& version);

/// What the process check looks for in the listing of a platform: "Velmo" for the in-process hand-off,
/// whose process keeps the launcher's own command line; otherwise the name of the executable that
/// execv(3) gets.
std::wstring getMainProcessName(const Traits& traits, const PropertyList& properties);

/// The value of "eclipse.name", or "eclipse".
std::wstring getEclipseExeName(const PropertyList& properties);

}  // namespace rcp
