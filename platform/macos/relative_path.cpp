// macOS: a relative path made absolute through a file URL. The URL is made from and read back as a
// file-system path and never as a text in URL form, where a blank, "#", "?" or "%20" in a name
// would mean something else.
#include "platform/macos/cf_ref.h"
#include "platform/platform.h"

#include <cstddef>

namespace rcp::platform {

namespace {

CfRef<CFURLRef> makeUrl(const std::string& path, bool isDirectory, CFURLRef base) {
    return CfRef<CFURLRef>(CFURLCreateFromFileSystemRepresentationRelativeToBase(
        nullptr, reinterpret_cast<const UInt8*>(path.data()), static_cast<CFIndex>(path.size()),
        isDirectory, base));
}

}  // namespace

std::optional<std::string> absolutePath(const std::string& base, const std::string& path) {
    if (path.starts_with('/')) {
        return path;
    }
    // A text that is no UTF-8 makes a URL whose path is empty: the base, or a relative path, would be
    // given for what was asked.
    if (!base.starts_with('/') || !makeCfString(base) || !makeCfString(path)) {
        return std::nullopt;
    }
    std::string relative = path;
    while (relative.ends_with('/')) {
        relative.pop_back();
    }
    // An empty path names the base itself; there is no URL for it.
    if (relative.empty()) {
        relative = ".";
    }
    const CfRef<CFURLRef> baseUrl = makeUrl(base, true, nullptr);
    if (!baseUrl) {
        return std::nullopt;
    }
    const CfRef<CFURLRef> url = makeUrl(relative, false, baseUrl.get());
    if (!url) {
        return std::nullopt;
    }
    // The call does not tell a small buffer from another failure. The file system's form of a name
    // decomposes letters and so may be longer than what was given, but by no more than this.
    constexpr std::size_t kGrowth = 4;
    std::string result(kGrowth * (base.size() + relative.size()) + kGrowth, '\0');
    if (!CFURLGetFileSystemRepresentation(url.get(), true, reinterpret_cast<UInt8*>(result.data()),
                                          static_cast<CFIndex>(result.size()))) {
        return std::nullopt;
    }
    result.resize(result.find('\0'));
    return result;
}

}  // namespace rcp::platform
