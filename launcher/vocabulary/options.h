// The options of the command line and the rules about them, one row an option. What they mean tells
// configuration_words.cpp.
#pragma once

#include "launcher/vocabulary/name.h"

namespace rcp {

namespace options {

inline constexpr OptionName kData{L"-data"};
inline constexpr OptionName kConfiguration{L"-configuration"};
inline constexpr OptionName kConfig{L"-config"};
inline constexpr OptionName kApplication{L"-application"};
inline constexpr OptionName kProduct{L"-product"};
inline constexpr OptionName kPersonality{L"-personality"};
inline constexpr OptionName kPluginCustomization{L"-plugincustomization"};
inline constexpr OptionName kLocale{L"-nl"};
inline constexpr OptionName kDirection{L"-dir"};
inline constexpr OptionName kVm{L"-vm"};
inline constexpr OptionName kVmargs{L"-vmargs"};
inline constexpr OptionName kStartupJar{L"-perfJar"};
inline constexpr OptionName kDebug{L"-debug"};
inline constexpr OptionName kConsole{L"-console"};
inline constexpr OptionName kPb4l{L"-pb4l"};
inline constexpr OptionName kDebugFile{L"-debugFile"};
inline constexpr OptionName kNoExit{L"-noExit"};
inline constexpr OptionName kResetConfig{L"-resetconfig"};
inline constexpr OptionName kRestart{L"-restart"};
inline constexpr OptionName kOldPid{L"-rcp_old_pid"};
inline constexpr OptionName kLauncherWait{L"-rcpLauncherWait"};
inline constexpr OptionName kProvManifest{L"-provManifest"};
inline constexpr OptionName kMaxArgCount{L"-maxargcnt"};
inline constexpr OptionName kBundleIdentifier{L"-bundleIdentifier"};
inline constexpr OptionName kVersion{L"-version"};
inline constexpr OptionName kInitMuService{L"-initMUService"};
inline constexpr OptionName kCommandOnly{L"-dcommand_only"};
// Not an option, but where those of Java end and the platform's begin.
inline constexpr OptionName kMainClass{L"org.eclipse.core.launcher.Main"};
inline constexpr OptionName kExtensionDirectories{L"-Djava.ext.dirs"};
// Only among the arguments of the initial configuration.
inline constexpr OptionName kInitialCompleteFlag{L"-initialCompleteFlag"};

// What the launcher alone writes.
inline constexpr OptionName kSuppressErrors{L"--launcher.suppressErrors"};
inline constexpr OptionName kNoSplash{L"-nosplash"};
inline constexpr OptionName kUseDaemon{L"-useDaemon"};
inline constexpr OptionName kStartup{L"-startup"};
inline constexpr OptionName kUserProvLaunch{L"-userProvLaunch"};
inline constexpr OptionName kClassPath{L"-cp"};
inline constexpr OptionName kRcpHome{L"-Drcp.home"};
inline constexpr OptionName kRcpData{L"-Drcp.data"};
inline constexpr OptionName kSplashPath{L"-Dosgi.splashPath"};
inline constexpr OptionName kInstallId{L"-Dcom.ovr.rcp.install.id"};
inline constexpr OptionName kInstallConfig{L"-Drcp.install.config"};
inline constexpr OptionName kInstallArea{L"-Drcp.osgi.install.area"};
inline constexpr OptionName kNoSharedClasses{L"-Xshareclasses=none"};
inline constexpr OptionName kBootClassPathPrepend{L"-Xbootclasspath/p:"};
inline constexpr OptionName kBootClassPathAppend{L"-Xbootclasspath/a:"};
inline constexpr OptionName kFileEncoding{L"-Dfile.encoding=UTF-8"};
inline constexpr OptionName kStartOnFirstThread{L"-XstartOnFirstThread"};

}  // namespace options

/// Whether an argument behind the option is its value.
enum class OptionValue {
    kNone,
    kTaken,
    kPlatforms,  // the platform reads it; that it is missing the launcher does not notice
};

/// What becomes of an option of the user's in front of "-vmargs".
enum class CopyRule { kCopy, kCopyWithValue, kDrop, kDropWithValue };

/// Whether the option survives the switch to the initial configuration.
enum class FirstStart { kDropped, kKept };

struct Option {
    OptionName name;
    OptionValue value;
    CopyRule rule;
    FirstStart firstStart = FirstStart::kDropped;
};

inline constexpr Option kOptions[] = {
    {options::kData, OptionValue::kTaken, CopyRule::kDropWithValue, FirstStart::kKept},
    {options::kConfiguration, OptionValue::kTaken, CopyRule::kDropWithValue},
    {options::kConfig, OptionValue::kTaken, CopyRule::kCopy},  // its arguments have replaced it
    {options::kApplication, OptionValue::kTaken, CopyRule::kCopyWithValue},
    {options::kProduct, OptionValue::kTaken, CopyRule::kCopyWithValue},
    {options::kPersonality, OptionValue::kTaken, CopyRule::kCopyWithValue},
    {options::kPluginCustomization, OptionValue::kTaken, CopyRule::kCopyWithValue},
    {options::kLocale, OptionValue::kTaken, CopyRule::kCopy},
    {options::kDirection, OptionValue::kTaken, CopyRule::kCopy},
    {options::kVm, OptionValue::kTaken, CopyRule::kDropWithValue},
    {options::kVmargs, OptionValue::kNone, CopyRule::kCopy},
    {options::kStartupJar, OptionValue::kTaken, CopyRule::kCopy},
    {options::kDebug, OptionValue::kNone, CopyRule::kCopy, FirstStart::kKept},
    {options::kConsole, OptionValue::kNone, CopyRule::kCopy, FirstStart::kKept},
    {options::kPb4l, OptionValue::kNone, CopyRule::kCopy},
    {options::kDebugFile, OptionValue::kPlatforms, CopyRule::kCopy},
    {options::kNoExit, OptionValue::kNone, CopyRule::kCopy, FirstStart::kKept},
    {options::kResetConfig, OptionValue::kNone, CopyRule::kDrop},
    {options::kRestart, OptionValue::kNone, CopyRule::kDrop},
    {options::kOldPid, OptionValue::kTaken, CopyRule::kDropWithValue},
    {options::kLauncherWait, OptionValue::kNone, CopyRule::kCopy},
    {options::kProvManifest, OptionValue::kPlatforms, CopyRule::kCopy},
    {options::kMaxArgCount, OptionValue::kTaken, CopyRule::kCopy},
    {options::kBundleIdentifier, OptionValue::kTaken, CopyRule::kCopy},
    {options::kVersion, OptionValue::kNone, CopyRule::kCopy},
    {options::kInitMuService, OptionValue::kNone, CopyRule::kCopy},
    {options::kCommandOnly, OptionValue::kNone, CopyRule::kCopy},
    {options::kExtensionDirectories, OptionValue::kNone, CopyRule::kCopy},
};

// Of these one repetition goes when an extension is placed, with the argument behind it. One pass
// changes what the next finds, so they have an order; "-product" stands twice: two passes take out
// two repetitions.
inline constexpr OptionName kUniquePairs[] = {
    options::kVm,          options::kData,    options::kPluginCustomization,
    options::kApplication, options::kProduct, options::kPersonality,
    options::kProduct,     options::kLocale,  options::kDirection,
};
// Of these alone.
inline constexpr OptionName kUniqueSingles[] = {options::kConsole, options::kDebug, options::kPb4l};

/// The row of an argument; null when it is no option of the launcher's.
constexpr const Option* findOptionRow(std::wstring_view argument) {
    for (const Option& option : kOptions) {
        if (option.name == argument) {
            return &option;
        }
    }
    return nullptr;
}

constexpr CopyRule copyRuleFor(std::wstring_view argument) {
    const Option* const option = findOptionRow(argument);
    return option == nullptr ? CopyRule::kCopy : option->rule;
}

/// Whether an argument is an option that the launcher misses the value of.
constexpr bool takesValue(std::wstring_view argument) {
    const Option* const option = findOptionRow(argument);
    return option != nullptr && option->value == OptionValue::kTaken;
}

}  // namespace rcp
