#include "launcher/user_area/user_files.h"

#include "diagnostics/svc_debug.h"
#include "launcher/properties/java_properties.h"
#include "launcher/properties/property_text.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/paths.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/whole_file.h"

#include <errno.h>

#include <string_view>

namespace rcp {
namespace {

// The folder of the master copies, below "config".
std::wstring_view coreFileFolder(InstallConfiguration configuration) {
    switch (configuration) {
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
    Key key;
    Key property;
    bool isPath;  // slashes turned, escaped for the Java reader; left out when empty
    bool isRequired;
    const wchar_t* otherwise;  // for a missing property
};

constexpr BlockLine kBlockLines[] = {
    {keys::kInstallId, keys::kInstallId, false, true, nullptr},
    {keys::kVm, keys::kJvmLocation, true, false, nullptr},
    {keys::kBaseLocation, keys::kBaseLocation, true, true, nullptr},
    // An installation that names no configuration is one of configuration "user".
    {keys::kInstallConfiguration, keys::kInstallConfiguration, false, true,
     defaults::kInstallConfiguration},
    {keys::kLocale, keys::kLocale, false, false, nullptr},
    {keys::kBidi, keys::kBidi, false, false, nullptr},
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
    return convWcharTo8859_1_Value(path);
}

// Decides line by line what of the master copy the user gets. An entry is dropped whole, its
// continuation lines included:
//
//            filter drops the key, line continues
//   ENTRY ------------------------------------------> DROPPING --- line does not continue ---.
//     |  ^                                               '---- line continues: stay ----'    |
//     |  '-- line does not continue -- CONTINUING                                            |
//     '---- kept and continues ------------^                      ENTRY <--------------------'
class UserFileFilter {
  public:
    // Whether the line is written; its key may lose the qualifier for this operating system.
    bool keeps(std::wstring& line) {
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

  private:
    bool isDropping_ = false;
    bool isContinuing_ = false;
};

}  // namespace

std::wstring getOwnCoreFileLocation(InstallConfiguration configuration, const std::wstring& base,
                                    const std::wstring& name) {
    std::wstring candidate = base + paths::kMasters;
    candidate += coreFileFolder(configuration);
    return osPath(candidate + L"/" + name);
}

std::wstring getCoreFileLocation(InstallConfiguration configuration, const std::wstring& base,
                                 const std::wstring& name) {
    const std::wstring candidate = getOwnCoreFileLocation(configuration, base, name);
    return exists(candidate) ? candidate : osPath(base + L"/" + name);
}

bool createConfigIni(const LaunchInputs& inputs, const std::wstring& base) {
    const std::wstring target = osPath(inputs.configuration + L"/" + paths::kConfigIni);
    if (exists(target)) {
        return false;
    }
    if (!copyFile(getCoreFileLocation(inputs.traits.eConfig, base, paths::kConfigIni), target)) {
        fatal(noReason(), messages.configIniNotCopied);
    }
    return true;
}

std::wstring userFileOf(const std::wstring& configuration) {
    return osPath(configuration + L"/" + paths::kUserProperties);
}

bool createRCPInstallProps(const LaunchInputs& inputs, const std::wstring& base) {
    const std::wstring target = userFileOf(inputs.configuration);
    if (exists(target)) {
        return false;
    }
    const std::wstring copy = target + paths::kTemporary;
    TemporaryName temporary(toNarrow(copy));
    temporary.claim();
    if (!copyFile(getCoreFileLocation(inputs.traits.eConfig, base, paths::kUserProperties), copy)) {
        fatal(noReason(), messages.masterNotCopied);
    }
    fixUserRCPInstallProperties(copy, target, inputs.properties);
    return true;
}

std::vector<UserLine> userLines(std::string_view master) {
    std::vector<UserLine> kept;
    UserFileFilter filter;
    TextLines lines{master};
    for (std::wstring line; readFile(lines, kCopiedLineFormat, line);) {
        if (filter.keeps(line)) {
            kept.push_back({line, lines.line});
        }
    }
    return kept;
}

std::optional<UserFileBlock> userFileBlock(const PropertyList& properties) {
    UserFileBlock block;
    for (const BlockLine& line : kBlockLines) {
        const std::optional<std::wstring> value = blockValue(line, properties);
        if (!value && line.isRequired) {
            return std::nullopt;
        }
        const std::string narrow = toNarrow(value.value_or(L""));
        if (narrow.empty() && value && !value->empty()) {
            block.missingKeys.emplace_back(line.key);
        } else if (value) {
            // A value is the format of its own output: "%%" in it becomes "%".
            block.lines += propertyLines(toNarrow(std::wstring(line.key)), expandFormat(narrow));
        }
    }
    return block;
}

bool fixUserRCPInstallProperties(const std::wstring& copy, const std::wstring& target,
                                 const PropertyList& properties) {
    const std::optional<FileText> from = readText(osPath(copy));
    WholeFile file(osPath(target), paths::kNew);
    if (!from || !file.open()) {
        report(because(errno), messages.userFileNotOpened);
        return false;
    }
    for (const UserLine& line : userLines(from->bytes)) {
        if (!file.write(toNarrow(line.text) + "\n")) {
            report(because(errno), messages.userFileNotCopied);
        }
    }
    const std::optional<UserFileBlock> block = userFileBlock(properties);
    if (!block) {
        fatal(noReason(), messages.userValuesUnknown);
    }
    for (const std::wstring& key : block->missingKeys) {
        report(because("its value is no text of this locale").at(key),
               messages.userFileNotCompleted);
    }
    if (from->error != 0 || !file.write(block->lines) || !file.commit()) {
        report(because(from->error != 0 ? from->error : errno), messages.userFileNotCompleted);
        return false;
    }
    return true;
}

}  // namespace rcp
