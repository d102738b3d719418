// The code of an application bundle: for which processors and systems it is, and what it links.
#include "inspect/check/bundle_subjects.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace rcp::inspect {
namespace {

const std::string kIntel = "x86_64";
const std::string kApple = "arm64";
// The first system of arm64; what the bundle promises for older ones does not concern it.
constexpr SystemVersion kFirstOfArm64{11, 0};

bool isFor(const CodeFile& file, const std::string& processor) {
    return std::any_of(file.images.begin(), file.images.end(),
                       [&](const CodeImage& image) { return image.processor == processor; });
}

// As which processors the launcher runs: on a Mac of each kind, what that system chooses.
std::set<std::string> startedAs(const Bundle& bundle, const CodeFile& launcher) {
    std::set<std::string> started;
    if (isFor(launcher, kIntel)) {
        started.insert(kIntel);
    }
    if (bundle.keys.isRead && isFor(launcher, kApple) &&
        (bundle.keys.firstProcessor != kIntel || !isFor(launcher, kIntel))) {
        started.insert(kApple);
    }
    return started;
}

bool isLoaded(const CodeFile& file) {
    const CodeKind kind = file.images.front().kind;
    return kind == CodeKind::kLibrary || kind == CodeKind::kPlugin;
}

void findInProcessors(const Bundle& bundle, const CodeFile& file,
                      const std::set<std::string>& started, Findings& findings) {
    for (const std::string& processor : started) {
        if (isLoaded(file) && !isFor(file, processor)) {
            findings.add("RI704", bundle.pathOf(file.path), 0,
                         "there is no code for " + processor + ", as which the launcher runs");
        }
    }
    const bool runsNowhere = !isFor(file, kIntel) && !isFor(file, kApple);
    if (file.images.front().kind == CodeKind::kProgram && runsNowhere) {
        findings.add("RI704", bundle.pathOf(file.path), 0,
                     "there is code for " + file.images.front().processor + " alone");
    }
}

void findInSystems(const Bundle& bundle, const CodeFile& file, Findings& findings) {
    const std::optional<SystemVersion> promised = versionOf(bundle.keys.oldestSystem);
    for (const CodeImage& image : file.images) {
        if (!promised || !image.oldestSystem) {
            continue;
        }
        const SystemVersion allowed =
            image.processor == kApple ? std::max(*promised, kFirstOfArm64) : *promised;
        if (allowed < *image.oldestSystem) {
            findings.add("RI705", bundle.pathOf(file.path), 0,
                         image.processor + " wants macOS " + textOf(*image.oldestSystem) +
                             ", LSMinimumSystemVersion promises " + bundle.keys.oldestSystem);
        }
    }
}

// Where libraries are looked for: with the names that stand for the loader's and the program's folder. Only
// what is in the bundle counts: what else is on this machine need not be on another.
class Lookup {
  public:
    explicit Lookup(const Bundle& bundle) : bundle_(bundle) {
        for (const CodeFile& file : bundle.code) {
            for (const CodeImage& image : file.images) {
                names_.insert(image.ownName);
                if (image.kind == CodeKind::kProgram) {
                    addPaths(file, image, programPaths_);
                }
            }
        }
    }

    /// What an image looks for and nothing in the bundle or the system is.
    [[nodiscard]] std::vector<std::string> missing(const CodeFile& file,
                                                   const CodeImage& image) const {
        std::set<std::string> paths = programPaths_;
        addPaths(file, image, paths);
        std::vector<std::string> result;
        for (const LinkedLibrary& library : image.libraries) {
            if (!library.mayBeMissing && !isThere(file, library.name, paths)) {
                result.push_back(library.name);
            }
        }
        return result;
    }
    /// The search paths of an image that are no folders.
    [[nodiscard]] std::vector<std::string> emptyPaths(const CodeFile& file,
                                                      const CodeImage& image) const {
        std::vector<std::string> result;
        for (const std::string& path : image.searchPaths) {
            if (!isOfSystem(path) && !isInBundle(expanded(file, path) + "/.")) {
                result.push_back(path);
            }
        }
        return result;
    }

