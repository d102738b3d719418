#include "launcher/properties/data_path.h"

#include "platform/environment.h"
#include "platform/files.h"

namespace rcp {
namespace {

// The value is cut by position:
//
//   0          11                             40              54
//   |   lead   |            middle            |      tag      |  rest
//   ${env.HOME}/Library/Application Support/   ZUN Velmo Data  ...
constexpr std::size_t kMiddle = 11;
constexpr std::size_t kTag = 40;
constexpr std::size_t kRest = 54;

constexpr wchar_t kFolder[] = L"ZUN Velmo Data";
constexpr wchar_t kEarlierFolder[] = L"OVR Velmo Data";

}  // namespace

std::wstring getDataPath(const std::wstring& /*key*/, const std::wstring& value) {
    if (value.size() <= kRest || value.compare(kTag, kRest - kTag, kFolder) != 0) {
        return value;
    }
    const std::wstring home = getUserHome();
    const std::wstring middle = value.substr(kMiddle, kTag - kMiddle);
    if (isDirectory(home + middle + kFolder) || !isDirectory(home + middle + kEarlierFolder)) {
        return value;
    }
    return value.substr(0, kTag) + kEarlierFolder + value.substr(kRest);
}

}  // namespace rcp
