// The files and folders of a launch, below the folder that each part is headed with, and the temporary names under
// which files are written.
#pragma once

namespace rcp {

namespace paths {

// Below the installation
inline constexpr wchar_t kSettings[] = L"/rcp/rcplauncher.properties";
inline constexpr wchar_t kDebugMarker[] = L"/rcp/rcplauncher.debug";
inline constexpr wchar_t kJvmFolder[] = L"/rcp/deploy/";
inline constexpr wchar_t kPlatform[] = L"/rcp/eclipse";
inline constexpr wchar_t kSharedExtension[] = L"/shared/eclipse/.eclipseextension";
inline constexpr wchar_t kServiceWorkspace[] = L"/eclipse/.workspace";
inline constexpr wchar_t kServiceConfiguration[] = L"/eclipse/.config";
inline constexpr wchar_t kMuServiceWorkspace[] = L"/eclipse/.muservice";
inline constexpr wchar_t kMuServiceConfiguration[] = L"/eclipse/.muservice/.config";

// Below the base location
inline constexpr wchar_t kPrograms[] = L"/macosx/x86/";
inline constexpr wchar_t kBundleList[] = L"/macosx/x86/Info.plist";
inline constexpr wchar_t kMasters[] = L"/config/";

// Below the workspace
inline constexpr wchar_t kConfiguration[] = L"/.config";
inline constexpr wchar_t kLogs[] = L"/logs";
inline constexpr wchar_t kLock[] = L"/.rcp.lock";
inline constexpr wchar_t kMainProcess[] = L"/.rcp.main";
inline constexpr wchar_t kProvisioning[] = L"/.rcp.provisioning";
inline constexpr wchar_t kUnfinished[] = L"/.rcp.unfinished";
inline constexpr wchar_t kSid[] = L"/.sid";  // an earlier platform's
inline constexpr wchar_t kExtensions[] = L"/applications/eclipse";
inline constexpr wchar_t kPlugInData[] = L"/.metadata/.plugins";

// Below the folder of logs, and below /tmp as long as there is none
inline constexpr wchar_t kLog[] = L"/rcplauncher.log";
inline constexpr wchar_t kTracedLog[] = L"/rcplauncher_";  // and the time
inline constexpr wchar_t kTracedLogEnding[] = L".log";
inline constexpr char kTemporaryLog[] = "/tmp/rcplauncher.log";  // for when memory is exhausted
inline constexpr wchar_t kPreloadLink[] = L"/tmp/ovr.rcp.";

// Below the configuration area
inline constexpr wchar_t kUpdate[] = L"/org.eclipse.update";

// By their names alone, in several folders
inline constexpr wchar_t kSettingsName[] = L"rcplauncher.properties";
inline constexpr wchar_t kJvmProperties[] = L"jvm.properties";
inline constexpr wchar_t kUserProperties[] = L"rcpinstall.properties";
inline constexpr wchar_t kArguments[] = L"args.properties";
inline constexpr wchar_t kConfigIni[] = L"config.ini";
inline constexpr wchar_t kPlatformXml[] = L"platform.xml";
inline constexpr wchar_t kExtensionLink[] = L"/.eclipseextension";
inline constexpr const wchar_t* kKeptByReset[] = {L"registry", L"bookmarks.xml"};

// Behind a name
inline constexpr wchar_t kTemporary[] = L".tmp";  // while the file is written
inline constexpr wchar_t kNew[] = L".new";        // the user's properties on their way
inline constexpr wchar_t kSaved[] = L".old";      // kept over a reset
inline constexpr wchar_t kReplaced[] = L"bak";    // the area before a reset
inline constexpr wchar_t kDeleted[] = L"deleteme";

/// A name that a launch which was killed may have left on the way to its place: all three together.
struct Unfinished {
    const wchar_t* folder;
    const wchar_t* name;
    const wchar_t* ending;
};
inline constexpr Unfinished kUnfinishedInWorkspace[] = {
    {L"", kProvisioning, kTemporary},          {L"/", kPlatformXml, L".old.tmp"},
    {L"/", kKeptByReset[0], L".old.tmp"},      {L"/", kKeptByReset[1], L".old.tmp"},
    {kExtensions, kExtensionLink, kTemporary},
};
inline constexpr Unfinished kUnfinishedInConfiguration[] = {
    {L"/", kArguments, kTemporary},
    {L"/", kConfigIni, kTemporary},
    {L"/", kUserProperties, kTemporary},
    {L"/", kUserProperties, L".tmp.tmp"},  // of the copy that it is made from
    {L"/", kUserProperties, kNew},
    {kUpdate, L"/platform.xml", kTemporary},
};

}  // namespace paths

}  // namespace rcp
