// The keys of properties. What they mean, and in which files they count, tells property_keys.cpp.
#pragma once

#include "launcher/vocabulary/name.h"

namespace rcp {

namespace keys {

inline constexpr Key kInstallId{L"rcp.install.id"};
inline constexpr Key kBaseLocation{L"rcp.base.location"};
inline constexpr Key kInstallConfiguration{L"install.configuration"};
inline constexpr Key kInvokeEclipseDylib{L"invoke.eclipse.dylib"};
inline constexpr Key kEclipseName{L"eclipse.name"};
inline constexpr Key kData{L"rcp.data"};
inline constexpr Key kApplication{L"application"};
inline constexpr Key kProduct{L"product"};
inline constexpr Key kPersonality{L"personality"};
inline constexpr Key kPluginCustomization{L"plugincustomization"};
inline constexpr Key kClassPath{L"cp"};
inline constexpr Key kUpdatePolicyManaged{L"update.policy.managed"};
inline constexpr Key kLocale{L"com.ovr.rcp.core.locale"};
inline constexpr Key kBidi{L"com.ovr.rcp.core.bidi"};
inline constexpr Key kExtension{L"config."};
inline constexpr Key kInitial{L"config.initial."};

inline constexpr Key kJvmLocation{L"jvm.location"};
inline constexpr Key kJvmLibPath{L"jvm.libpath"};
inline constexpr Key kJvmExtPath{L"jvm.extpath"};
inline constexpr Key kVm{L"vm"};
inline constexpr Key kVmarg{L"vmarg."};
inline constexpr Key kSystemProperty{L"-D"};
inline constexpr Key kJvmOption{L"-X"};
inline constexpr Key kBootClassPathPrepend{L"Xbootclasspath.prepend"};
inline constexpr Key kBootClassPathAppend{L"Xbootclasspath.append"};
inline constexpr Key kConsoleFix{L"vmfix.noconsole"};
inline constexpr Key kJavaHome{L"java.home"};
inline constexpr Key kJavaLibraryPath{L"java.library.path"};  // the JVM's own
inline constexpr Key kJvmLibraryPath{L"jvm.library.path"};
inline constexpr Key kJvmRoot{L"jvm.root"};
inline constexpr Key kFeatureId{L"jvm.feature.id"};
inline constexpr Key kFeatureVersion{L"jvm.feature.version"};
inline constexpr Key kParentFeatureId{L"jvm.parent.feature.id"};
inline constexpr Key kParentFeatureVersion{L"jvm.parent.feature.version"};
inline constexpr Key kSplashPath{L"osgi.splashPath"};
inline constexpr Key kSharedClassesPath{L"jvm.shareclasses.fullpath"};
inline constexpr Key kResetDir{L"resetDir."};
inline constexpr Key kWorkspaceLocation{L"velmo.workspace.loc"};

inline constexpr Key kEnvSet{L"env.set"};
inline constexpr Key kEnvUnset{L"env.unset"};
// With the "." behind which the variable is named.
inline constexpr Key kEnvSetVariable{L"env.set."};
inline constexpr Key kEnvUnsetVariable{L"env.unset."};
inline constexpr Key kJavaHighZipFds{L"env.JAVA_HIGH_ZIPFDS"};
inline constexpr Key kLibraryPathPrepend{L"library.path.prepend"};
inline constexpr Key kInternalLibraryPath{L"com.ovr.rcp.core.internal.librarypath"};
inline constexpr Key kLibraryPathAppend{L"library.path.append"};
inline constexpr Key kLibraryPreload{L"library.preload"};

inline constexpr Key kProvisioning{L"provisioning"};
inline constexpr Key kProvisioningLevel{L"provisioning.manifest.version"};
inline constexpr Key kProvisioningApplication{L"provisioning.application"};
inline constexpr Key kSharedClassesOption{L"vmarg.Dshare"};

// Of args.properties, for the platform.
inline constexpr Key kArgument{L"arg"};
inline constexpr Key kArgumentCount{L"argc"};

// Parts of keys.
inline constexpr std::wstring_view kFix = L"vmfix.";
inline constexpr std::wstring_view kRestartExecutable = L".restartExe.macosx";

// Of property lists.
inline constexpr char kLauncherPath[] = "mlauncher.path";
inline constexpr char kBundleIdentifier[] = "CFBundleIdentifier";

/// The n-th argument of configuration extension `name`.
inline std::wstring extensionArgument(std::wstring_view name, std::size_t number) {
    return kExtension + name + L"." + std::to_wstring(number);
}
/// The program that a launch with configuration extension `name` is restarted with.
inline std::wstring restartExecutable(std::wstring_view name) {
    return (kExtension + name).append(kRestartExecutable);
}

}  // namespace keys

// What the launcher takes for a key that is missing.
namespace defaults {

inline constexpr wchar_t kInstallConfiguration[] = L"user";
inline constexpr wchar_t kEclipseName[] = L"eclipse";
inline constexpr wchar_t kJvmLocation[] = L"/Applications/ZUN Velmo.app/jre";
inline constexpr wchar_t kJvmLibPath[] = L"/Contents/Home/lib/jli/libjli.dylib";
inline constexpr wchar_t kJvmExtPath[] = L"/Contents/Home/lib/ext";
inline constexpr wchar_t kJavaHighZipFds[] = L"500";

}  // namespace defaults

}  // namespace rcp
