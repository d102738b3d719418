#include "inspect/diff/compare.h"

#include "inspect/diff/sequence_diff.h"

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <set>

namespace rcp::inspect {
namespace {

using nlohmann::json;

std::string homeOf(const Side& side) {
    return side.about.value("installation", std::string());
}

// What stands in both as it is stays: it may name the installation of one of them, as what the user's file holds
// does, which both sides share.
std::vector<std::string> comparableElements(const Side& side, const Side& other) {
    std::set<std::string> others;
    for (const json& element : other.elements) {
        others.insert(element["text"]);
    }
    std::vector<std::string> texts;
    for (const json& element : side.elements) {
        const std::string text = element["text"];
        texts.push_back(others.contains(text) ? text : withoutHome(text, homeOf(side)));
    }
    return texts;
}

json differingElements(const Side& first, const Side& second) {
    json result = json::array();
    for (const Edit& edit :
         differences(comparableElements(first, second), comparableElements(second, first))) {
        json element = (edit.isAdded ? second : first).elements[edit.position];
        json described{{"change", edit.isAdded ? "added" : "removed"},
                       {"element", edit.position},
                       {"text", element["text"]}};
        if (element.contains("source")) {
            described["source"] = element["source"];
        }
        result.push_back(described);
    }
    return result;
}

// What tells whether two things of two sides are the same.
using Likeness = std::function<std::string(const json&)>;

std::string joined(std::initializer_list<json> parts) {
    std::string text;
    for (const json& part : parts) {
        text += (part.is_string() ? part.get<std::string>() : part.dump()) + "\n";
    }
    return text;
}

json withChange(const json& thing, const char* change) {
    json described{{"change", change}};
    described.update(thing);
    return described;
}

void addMissing(json& result, const json& ours, const std::string& home, const json& theirs,
                const std::string& otherHome, const char* change, const Likeness& likeness) {
    std::set<std::string> same;
    std::set<std::string> alike;
    for (const json& thing : theirs) {
        same.insert(likeness(thing));
        alike.insert(withoutHome(likeness(thing), otherHome));
    }
    for (const json& thing : ours) {
        if (!same.contains(likeness(thing)) &&
            !alike.contains(withoutHome(likeness(thing), home))) {
            result.push_back(withChange(thing, change));
        }
    }
}

// What one side has and the other has not, or not so.
json differing(const Side& first, const Side& second, json Side::*things,
               const Likeness& likeness) {
    json result = json::array();
    addMissing(result, first.*things, homeOf(first), second.*things, homeOf(second), "removed",
               likeness);
    addMissing(result, second.*things, homeOf(second), first.*things, homeOf(first), "added",
               likeness);
    return result;
}

// Beside each other what is of one name.
json byName(json differences) {
    std::stable_sort(
        differences.begin(), differences.end(),
        [](const json& left, const json& right) { return left["name"] < right["name"]; });
    return differences;
}

json differingVariables(const Side& first, const Side& second) {
    json result = json::array();
    for (const json& variable :
         byName(differing(first, second, &Side::environment, [](const json& one) {
             return joined({one["name"], one["after"]});
         }))) {
        result.push_back({{"change", variable["change"]},
                          {"name", variable["name"]},
                          {"value", variable["after"]},
                          {"source", variable["source"]}});
    }
    return result;
}

// In another file of the same name, or on another line, an entry is the same.
json differingProperties(const Side& first, const Side& second) {
    return byName(differing(first, second, &Side::properties, [](const json& one) {
        const std::string file = one["source"]["file"];
        return joined({one["name"], one["value"], file.substr(file.rfind('/') + 1)});
    }));
}

json differingFindings(const Side& first, const Side& second) {
    return differing(first, second, &Side::findings, [](const json& one) {
        return joined({one["code"], one["file"], one["message"]});
    });
}

json differingCopies(const Side& first, const Side& second) {
    return differing(first, second, &Side::copies, [](const json& one) {
        return joined({one["copy"], one["message"]});
    });
}

json differingTrees(const Tree& first, const Tree& second) {
    json result = json::array();
    for (const FileDifference& file : differingFiles(first, second)) {
        using enum FileDifference::Kind;
        const char* change = file.kind == kRemoved ? "removed"
                             : file.kind == kAdded ? "added"
                                                   : "changed";
        json described{{"change", change}, {"path", file.path}};
        if (file.kind == kBecameLink || file.kind == kBecameFile) {
            described["became"] = file.kind == kBecameLink ? "link" : "file";
        }
        if (file.kind == kUnreadable) {
            described["isReadable"] = false;
        }
        result.push_back(described);
    }
    return result;
}

// A recorded launch has started the platform.
bool differsInOutcome(const Side& first, const Side& second) {
    const json ours = first.about.value("outcome", json());
    const json theirs = second.about.value("outcome", json());
    return ours.is_null() ? theirs.contains("obstacle")
                          : ours != theirs && withoutHome(ours.dump(), homeOf(first)) !=
                                                  withoutHome(theirs.dump(), homeOf(second));
}

}  // namespace

json compare(const Side& first, const Side& second) {
    json result{{"layout", 1},
                {"command", "diff"},
                {"first", first.about},
                {"second", second.about},
                {"elements", differingElements(first, second)}};
    const bool areLaunches = first.files && second.files;
    const json none = json::array();
    result["environment"] = areLaunches ? differingVariables(first, second) : none;
    result["properties"] = areLaunches ? differingProperties(first, second) : none;
    result["copies"] = differingCopies(first, second);
    result["files"] = areLaunches ? differingTrees(*first.files, *second.files) : none;
    result["findings"] = areLaunches ? differingFindings(first, second) : none;
    bool isDifferent = differsInOutcome(first, second);
    for (const char* part :
         {"elements", "environment", "properties", "copies", "files", "findings"}) {
        isDifferent |= !result[part].empty();
    }
    result["isDifferent"] = isDifferent;
    return result;
}

}  // namespace rcp::inspect
