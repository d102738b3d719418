// Values that mean something else than they seem to.
#include "diagnostics/format.h"
#include "diagnostics/observer.h"
#include "inspect/check/groups.h"
#include "launcher/inputs/install_configuration.h"
#include "launcher/properties/placeholders.h"
#include "launcher/user_area/user_files.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/variables.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace rcp::inspect {
namespace {

// The entries that a look-up finds while it is there.
class FoundEntries : public Observer {
  public:
    FoundEntries() { observer = this; }
    ~FoundEntries() override { observer = former_; }
    FoundEntries(const FoundEntries&) = delete;
    FoundEntries& operator=(const FoundEntries&) = delete;
    FoundEntries(FoundEntries&&) = delete;
    FoundEntries& operator=(FoundEntries&&) = delete;

    void propertyFound(const Property& entry) override { all_.push_back(&entry); }
    [[nodiscard]] const std::vector<const Property*>& all() const { return all_; }

  private:
    Observer* former_ = observer;
    std::vector<const Property*> all_;
};

// What is appended to the user's file serves as a format.
void findPercents(const Examination& examination, Findings& findings) {
    const FoundEntries appended;
    if (!userFileBlock(examination.inputs.properties)) {
        return;
    }
    for (const Property* entry : appended.all()) {
        const std::string text = toUtf8(entry->value);
        if (entry->origin.file && expandFormat(text) != text) {
            findings.add("RI306", examination.nameOf(entry->origin), entry->origin.line,
                         "the user's file gets \"" + expandFormat(text) + "\"");
        }
    }
}

bool isNameCharacter(wchar_t character) {
    return character == L'_' || (character >= L'0' && character <= L'9') ||
           (character >= L'A' && character <= L'Z') || (character >= L'a' && character <= L'z');
}

// The first %NAME% of a text; empty without one.
std::wstring percentVariable(const std::wstring& text) {
    for (std::size_t at = text.find(L'%'); at != std::wstring::npos; at = text.find(L'%', at + 1)) {
        std::size_t end = at + 1;
        while (end < text.size() && isNameCharacter(text[end])) {
            ++end;
        }
        if (end < text.size() && text[end] == L'%' && end > at + 1) {
            return text.substr(at, end + 1 - at);
        }
    }
    return {};
}

// Kinds of values that become one argument.
bool isArgument(std::wstring_view key) {
    return key.starts_with(keys::kVmarg) || key.starts_with(keys::kExtension) ||
           key.starts_with(keys::kFix) || key.starts_with(keys::kJvmOption);
}

// "-a b", or one JVM option behind another. The text of a system property may hold blanks.
bool holdsSeveralArguments(const std::wstring& text) {
    if (!text.starts_with(L'-')) {
        return false;
    }
    const std::size_t blank = text.find(L' ');
    const bool isBareOption = text.find_first_of(L"=:/") > blank;
    return blank != std::wstring::npos &&
           (isBareOption || text.find(L" -D") != std::wstring::npos ||
            text.find(L" -X") != std::wstring::npos);
}

void findInText(const PropertyFile& file, const Property& entry, Findings& findings) {
    const std::size_t line = entry.origin.line;
    const std::wstring variable = percentVariable(entry.value);
    if (!variable.empty()) {
        findings.add("RI307", file.name, line, inQuotes(variable) + " stays as it is");
    }
    const std::wstring text =
        entry.key.starts_with(keys::kJvmOption) ? entry.key + entry.value : entry.value;
    if (isArgument(entry.key) && holdsSeveralArguments(text)) {
        findings.add("RI308", file.name, line, inQuotes(text) + " is passed on as one argument");
    }
    if (entry.value.ends_with(L'\t')) {
        findings.add("RI310", file.name, line, "the value of " + inQuotes(entry.key));
    }
}

// "my key=value" is key "my". A JVM option's ":" is meant.
void findEarlySeparator(const PropertyFile& file, const Property& entry, Findings& findings) {
    if (entry.origin.line == 0 || entry.origin.line > file.lines.size() ||
        entry.key.starts_with(keys::kJvmOption) || entry.key.empty()) {
        return;
    }
    const std::string_view line = file.lines[entry.origin.line - 1].trimmed();
    const std::size_t separator = line.find_first_of("=: \t");
    const std::size_t equals = line.find('=');
    if (separator == equals || equals == std::string_view::npos) {
        return;
    }
    if (line.find_first_not_of(" \t", separator) != equals) {
        findings.add("RI309", file.name, entry.origin.line,
                     "the key is " + inQuotes(entry.key) + ", the value " + inQuotes(entry.value));
    }
}

// Keys whose values are asked for by name.
struct KnownValues {
    Key key;
    std::wstring_view values[2];
    const char* text;
};

constexpr KnownValues kKnownValues[] = {
    {keys::kProvisioning, {L"true", L"false"}, "\"true\" or \"false\""},
    {keys::kUpdatePolicyManaged, {L"true", L"false"}, "\"true\" or \"false\""},
    {keys::kInvokeEclipseDylib, {L"0", L"1"}, "\"0\" or \"1\""},
};

void findIgnoredValues(const PropertyFile& file, const Property& entry, Findings& findings) {
    for (const KnownValues& known : kKnownValues) {
        if (file.kind != kUserFile && known.key == entry.key && entry.value != known.values[0] &&
            entry.value != known.values[1]) {
            findings.add(
                "RI312", file.name, entry.origin.line,
                inQuotes(entry.key) + " is " + inQuotes(entry.value) + ", not " + known.text);
        }
    }
}

void findConfiguration(const Examination& examination, Findings& findings) {
    const Property* entry = examination.inputs.properties.find(keys::kInstallConfiguration);
    if (entry != nullptr && installConfigurationName(examination.inputs.traits.eConfig).empty()) {
        findings.add("RI311", examination.nameOf(entry->origin), entry->origin.line,
                     inQuotes(entry->value) + " is no configuration");
    }
}

void findRelativePaths(const Examination& examination, Findings& findings) {
    for (const Key key : {keys::kBaseLocation, keys::kData}) {
        const Property* entry = examination.inputs.properties.find(key);
        if (entry != nullptr && !entry->value.empty() && !entry->value.starts_with(L"/") &&
            !entry->value.starts_with(placeholders::kOpening)) {
            findings.add("RI313", examination.nameOf(entry->origin), entry->origin.line,
                         inQuotes(entry->value) + " is relative");
        }
    }
}

}  // namespace

void findInValues(const Examination& examination, Findings& findings) {
    findConfiguration(examination, findings);
    findRelativePaths(examination, findings);
    findPercents(examination, findings);
    for (const PropertyFile& file : examination.files) {
        for (const Property& entry : file.entries.entries()) {
            findInText(file, entry, findings);
            findEarlySeparator(file, entry, findings);
            findIgnoredValues(file, entry, findings);
        }
    }
}

}  // namespace rcp::inspect
