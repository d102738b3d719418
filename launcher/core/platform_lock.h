// The platform lock file: which launcher of a workspace becomes the platform.
//
//   launcher A                       launcher B
//   locks ".rcp.lock"                blocks in flock
//   no live id in it: main           .
//   prepares, forks                  .
//     parent becomes the platform    .
//     child writes the parent's id   .
//     child sees the parent become   .
//     the platform, unlocks -------> locked; id is alive and the platform: daemon
//
// The lock is flock(2) on one open file description, which parent and child share. Other kinds of
// lock would be dropped as soon as anything in the process closed another descriptor of the file.
// The parent gives its descriptor up before the hand-off (close-on-exec, or closed before the
// library runs): from then on only the child holds the lock, so a child that dies early cannot keep
// the next launcher waiting for the platform's whole life.
//
// While a launcher has become the provisioning program, nobody decides: running_provisioning.h.
//
// The id is read and written at offset 0 by position; the two processes share the stream offset
// too.
#pragma once

#include "launcher/core/arguments.h"

#include <string>

namespace rcp {

/// The process id last read from the lock file.
extern long pid;

/// Whether a launch goes on with the lock, or without it has to begin as if it had just been started:
/// what it has read may be out of date.
enum class Launch { kGoesOn, kBeginsAnew };

/// Forms the paths of the lock's files in `workspace`, opens the lock file, on a restart waits for
/// the old platform to end (about 20 seconds at most), takes the lock and decides whether this
/// launcher is the main one (setMainProcess). `processMarker` is what the process check looks for.
/// Failures end the launch.
[[nodiscard]] Launch locateLockFile(const Arguments& arguments, const std::wstring& workspace,
                                    const std::wstring& processMarker);

void createAndOpenLockFile();
/// Takes the lock and decides; the main launcher deletes the file at `sidPath`, which an earlier
/// platform left. When the workspace is being provisioned, gives the lock back, waits for the end of
/// that, and the launch begins anew.
Launch lockLockFile(const std::wstring& sidPath, const std::wstring& processMarker);
/// Does nothing when the lock file is not open (any more).
void unlockLockFile();
/// Gives this process's descriptor of the lock file up without releasing the lock for others that
/// share it.
void closeLockFile();
/// Clears the recorded process id.
void invalidateLockFile();

/// Whether the process recorded in the lock file is alive and is the platform. Ends the launch
/// when the file holds something else than a number.
bool isMainProcessRunning(const std::wstring& processMarker);

/// Records the platform's process id in the lock file and in ".rcp.main"; only in the main
/// launcher.
void populateLockFile(int processId);
void populateMainPidFile(unsigned long processId);

/// Reads the pipe name from ".pipe"; true when there was one.
bool getPipeName(std::wstring& name);

const std::wstring& getLockFilePath();
const std::wstring& getPipeFilePath();
const std::wstring& getMainPidFilePath();
const std::wstring& getProvisioningFilePath();

/// Nothing marks a shutdown as dirty: always false.
bool isDirtyShutdown();

}  // namespace rcp
