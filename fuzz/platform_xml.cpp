// Lines of the master "platform.xml".
//
// Input: the line, then the four values.
#include "launcher/user_area/platform_xml.h"

#include "fuzz/fuzz.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/variables.h"

namespace {

using namespace rcp;
using rcp::fuzz::require;

constexpr std::wstring_view kIds[] = {placeholders::kFeatureId, placeholders::kParentFeatureId};
constexpr std::wstring_view kVersions[] = {placeholders::kFeatureVersion,
                                           placeholders::kParentFeatureVersion};
constexpr std::size_t kShortestPlaceholder = kIds[0].size();

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Fields fields(data, size);
    const std::wstring line = fields.text();
    PropertyList properties;
    std::size_t longestValue = 0;
    bool isComplete = true;
    bool bringsPlaceholders = false;
    for (const Key key : {keys::kFeatureId, keys::kFeatureVersion, keys::kParentFeatureId,
                          keys::kParentFeatureVersion}) {
        const std::wstring value = fields.text();
        isComplete &= !value.empty();
        bringsPlaceholders |= value.find_first_of(L"${}") != std::wstring::npos;
        longestValue = std::max(longestValue, value.size());
        if (!value.empty()) {
            properties.append({std::wstring(key), value, {}});
        }
    }

    const bool isFeature =
        line.find(kIds[0]) != std::wstring::npos || line.find(kIds[1]) != std::wstring::npos;
    const std::wstring bare = platformXmlLine(line, properties, Features::kBare);
    require(bare == (isFeature ? L"<feature>" : line),
            "a feature's line becomes bare, others stay");

    const std::wstring filled = platformXmlLine(line, properties, Features::kFilledIn);
    require(isFeature || filled == line, "a line without a feature's id stays");
    const std::size_t most = line.size() / kShortestPlaceholder + 1;
    require(filled.size() <= line.size() + most * most * longestValue * longestValue + longestValue,
            "the result has a bound");
    if (isComplete && !bringsPlaceholders) {
        require(filled.size() <= line.size() + most * longestValue, "each is filled in once");
        for (std::size_t i = 0; i < 2; ++i) {
            if (line.find(kIds[i]) != std::wstring::npos) {
                require(filled.find(kIds[i]) == std::wstring::npos &&
                            filled.find(kVersions[i]) == std::wstring::npos,
                        "a feature's placeholders are filled in");
            }
        }
        require(platformXmlLine(filled, properties, Features::kFilledIn) == filled,
                "filling in twice is filling in once");
    }
    fuzz::requireLinearTime(line, [&](const std::wstring& large) {
        (void)platformXmlLine(large, properties, Features::kFilledIn);
    });
    return 0;
}
