// Who provisions a workspace at the moment. Two launchers of a first start, a double click, must not
// provision at once; the id in the lock file does not keep the second one out, because it is that of
// a process which ends at once.
//
//   launcher A                                  launcher B
//   locks ".rcp.lock"; no platform: main        blocks in flock
//   prepares; provisioning is due               .
//   recordProvisioning: ".rcp.provisioning"     .
//     appears whole, with A's id and start      .
//   forks                                       .
//     parent records the child's id, opens      .
//     the gate, becomes the provisioning        .
//     program: same id, same start              .
//     child waits at the gate, unlocks, ends -> locked
//   .                                           runningProvisioning: A is at work
//   .                                           unlocks; waitForProvisioning: looks again every second
//   provisioning program ends                   .
//                                               begins anew: reads everything, locks, finds nobody at
//                                               work, removes the file, is main or daemon
//
// The file is written and removed under the lock alone; B looks without it while it waits. Wherever A
// dies, its start is nobody's any more, and the next look tells so.
#pragma once

#include <optional>
#include <string>

namespace rcp {

/// The file of a workspace.
std::wstring provisioningFileOf(const std::wstring& workspace);

/// Records this process in the file at `path`, before it becomes the provisioning program. A file
/// that cannot be written is reported.
void recordProvisioning(const std::wstring& path);

/// The id of the process that the file records; none when it records none, or it has ended, or the id is
/// another process's by now. Never this process: a provisioning program may become a launcher.
std::optional<long> runningProvisioning(const std::wstring& path);

/// Waits until it has ended.
void waitForProvisioning(const std::wstring& path);

/// Under the lock: whether a program provisions the workspace, as runningProvisioning tells. The file of
/// one that has ended is removed.
bool settleProvisioning(const std::wstring& path);

}  // namespace rcp
