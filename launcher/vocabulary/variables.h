// Environment variables, and what stands for something in values. What they mean tells
// configuration_words.cpp.
#pragma once

#include "launcher/vocabulary/name.h"

namespace rcp {

namespace variables {

inline constexpr VariableName kHome{L"HOME"};
inline constexpr VariableName kUser{L"USER"};
inline constexpr VariableName kTemporaryFolder{L"TMPDIR"};
inline constexpr VariableName kLibraryPath{L"DYLD_LIBRARY_PATH"};
inline constexpr VariableName kPreload{L"LD_PRELOAD"};
inline constexpr VariableName kJavaHighZipFds{L"JAVA_HIGH_ZIPFDS"};
// Read by the system's library.
inline constexpr VariableName kLocale{L"LC_ALL"};
inline constexpr VariableName kCharacterType{L"LC_CTYPE"};
inline constexpr VariableName kLanguage{L"LANG"};
inline constexpr VariableName kPath{L"PATH"};

}  // namespace variables

namespace placeholders {

inline constexpr wchar_t kRcpHome[] = L"${rcp.home}";
inline constexpr wchar_t kWorkspaceLocation[] = L"${workspace.location}";
inline constexpr wchar_t kRcpData[] = L"${rcp.data}";
// Of platform.xml alone.
inline constexpr wchar_t kFeatureId[] = L"${jvm.feature.id}";
inline constexpr wchar_t kFeatureVersion[] = L"${jvm.feature.version}";
inline constexpr wchar_t kParentFeatureId[] = L"${jvm.parent.feature.id}";
inline constexpr wchar_t kParentFeatureVersion[] = L"${jvm.parent.feature.version}";
// A name between "${" and "}" that begins so is an environment variable's or a property's.
inline constexpr std::wstring_view kOpening = L"${";
inline constexpr std::wstring_view kVariable = L"env.";
inline constexpr std::wstring_view kProperty = L"prop.";
inline constexpr wchar_t kJavaHome[] = L"${prop.java.home}";

}  // namespace placeholders

}  // namespace rcp