  private:
    static bool isOfSystem(const std::string& path) {
        const std::string plain = std::filesystem::path(path).lexically_normal().string() + "/";
        return plain.starts_with("/usr/lib/") || plain.starts_with("/System/Library/");
    }

    [[nodiscard]] bool isInBundle(const std::string& path) const {
        const std::optional<std::string> name = bundle_.nameOf(path);
        return name && bundle_.owns(*name);
    }

    [[nodiscard]] std::string folderOf(const std::string& name) const {
        return std::filesystem::path(bundle_.pathOf(name)).parent_path().string();
    }

    // A library's "@executable_path" is the launcher's, which loads it.
    [[nodiscard]] std::string expanded(const CodeFile& file, const std::string& path) const {
        const std::string loader = "@loader_path";
        const std::string program = "@executable_path";
        const std::string& started = isLoaded(file) ? bundle_.launcher : file.path;
        return path.starts_with(loader)    ? folderOf(file.path) + path.substr(loader.size())
               : path.starts_with(program) ? folderOf(started) + path.substr(program.size())
                                           : path;
    }

    void addPaths(const CodeFile& file, const CodeImage& image,
                  std::set<std::string>& paths) const {
        for (const std::string& path : image.searchPaths) {
            paths.insert(expanded(file, path));
        }
    }

    [[nodiscard]] bool isThere(const CodeFile& file, const std::string& name,
                               const std::set<std::string>& paths) const {
        constexpr std::string_view kSearched = "@rpath/";
        if (isOfSystem(name)) {
            return true;
        }
        if (!name.starts_with(kSearched)) {
            return isInBundle(expanded(file, name));
        }
        // A library of that name that is loaded already counts, wherever it lies.
        return names_.contains(name) ||
               std::any_of(paths.begin(), paths.end(), [&](const std::string& path) {
                   return isInBundle(path + "/" + name.substr(kSearched.size()));
               });
    }

    const Bundle& bundle_;
    std::set<std::string> names_;
    std::set<std::string> programPaths_;
};

void findInLibraries(const Bundle& bundle, const Lookup& lookup, const CodeFile& file,
                     Findings& findings) {
    for (const CodeImage& image : file.images) {
        for (const std::string& name : lookup.missing(file, image)) {
            findings.add("RI706", bundle.pathOf(file.path), 0, "\"" + name + "\" leads nowhere");
        }
        for (const std::string& path : lookup.emptyPaths(file, image)) {
            findings.add("RI706", bundle.pathOf(file.path), 0,
                         "the search path \"" + path + "\" leads nowhere");
        }
    }
}

}  // namespace

void findInBundleCode(const Bundle& bundle, Findings& findings) {
    const CodeFile* const launcher = bundle.codeFile(bundle.launcher);
    if (launcher == nullptr && bundle.has(bundle.launcher)) {
        findings.add("RI703", bundle.pathOf(bundle.launcher), 0, "it is no program of macOS");
    }
    const std::set<std::string> started =
        launcher == nullptr ? std::set<std::string>() : startedAs(bundle, *launcher);
    const Lookup lookup(bundle);
    for (const CodeFile& file : bundle.code) {
        if (file.images.empty()) {
            findings.add("RI703", bundle.pathOf(file.path), 0,
                         "it is damaged: something in it leads out of it");
            continue;
        }
        if (file.images.front().kind == CodeKind::kOther) {
            continue;  // objects, debugging symbols: nobody loads them
        }
        if (file.images.front().kind == CodeKind::kProgram && !file.isExecutable) {
            findings.add("RI602", bundle.pathOf(file.path), 0, "the program is not executable");
        }
        findInProcessors(bundle, file, started, findings);
        findInSystems(bundle, file, findings);
        findInLibraries(bundle, lookup, file, findings);
    }
}

}  // namespace rcp::inspect
