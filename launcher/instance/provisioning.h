// Provisioning: on a first launch, at a new provisioning level, or when an installer asks for it,
// an application that installs or updates features runs before the user's client starts.
#pragma once

#include "launcher/command_line/plan.h"
#include "launcher/inputs/launch_inputs.h"

#include <optional>
#include <string>

namespace rcp {

/// Whether the user's provisioning level differs from the platform's. A missing user level is new;
/// a user level without a platform level is not, because there is nothing to provision.
bool isNewProvisioningLevel(const std::wstring* userLevel, const std::wstring* platformLevel);

/// Whether an installer started this launch: both "-rcpLauncherWait" and "-provManifest" are given.
bool isISMPProvisioning(const Arguments& arguments);

/// Whether this installation provisions at all.
bool isProvisioningEnabled(const LaunchInputs& inputs);
/// Whether the user has another provisioning level than the installation.
bool isAtNewProvisioningLevel(const LaunchInputs& inputs);

/// What a main launcher starts when provisioning is due: on a first launch, at a new level, which makes it
/// one, or for an installer. The shared classes are switched off then. None otherwise.
std::optional<LaunchKind> checkForProvisioning(LaunchInputs& inputs);

/// Switches the shared classes option off for a provisioning launch, if it is there: the classes
/// change under it.
void defeateSharedClassesInProvisioning(VmArgumentMap& vmargMap);

/// At a new provisioning level empties the JVM's shared classes directory
/// ("jvm.shareclasses.fullpath"); what cannot be emptied ends the launch. A directory that may hold
/// more than shared classes (reasonNotToEmpty) is left alone and reported.
void emptySharedClassesOnNewLevel(const LaunchInputs& inputs);

}  // namespace rcp
