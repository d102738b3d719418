#include "inspect/bundle/bundle.h"

#include "inspect/check/launcher_end.h"
#include "inspect/quiet_read.h"
#include "inspect/rehearsal/staged_tree.h"
#include "platform/bundle_metadata.h"
#include "platform/files.h"
#include "platform/text.h"

#include <algorithm>
#include <filesystem>
#include <optional>

namespace rcp::inspect {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kStart = 16;  // bytes that tell what a file is
// A seal has some hundred bytes for each file of the bundle, and a JVM alone has hundreds of files.
constexpr std::size_t kLargestSeal = std::size_t{64} << 20;

std::optional<platform::PropertyListDocument> readList(const std::string& path) {
    std::optional<platform::PropertyListDocument> list;
    endOf([&] { list = createPropertiesListFromFile(toWide(path)); });
    return list && list->isDictionary() ? std::move(list) : std::nullopt;
}

// As XML; empty when it is missing or cannot be read.
std::string readSeal(const std::string& path) {
    const std::string bytes = readQuietly(path, kLargestSeal + 1);
    std::optional<platform::PropertyListDocument> list;
    endOf([&] { list = platform::parsePropertyList(bytes, kLargestSeal); });
    return list && list->isDictionary() ? list->toXml() : std::string();
}

// The first text of an array, in the form in which every list is written.
std::string firstOf(const std::string& xml, const std::string& key) {
    constexpr std::string_view kText = "<string>";
    const std::size_t array = xml.find("<key>" + key + "</key>");
    const std::size_t end = xml.find("</array>", array);
    const std::size_t text = xml.find(kText, array);
    if (array == std::string::npos || end == std::string::npos || text > end) {
        return {};
    }
    const std::size_t first = text + kText.size();
    return xml.substr(first, xml.find('<', first) - first);
}

void addFile(const fs::directory_entry& entry, const std::string& name, Bundle& bundle) {
    std::error_code failed;
    if (!entry.is_regular_file(failed) || entry.is_symlink(failed)) {
        return;
    }
    const std::string path = bundle.pathOf(name);
    CodeFile file;
    file.path = name;
    if (!looksLikeMachO(readQuietly(path, kStart))) {
        if (file.path.starts_with("MacOS/")) {
            bundle.strangers.push_back(file.path);
        }
        return;
    }
    file.isExecutable = isExecutable(path);
    file.images = readMachO(readQuietly(path)).value_or(std::vector<CodeImage>());
    bundle.code.push_back(std::move(file));
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        result += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : std::string(1, c);
    }
    return result;
}

}  // namespace

bool Bundle::has(const std::string& name) const {
    return existsA(pathOf(name));
}

std::optional<std::string> Bundle::nameOf(const std::string& path) const {
    const std::string plain = fs::path(path).lexically_normal().string();
    const std::string here = contents + "/";
    if (plain.starts_with(here)) {
        return plain.substr(here.size());
    }
    const std::string bundleName = fs::path(contents).parent_path().filename().string();
    const std::string elsewhere = "/" + bundleName + "/Contents/";
    const std::size_t at = plain.rfind(elsewhere);
    return !plain.starts_with('/') || at == std::string::npos
               ? std::nullopt
               : std::optional(plain.substr(at + elsewhere.size()));
}

bool Bundle::owns(const std::string& name) const {
    const auto folder = resolvedPath(contents);
    const auto path = resolvedPath(pathOf(name));
    return folder && path && (*path + "/").starts_with(*folder + "/");
}

const CodeFile* Bundle::codeFile(const std::string& name) const {
    const auto found = std::find_if(code.begin(), code.end(),
                                    [&](const CodeFile& file) { return file.path == name; });
    return found == code.end() ? nullptr : &*found;
}

bool Bundle::seals(const std::string& name) const {
    return seal.find("<key>" + escaped(name) + "</key>") != std::string::npos;
}

std::string contentsAround(const std::string& launcher) {
    const fs::path folder = fs::path(launcher).parent_path();
    const fs::path contents = folder.parent_path();
    const bool isBundle = folder.filename() == "MacOS" && contents.filename() == "Contents";
    return isBundle ? contents.string() : std::string();
}

std::string launcherOfBundle(const std::string& path) {
    const std::string contents = path + "/Contents";
    if (!isDirectory(toWide(contents))) {
        return {};
    }
    const std::string executable = readBundleKeys(contents + "/Info.plist").executable;
    const bool isName = !executable.empty() && executable.find('/') == std::string::npos;
    return contents + "/MacOS/" + (isName ? executable : "rcplauncher");
}

BundleKeys readBundleKeys(const std::string& path) {
    BundleKeys keys;
    const auto list = readList(path);
    if (!list) {
        return keys;
    }
    const auto value = [&](const char* key) { return list->stringForKey(key).value_or(""); };
    keys.isRead = true;
    keys.executable = value("CFBundleExecutable");
    keys.identifier = value("CFBundleIdentifier");
    keys.type = value("CFBundlePackageType");
    keys.oldestSystem = value("LSMinimumSystemVersion");
    keys.firstProcessor = firstOf(list->toXml(), "LSArchitecturePriority");
    return keys;
}

Bundle readBundle(const std::string& contents, const std::string& launcher) {
    Bundle bundle;
    bundle.contents = contents;
    bundle.launcher = launcher.substr(contents.size() + 1);
    bundle.keys = readBundleKeys(bundle.pathOf("Info.plist"));
    bundle.seal = readSeal(bundle.pathOf(kSealFile));
    std::error_code failed;
    const std::string place = placeOf(contents);
    fs::recursive_directory_iterator files(place, fs::directory_options::skip_permission_denied,
                                           failed);
    for (; !failed && files != fs::recursive_directory_iterator(); files.increment(failed)) {
        addFile(*files, files->path().string().substr(place.size() + 1), bundle);
    }
    std::sort(bundle.strangers.begin(), bundle.strangers.end());
    std::sort(bundle.code.begin(), bundle.code.end(),
              [](const CodeFile& left, const CodeFile& right) { return left.path < right.path; });
    return bundle;
}

}  // namespace rcp::inspect
