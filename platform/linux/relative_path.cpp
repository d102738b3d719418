// Linux: a relative path made absolute by its text alone. The rules are those by which Core
// Foundation resolves a relative file URL, so that a path means the same on both systems: "." and
// ".." go, ".." takes the element before it whatever that is on disk, empty elements stay, slashes
// at the end go.
#include "platform/platform.h"

#include <cstddef>
#include <vector>

namespace rcp::platform {

namespace {

/// Applies the elements of `text`, up to the next slash each, to those collected so far.
void append(std::vector<std::string_view>& elements, std::string_view text) {
    while (true) {
        const std::size_t slash = text.find('/');
        const std::string_view element = text.substr(0, slash);
        if (element == "..") {
            if (!elements.empty()) {
                elements.pop_back();
            }
        } else if (element != ".") {
            elements.push_back(element);
        }
        if (slash == std::string_view::npos) {
            return;
        }
        text.remove_prefix(slash + 1);
    }
}

std::string_view withoutTrailingSlashes(std::string_view path) {
    while (path.ends_with('/')) {
        path.remove_suffix(1);
    }
    return path;
}

}  // namespace

std::optional<std::string> absolutePath(const std::string& base, const std::string& path) {
    if (path.starts_with('/')) {
        return path;
    }
    if (!base.starts_with('/')) {
        return std::nullopt;
    }
    std::vector<std::string_view> elements;
    const std::string_view folder = withoutTrailingSlashes(base);
    if (!folder.empty()) {
        append(elements, folder.substr(1));
    }
    // An empty path names the base itself, as "." does.
    const std::string_view relative = withoutTrailingSlashes(path);
    if (!relative.empty()) {
        append(elements, relative);
    }
    std::string result;
    for (const std::string_view element : elements) {
        result += '/';
        result += element;
    }
    return result.empty() ? "/" : result;
}

}  // namespace rcp::platform
