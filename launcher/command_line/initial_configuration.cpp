#include "launcher/command_line/initial_configuration.h"

#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "diagnostics/whys.h"
#include "launcher/inputs/option_values.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace rcp {
namespace {

constexpr Key kPrefix = keys::kInitial;
constexpr std::size_t kMostDigits = 10;

bool isDigit(wchar_t character) {
    return character >= L'0' && character <= L'9';
}

// Keys and values of the numbered properties, alternating, in list order. Other keys of the prefix,
// such as the restart executable's, are none of these arguments.
using Entries = std::vector<const std::wstring*>;

Entries collectEntries(const PropertyList& properties) {
    Entries entries;
    for (const Property* property : findProperties(kPrefix, properties)) {
        if (property->key.size() > kPrefix.size() && isDigit(property->key[kPrefix.size()])) {
            entries.push_back(&property->key);
            entries.push_back(&property->value);
        }
    }
    return entries;
}

// The first entry that begins with "config.initial." and a number, by the number's digits. A key
// belongs to every number that its own digits begin with: "config.initial.10" to 1 as well, and the
// first in the list wins. The last entry is never looked at.
class FirstByNumber {
  public:
    explicit FirstByNumber(const Entries& entries) {
        for (std::size_t at = 0; at + 1 < entries.size(); ++at) {
            add(*entries[at], at);
        }
    }
    // The position of the entry, npos without one.
    [[nodiscard]] std::size_t find(const std::wstring& digits) const {
        const auto found = positions_.find(digits);
        return found == positions_.end() ? std::wstring::npos : found->second;
    }

  private:
    void add(const std::wstring& entry, std::size_t at) {
        if (!entry.starts_with(kPrefix)) {
            return;
        }
        const std::size_t begin = kPrefix.size();
        for (std::size_t length = 1; length <= kMostDigits && begin + length <= entry.size() &&
                                     isDigit(entry[begin + length - 1]);
             ++length) {
            positions_.emplace(entry.substr(begin, length), at);  // keeps the first
        }
    }

    std::unordered_map<std::wstring, std::size_t> positions_;
};

// The entries in the order of their numbers.
Entries orderEntries(const Entries& entries) {
    const FirstByNumber first(entries);
    Entries ordered;
    ordered.reserve(entries.size());
    for (std::size_t i = 1; i <= entries.size() / 2; ++i) {
        const std::wstring number = std::to_wstring(i);
        const std::size_t at = first.find(number);
        if (at == std::wstring::npos) {
            fatal(noReason(), messages.initialArgumentMissing, std::wstring(kPrefix) + number);
        }
        ordered.push_back(entries[at]);
        ordered.push_back(entries[at + 1]);
    }
    return ordered;
}

// The value behind "-initialCompleteFlag": the name of the completion property.
std::wstring completionProperty(const Entries& ordered) {
    std::size_t flag = 1;
    while (flag < ordered.size() && !ordered[flag]->starts_with(options::kInitialCompleteFlag)) {
        flag += 2;
    }
    if (flag + 2 >= ordered.size()) {
        fatal(noReason(), messages.initialFlagMissing);
    }
    return *ordered[flag + 2];
}

// The option that an argument begins with and that the first launch keeps, once each.
const Option* keptOption(const std::wstring& argument, const std::vector<const Option*>& taken) {
    const auto* const found =
        std::find_if(std::begin(kOptions), std::end(kOptions), [&](const Option& option) {
            return option.firstStart == FirstStart::kKept && argument.starts_with(option.name) &&
                   std::find(taken.begin(), taken.end(), &option) == taken.end();
        });
    return found == std::end(kOptions) ? nullptr : found;
}

// The JVM is kept, as the launcher's own.
void tellReplaced(const Argument& argument) {
    tellLoser(argument, argument == options::kVm ? whys::kOwnJvm : whys::kInitial);
}

}  // namespace

bool isInitialRequired(const LaunchInputs& inputs) {
    using enum InstallConfiguration;
    const InstallConfiguration configuration = inputs.traits.eConfig;
    if (configuration != kUser && configuration != kUserpb && configuration != kMultiuser) {
        return false;
    }
    const Entries entries = collectEntries(inputs.properties);
    if (entries.empty()) {
        return false;
    }
    const std::wstring name = completionProperty(orderEntries(entries));
    const std::wstring* completed = findProperty(name, inputs.userProperties);
    return completed == nullptr || !completed->starts_with(L"true");
}

Arguments initialArguments(const Arguments& arguments) {
    Arguments initial{arguments.front(), options::kConfig, L"initial"};
    std::vector<const Option*> taken;
    const std::size_t end = endOfOptions(arguments);
    for (std::size_t i = 1; i < end; ++i) {
        const Option* const option = keptOption(arguments[i].text, taken);
        const bool hasValue = option != nullptr && option->value != OptionValue::kNone;
        if (option == nullptr || (hasValue && (i + 1 == end || !canBeValue(arguments[i + 1])))) {
            tellReplaced(arguments[i]);
            continue;
        }
        taken.push_back(option);
        initial.push_back(arguments[i]);
        if (hasValue) {
            initial.push_back(arguments[++i]);
        }
    }
    std::for_each(arguments.begin() + static_cast<std::ptrdiff_t>(end), arguments.end(),
                  tellReplaced);
    // Without its JVM the first launch would run another one than every later launch.
    if (const Argument* vm = optionValue(options::kVm, arguments)) {
        initial.insert(initial.end(), {options::kVm, *vm});
    }
    return initial;
}

}  // namespace rcp
