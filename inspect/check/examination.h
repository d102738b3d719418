// One installation as its launcher reads it: the property files with their entries, and what the
// launcher has put together when everything is read.
#pragma once

#include "inspect/options.h"
#include "launcher/inputs/launch_inputs.h"
#include "launcher/vocabulary/property_keys.h"

#include <map>
#include <string>
#include <vector>

namespace rcp::inspect {

struct RawLine {
    std::size_t number = 0;
    std::string text;  // without its line feed

    [[nodiscard]] bool isBlank() const;
    [[nodiscard]] bool isComment() const;
    /// Without the blanks in front of it.
    [[nodiscard]] std::string_view trimmed() const;
};

struct PropertyFile {
    KeyFile kind = kNoFile;
    std::string name;  // as findings show it
    std::string bytes;
    std::vector<RawLine> lines;
    PropertyList entries;  // as they stand in the file
    bool isRead = true;    // by a launch with this JVM
    bool isCut = false;    // it goes on behind these bytes
};

struct Examination {
    std::string installation;
    std::string launcher;
    std::vector<PropertyFile> files;               // those that can be read
    Arguments arguments;                           // the launcher's, before the extension
    LaunchInputs inputs;                           // placeholders not yet replaced
    PropertyList userEntries;                      // the user's list with its JVM arguments
    std::wstring base;                             // empty when it is not known
    std::map<std::string, Origin> variables = {};  // of the environment, where a file told them
    std::vector<std::wstring> unreadable;          // where a launch ends
    std::vector<std::pair<std::wstring, int>> passedOver;  // with what open(2) fails with

    [[nodiscard]] const PropertyFile* file(KeyFile kind) const;
    /// A path as findings show it.
    [[nodiscard]] std::string nameOf(const std::wstring& path) const;
    [[nodiscard]] std::string nameOf(const Origin& origin) const;
    /// The name of the launcher's own property file.
    [[nodiscard]] std::string launcherFile() const;
    /// The line of a key in the launcher's list, with its file; the launcher's file without one.
    [[nodiscard]] Origin originOf(Key key) const;
    /// Whether the launch begins a new configuration, so that nothing counts that the user's has now.
    [[nodiscard]] bool isAreaRenewed() const { return inputs.area >= UserArea::kReset; }
};

Examination examine(const Options& options);

}  // namespace rcp::inspect
