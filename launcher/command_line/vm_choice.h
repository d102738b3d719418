// The choice of the JVM, and the jvm.properties file beside it.
//
//   JVM             "-vm VALUE" on the command line
//                   else property "vm"
//                   else none: the launcher library finds one
//
//   jvm.properties  in the plug-in's folder, of a JVM inside /eclipse/plugins/
//                   else two levels above the JVM's executable
//                   else in the installation's rcp/deploy, the default root
#pragma once

#include "base/unique_fd.h"
#include "launcher/command_line/plan.h"
#include "launcher/inputs/launch_inputs.h"

#include <optional>
#include <string>
#include <string_view>

namespace rcp {

/// The JVM's path as it is handed over; empty when none is named.
Argument vmProgram(const LaunchInputs& inputs);
/// What the JVM's path names: a program, also where there is no path, or by its ending a description of an
/// execution environment or a library.
enum class JvmFile { kProgram, kEeOrDll };
/// Appends the JVM piece: "-vm" and its path, or in the direct Java shape the path as first
/// element. Ends the launch when "-vm" has no value, and in the direct Java shape when there is no JVM at
/// all.
JvmFile addVmToCommandLine(CommandLine& line, const LaunchInputs& inputs);

struct JvmPropertyLocation {
    std::wstring file;       // root + "jvm.properties"; need not exist in the default root
    bool isDefault = false;  // the root is the installation's deploy directory
    std::wstring jvm;        // the JVM's path, slashes turned; empty for the external JVM
    UniqueFd opened;         // the file, where it was found by being there
};

/// A folder that holds a jvm.properties, and that file.
struct JvmPropertyRoot {
    std::wstring path;
    UniqueFd properties;
};

/// Finds the jvm.properties file and records its root as property "jvm.root".
JvmPropertyLocation getJvmPropertyLocation(PropertyList& properties, const Arguments& arguments,
                                           const std::wstring& installDir);
/// The root when the JVM lives in a plug-in folder that holds a jvm.properties.
std::optional<JvmPropertyRoot> getStandardJvmPropertyRoot(const std::wstring& jvm);
/// The root two levels above the JVM executable, when it holds a jvm.properties.
std::optional<JvmPropertyRoot> getInstallJvmPropertyRoot(const std::wstring& jvm);
/// The folders that both look in, in this order.
std::vector<std::wstring> jvmPropertyRoots(const std::wstring& jvm);
/// The jvm.properties of a root, opened; empty without one.
UniqueFd jvmPropExists(const std::wstring& root);

/// Reads the jvm.properties file into the launcher properties and the VM argument map, then brings
/// "java.home" and "jvm.library.path" into their final form.
void loadJvmProperties(LaunchInputs& inputs, const JvmPropertyLocation& location);

/// For a JVM path that holds "jvm/bin" what stands in front of it, less the "/".
std::optional<std::wstring> getJvmHome(const std::wstring& jvm);

/// The library path with "${prop.java.home}/" in front of every element that does not name the Java home
/// already. Empty elements are dropped: they would mean the Java home itself.
std::wstring fixUpJvmLibPath(const std::wstring& libraryPath);

/// Whether the first occurrence of `suffix` at or behind position length(text) - length(suffix)
/// stands exactly there, in unsigned arithmetic: a text one character shorter than the suffix ends
/// in it too, because both sides are then the "not found" value.
bool endsIn(std::wstring_view text, std::wstring_view suffix);

/// Whether "-vm" is on the command line.
bool isVmOverride(const Arguments& arguments);

}  // namespace rcp
