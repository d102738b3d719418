// macOS: UTF-8 texts compared without regard to case.
#include "platform/macos/cf_ref.h"
#include "platform/platform.h"

namespace rcp::platform {

bool equalIgnoringCase(const std::string& left, const std::string& right) {
    const CfRef<CFStringRef> leftText = makeCfString(left);
    const CfRef<CFStringRef> rightText = makeCfString(right);
    if (!leftText || !rightText) {
        return left == right;
    }
    return CFStringCompare(leftText.get(), rightText.get(), kCFCompareCaseInsensitive) ==
           kCFCompareEqualTo;
}

}  // namespace rcp::platform
