#include "inspect/page/page.h"

#include "inspect/page/page_template.h"
#include "platform/text.h"
#include "platform/whole_file.h"

#include <errno.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <memory>
#include <nlohmann/json.hpp>

namespace rcp::inspect {
namespace {

// JSON that can stand in a script element: without "<" nothing in it ends that element or opens a
// comment. ASCII throughout, so no character set and no line separator of JavaScript is a concern;
// bytes that are not UTF-8 become U+FFFD, since an odd file must be explained as well.
std::string asScriptData(const nlohmann::json& data) {
    constexpr int kOneLine = -1;
    const std::string text =
        data.dump(kOneLine, ' ', true, nlohmann::json::error_handler_t::replace);
    std::string escaped;
    escaped.reserve(text.size());
    for (const char character : text) {
        if (character == '<') {
            escaped += "\\u003c";  // only strings can hold it
        } else {
            escaped += character;
        }
    }
    return escaped;
}

// The name to write: behind a link its target, so that the link stays. Empty, with errno set, when
// the name is taken by what is no file: to put one in place of a device would take the device away.
std::string fileToReplace(const std::string& file) {
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) {
        return errno == ENOENT ? file : std::string();
    }
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return {};
    }
    const std::unique_ptr<char, decltype(&free)> resolved(realpath(file.c_str(), nullptr), &free);
    return resolved ? std::string(resolved.get()) : std::string();
}

}  // namespace

bool writePage(const nlohmann::json& told, const std::string& file) {
    const std::string target = fileToReplace(file);
    if (target.empty()) {
        return false;
    }
    const std::wstring wide = toWide(target);
    if (wide.empty()) {
        return false;  // EILSEQ: not in the locale's characters
    }
    WholeFile page(wide);
    return page.open() && page.write(kPageHead) && page.write(asScriptData(told)) &&
           page.write(kPageTail) && page.commit();
}

}  // namespace rcp::inspect
