#include "launcher/core/user_files.h"

#include "diagnostics/svc_debug.h"
#include "launcher/core/install_configuration.h"
#include "launcher/core/java_properties.h"
#include "launcher/core/launch_state.h"
#include "launcher/core/property_text.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/whole_file.h"

#include <stdio.h>

#include <string_view>

namespace rcp {
namespace {

// The folder of the master copies, below "config".
std::wstring_view coreFileFolder() {
    switch (eConfig) {
        case InstallConfiguration::kMultiuserServiceInit:
            return L"muservice";
        case InstallConfiguration::kUser:
        case InstallConfiguration::kMultiuser:
        case InstallConfiguration::kLockdown:
            return L"user";
        case InstallConfiguration::kUserpb:
            return L"pbuilder";
        default:
            return L"";
    }
}

// One line of the block at the end of the user's file.
struct BlockLine {
    const wchar_t* key;
    const wchar_t* property;
    bool isPath;  // slashes turned, escaped for the Java reader; left out when empty
    bool isRequired;
    const wchar_t* otherwise;  // for a missing property
};

constexpr BlockLine kBlockLines[] = {
    {L"rcp.install.id", L"rcp.install.id", false, true, nullptr},
    {L"vm", L"jvm.location", true, false, nullptr},
    {L"rcp.base.location", L"rcp.base.location", true, true, nullptr},
    // An installation that names no configuration is one of configuration "user".
    {L"install.configuration", L"install.configuration", false, true, L"user"},
    {L"com.ovr.rcp.core.locale", L"com.ovr.rcp.core.locale", false, false, nullptr},
    {L"com.ovr.rcp.core.bidi", L"com.ovr.rcp.core.bidi", false, false, nullptr},
};

std::optional<std::wstring> blockValue(const BlockLine& line, const PropertyList& properties) {
    const std::wstring* property = findProperty(line.property, properties);
    if (property == nullptr) {
        return line.otherwise == nullptr ? std::nullopt
                                         : std::optional<std::wstring>(line.otherwise);
    }
    if (!line.isPath) {
        return *property;
    }
    if (property->empty() && !line.isRequired) {
        return std::nullopt;
    }
    std::wstring path = *property;
    convertBS2S(path);
    std::wstring escaped;
    convWcharTo8859_1_Value(path, escaped);
    return escaped;
}

void copyLines(std::FILE& copy, WholeFile& file) {
    UserFileFilter filter;
    std::wstring line;
    while (readFile(copy, kCopiedLineFormat, line) != EOF) {
        if (filter.keeps(line) && !file.write(toNarrow(line) + "\n")) {
            report(
                "ZYPRA0001E: Error while copying base rcpinstall.properties to user specific "
                "rcpinstall.properties file.");
        }
    }
}

}  // namespace

std::wstring getCoreFileLocation(const std::wstring& base, const std::wstring& name) {
    std::wstring candidate = base + L"/config/";
    candidate += coreFileFolder();
    candidate += L"/" + name;
    convertToOsSeparator(candidate);
    return exists(candidate) ? candidate : osPath(base + L"/" + name);
}

void createConfigIni(const std::wstring& configuration, const std::wstring& base) {
    const std::wstring target = osPath(configuration + L"/config.ini");
    if (exists(target)) {
        return;
    }
    if (!copyFile(getCoreFileLocation(base, L"config.ini"), target)) {
        fatal("ZYPRA0009E: Unable to copy config.ini to the user directory.");
    }
    userFirstLaunch = true;
}

std::wstring createRCPInstallProps(const std::wstring& configuration, const std::wstring& base,
                                   const PropertyList& properties) {
    std::wstring target = osPath(configuration + L"/rcpinstall.properties");
    if (exists(target)) {
        return target;
    }
    const std::wstring copy = target + L".tmp";
    TemporaryName temporary(toNarrow(copy));
    temporary.claim();
    if (!copyFile(getCoreFileLocation(base, L"rcpinstall.properties"), copy)) {
        fatal("ZYPRA0022E: Unable to copy rcpinstall.properties to the user directory.");
    }
    fixUserRCPInstallProperties(copy, target, properties);
    userFirstLaunch = true;
    return target;
}

bool UserFileFilter::keeps(std::wstring& line) {
    if (isDropping_) {
        isDropping_ = isContinuationLine(line);
        return false;
    }
    if (isContinuing_) {
        isContinuing_ = isContinuationLine(line);
        return true;
    }
    if (isComment(line)) {
        return true;
    }
    const bool continues = isContinuationLine(line);
    const bool isDropped = processFilterKey(line);
    isDropping_ = isDropped && continues;
    isContinuing_ = !isDropped && continues;
    return !isDropped;
}

std::optional<std::wstring> userFileBlock(const PropertyList& properties) {
    std::wstring block;
    for (const BlockLine& line : kBlockLines) {
        const std::optional<std::wstring> value = blockValue(line, properties);
        if (value) {
            block += line.key;
            block += L"=" + *value + L"\n";
        } else if (line.isRequired) {
            return std::nullopt;
        }
    }
    return block;
}

int fixUserRCPInstallProperties(const std::wstring& copy, const std::wstring& target,
                                const PropertyList& properties) {
    Stream from;
    open_file(from, osPath(copy), L"r");
    WholeFile file(osPath(target), L".new");
    if (!from || !file.open()) {
        report(
            "ZYPRA0074E: Unable to open user specific rcpinstall.properties and temporary "
            "rcpinstall.properties files.");
        return -1;
    }
    copyLines(*from, file);
    const std::optional<std::wstring> block = userFileBlock(properties);
    if (!block) {
        fatal(
            "ZYPRA0008E: Unable to calculate necessary values for user specific "
            "rcpinstall.properties file.");
    }
    // The block is the format of its own output: "%%" in a value becomes "%".
    if (ferror(from.get()) != 0 || !file.write(expandFormat(toNarrow(*block))) || !file.commit()) {
        report("ZYPRA0015E: Unable to append values to user specific rcpinstall.properties file.");
        return -1;
    }
    return 0;
}

}  // namespace rcp
