#include "inspect/check/jvm_options.h"

#include "launcher/vocabulary/keys.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace rcp::inspect {
namespace {

constexpr std::wstring_view kStartOptions[] = {L"-Xms", L"-XX:InitialHeapSize="};
constexpr std::wstring_view kLimitOptions[] = {L"-Xmx", L"-XX:MaxHeapSize="};
constexpr std::wstring_view kSizeOptions[] = {L"-Xmx", L"-Xms", L"-Xmn", L"-Xss"};

constexpr std::wstring_view kCollectors[] = {
    L"UseSerialGC", L"UseParallelGC", L"UseConcMarkSweepGC", L"UseG1GC",
    L"UseZGC",      L"UseEpsilonGC",  L"UseShenandoahGC",
};

// The prefix among `options` that the argument begins with; empty without one.
template <std::size_t count>
std::wstring_view prefixOf(std::wstring_view argument, const std::wstring_view (&options)[count]) {
    const auto* found =
        std::find_if(std::begin(options), std::end(options),
                     [argument](std::wstring_view option) { return argument.starts_with(option); });
    return found == std::end(options) ? std::wstring_view() : *found;
}

unsigned shiftOf(wchar_t unit) {
    switch (unit | 0x20) {
        case L'k':
            return 10;
        case L'm':
            return 20;
        case L'g':
            return 30;
        case L't':
            return 40;
        default:
            return 0;
    }
}

}  // namespace

const Argument* lastHeapSize(HeapSize size, const Arguments& arguments) {
    const auto& options = size == HeapSize::kStart ? kStartOptions : kLimitOptions;
    const auto found =
        std::find_if(arguments.rbegin(), arguments.rend(), [&](const Argument& argument) {
            return !prefixOf(argument.text, options).empty() && heapBytes(argument.text) > 0;
        });
    return found == arguments.rend() ? nullptr : &*found;
}

std::uint64_t heapBytes(std::wstring_view option) {
    std::wstring_view prefix = prefixOf(option, kStartOptions);
    prefix = prefix.empty() ? prefixOf(option, kLimitOptions) : prefix;
    std::uint64_t bytes = 0;
    for (const wchar_t character : option.substr(prefix.size())) {
        if (character < L'0' || character > L'9') {
            return bytes << shiftOf(character);
        }
        bytes = bytes * 10 + static_cast<std::uint64_t>(character - L'0');
    }
    return bytes;
}

std::vector<const Argument*> chosenCollectors(const Arguments& arguments) {
    std::map<std::wstring_view, const Argument*> states;
    for (const Argument& argument : arguments) {
        const std::wstring_view view = argument.text;
        if (!view.starts_with(L"-XX:+") && !view.starts_with(L"-XX:-")) {
            continue;
        }
        const std::wstring_view name = view.substr(5);
        if (std::find(std::begin(kCollectors), std::end(kCollectors), name) !=
            std::end(kCollectors)) {
            states[name] = view[4] == L'+' ? &argument : nullptr;
        }
    }
    std::vector<const Argument*> chosen;
    for (const Argument& argument : arguments) {
        if (std::any_of(states.begin(), states.end(),
                        [&](const auto& state) { return state.second == &argument; })) {
            chosen.push_back(&argument);
        }
    }
    return chosen;
}

std::wstring jvmOptionName(std::wstring_view option) {
    if (option.starts_with(L"-XX:")) {
        std::wstring_view name = option.substr(4);
        if (name.starts_with(L'+') || name.starts_with(L'-')) {
            name.remove_prefix(1);
        }
        return L"-XX:" + std::wstring(name.substr(0, name.find(L'=')));
    }
    if (option.starts_with(keys::kSystemProperty)) {
        return std::wstring(option.substr(0, option.find(L'=')));
    }
    return std::wstring(prefixOf(option, kSizeOptions));
}

}  // namespace rcp::inspect
