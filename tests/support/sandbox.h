// Shuts a test in, so that neither it nor anything it starts can change what is not its own: every
// file system is read-only but a new one for its files and a new one in the place of /tmp.
#pragma once

#include <string>

namespace rcp::test {

/// What is writable beside /tmp.
enum class Shelter {
    kFresh,  ///< a new, empty file system in the place of the folder; it goes with the last process
    kKept,   ///< the folder itself: what is left in it stays
};

/// Shuts this process in, which must have one thread. Where the system does not let it
/// (`sandboxObstacle`), nothing changes. The folder that RCP_TEST_WRITABLE names stays writable too:
/// for what a checker or a report leaves.
void enterSandbox(const std::string& folder, Shelter shelter = Shelter::kFresh);

/// For a program whose tests ask for its own path: where the new /tmp hides that, the program starts
/// once more under the name by which it is seen in here, and is shut in already.
void startWhereSeen(char** argv);

/// Why this process is not shut in; empty when it is.
const std::string& sandboxObstacle();

/// The folder for a test's files: the one given to `enterSandbox`, or where that is seen in here
/// when the new /tmp hides it or other users cannot get to it.
const std::string& sandboxFolder();

/// A new folder of a name that nobody can guess, below `sandboxFolder`.
std::string makeFolder(const std::string& prefix);

/// Where a file of the project is seen in here: its own path unless the new /tmp hides that. For a
/// copy of the project RCP_TEST_SOURCES and RCP_TEST_BUILD name its folders.
std::string seen(const std::string& path);

/// Puts a folder below `sandboxFolder` in the place of /tmp, for this process and its children
/// alone. False, and errno says why, where that cannot be done.
bool showAsTmp(const std::string& folder);

/// Whether /tmp is a file system that this process has mounted.
bool hasOwnTmp();

/// Removes what is in /tmp. Throws, and removes nothing, when that is not this process's own.
void emptyOwnTmp();

}  // namespace rcp::test
