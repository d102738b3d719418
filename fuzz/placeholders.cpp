// Placeholder substitution: all three sources, nested ones, and values that bring themselves back.
//
// Input: text, workspace, installation directory, value of the environment variable FUZZ, then
// values of the properties "a", "b", "c", ...
#include "launcher/properties/placeholders.h"

#include "diagnostics/svc_debug.h"
#include "fuzz/fuzz.h"
#include "launcher/vocabulary/variables.h"

#include <stdlib.h>

#include <algorithm>

namespace {

using namespace rcp;
using rcp::fuzz::require;

constexpr std::size_t kMostGrowth = std::size_t{1024} * 1024;

PropertyList properties(const std::vector<std::wstring>& values) {
    PropertyList list;
    wchar_t key = L'a';
    for (const std::wstring& value : values) {
        list.append({std::wstring(1, key++), value, {}});
    }
    return list;
}

std::size_t count(const std::wstring& text, std::wstring_view part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::wstring::npos;
         at = text.find(part, at + part.size())) {
        ++found;
    }
    return found;
}

void checkReplaceEvery(const std::wstring& text, const std::wstring& value) {
    const std::wstring_view placeholder = placeholders::kRcpHome;
    std::wstring out = text;
    replaceEvery(out, placeholder, value);
    const std::size_t found = count(text, placeholder);
    require(out.size() == text.size() - found * placeholder.size() + found * value.size(),
            "each placeholder becomes the value and nothing is lost");
}

void checkStandard(const StandardLocations& locations, const std::wstring& text) {
    checkReplaceEvery(text, locations.installDir);
    std::wstring out = text;
    replaceStdPlaceholders(locations, out);
    if (text.find(placeholders::kOpening) == std::wstring::npos) {
        require(out == text, "a text without placeholders stays");
    }
    Arguments arguments = {text, L"", text};
    replacePlaceholdersInArgv(locations, arguments);
    require(arguments.size() == 3 && arguments[1].text.empty() && arguments[0] == arguments[2],
            "arguments are replaced each for itself");
}

// The outcome for `text`; whether everything resolved.
bool checkUser(std::wstring text, const PropertyList& list, std::size_t longestValue) {
    const std::size_t longest = text.size() + kMostGrowth + longestValue;
    const bool hasPlaceholder = text.find(placeholders::kOpening) != std::wstring::npos;
    const std::wstring before = text;
    const bool resolved = replaceUserPlaceholders(text, list);
    require(text.size() <= longest, "the result has a bound");
    require(hasPlaceholder || (resolved && text == before), "a text without placeholders stays");
    if (resolved) {
        std::wstring again = text;
        require(replaceUserPlaceholders(again, list) && again == text,
                "what is resolved stays as it is");
    }
    return resolved;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Fields fields(data, size);
    const std::wstring text = fields.text();
    const StandardLocations locations{fields.text(), fields.text()};
    const std::string variable = fields.bytes();
    (void)setenv("FUZZ", variable.c_str(), 1);
    PropertyList list = properties(fields.texts());

    checkStandard(locations, text);
    (void)checkUser(text, list, size);
    std::wstring standard = text;
    replaceStdPlaceholders(locations, standard);
    const bool resolves = checkUser(standard, list, size);
    std::wstring all = text;
    setDebug(size % 16 == 1);
    const bool allResolve = replaceAllPlaceholders(locations, all, list);
    setDebug(false);
    require(allResolve == resolves, "what does not resolve is told, and nothing else");

    const std::size_t entries = list.entries().size();
    const bool listEnded =
        fuzz::endsLaunch([&] { replacePlaceholdersInRcpInstallProp(locations, list); });
    require(list.entries().size() == entries, "no entry is lost");
    if (!listEnded) {
        for (const Property& entry : list.entries()) {
            (void)checkUser(entry.value, list, size);
        }
    }
    fuzz::requireLinearTime(text, [&](std::wstring large) {
        replaceStdPlaceholders(locations, large);
        (void)replaceUserPlaceholders(large, list);
    });
    return 0;
}
