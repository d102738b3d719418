// Provisioning: on a first launch, at a new provisioning level, or when an installer asks for it,
// an application that installs or updates features runs before the user's client starts.
#pragma once

#include "launcher/core/launch_inputs.h"

#include <string>

namespace rcp {

/// Whether the user's provisioning level differs from the platform's. A missing user level is new;
/// a user level without a platform level is not, because there is nothing to provision.
bool isNewProvisioningLevel(const std::wstring* userLevel, const std::wstring* platformLevel);

/// Whether an installer started this launch: both "-rcpLauncherWait" and "-provManifest" are given.
bool isISMPProvisioning(const Arguments& arguments);

/// Returns when no provisioning is due. Otherwise assembles the provisioning command line, replaces
/// the process with it and never returns.
void checkForProvisioning(LaunchInputs& inputs);

/// Switches the shared classes option off for a provisioning launch, if it is there: the classes
/// change under it.
void defeateSharedClassesInProvisioning(VmArgumentMap& vmargMap);

/// Replaces the process with the command, having recorded its own as the one that
/// provisions (running_provisioning.h) and the id of a forked child as the main process. Returns in the child, and in the parent when execv(3) failed.
void doProvisioning(const CommandLine& line);

/// Appends "-application", the provisioning application and, when a user's launch asked for it,
/// "-userProvLaunch". Ends the launch when no application is configured.
void addProvisioningApplication(CommandLine& line, const PropertyList& properties,
                                bool startedByUser);

/// At a new provisioning level empties the JVM's shared classes directory
/// ("jvm.shareclasses.fullpath"); what cannot be emptied ends the launch. A directory that may hold
/// more than shared classes (reasonNotToEmpty) is left alone and reported.
void emptySharedClassesOnNewLevel(const LaunchInputs& inputs);

}  // namespace rcp
