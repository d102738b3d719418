// Redaction of the JSON that all outputs are made from: there a name and its value are two members.
#include "inspect/redaction/redactor.h"
#include "inspect/redaction/text_rules.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace rcp::inspect {
namespace {

using Json = Redactor::Json;

// Members that hold one of a few words, which programs compare.
constexpr std::string_view kFixed[] = {"layout", "command", "kind", "state", "change",
                                       "mark",   "role",    "code", "digest"};
// Sentences of rcpinspect: nothing is to be learnt from them.
constexpr std::string_view kSentences[] = {"rule", "usage", "meaning", "remedy",
                                           "why",  "by",    "cause",   "step"};
constexpr std::string_view kNames[] = {"key", "name"};
constexpr std::string_view kValues[] = {"value", "effective", "before", "after"};

// "env.TOKEN,none" and "${env.TOKEN,none}" are about "env.TOKEN".
std::string bareName(std::string name) {
    name.erase(0, name.starts_with("${") ? 2 : 0);
    return name.substr(0, name.find_first_of(",}"));
}

std::string nameIn(const Json& object) {
    for (const std::string_view member : kNames) {
        const auto found = object.find(member);
        if (found != object.end() && found->is_string()) {
            return bareName(found->get<std::string>());
        }
    }
    return {};
}

// An argument, or what has one.
Json* textOf(Json& thing) {
    if (thing.is_string()) {
        return &thing;
    }
    for (const char* member : {"text", "value"}) {
        if (thing.is_object() && thing.contains(member) && thing[member].is_string()) {
            return &thing[member];
        }
    }
    return nullptr;
}

// Lines that belong together, as those of a log, are looked at together.
bool areLines(const Json& list) {
    return list.size() > 1 && std::all_of(list.begin(), list.end(), [](const Json& item) {
               return item.is_string() &&
                      item.get_ref<const std::string&>().find('\n') == std::string::npos;
           });
}

std::string joined(const Json& list) {
    std::string text;
    for (const Json& item : list) {
        text += (&item == &list.front() ? "" : "\n") + item.get<std::string>();
    }
    return text;
}

Json split(const std::string& text) {
    Json list = Json::array();
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        list.push_back(line);
    }
    return list;
}

// Calls visit(member, name, text) with every string; `name` is that of a value, else empty.
template <typename Visit>
void walk(Json& node, const std::string& member, const Visit& visit) {
    if (node.is_string()) {
        visit(member, std::string(), node.template get_ref<std::string&>());
    } else if (node.is_array() && areLines(node)) {
        std::string text = joined(node);
        visit(member, std::string(), text);
        node = split(text);
    } else if (node.is_array()) {
        std::string option;
        for (Json& item : node) {
            Json* text = textOf(item);
            const std::string before = std::exchange(option, std::string());
            option = text == nullptr ? std::string() : text->template get<std::string>();
            if (!before.empty() && text != nullptr && before.starts_with('-') &&
                before.find_first_of("=: ") == std::string::npos && !option.starts_with('-')) {
                visit("option", before, text->template get_ref<std::string&>());
            }
            walk(item, member, visit);
        }
    } else if (node.is_object()) {
        const std::string name = nameIn(node);
        for (auto& [key, value] : node.items()) {
            if (value.is_string() && !name.empty() && isOneOf(kValues, key)) {
                visit(key, name, value.template get_ref<std::string&>());
            } else {
                walk(value, key, visit);
            }
        }
    }
}

}  // namespace

void Redactor::learnDocument(const Json& document) {
    Json copy = document;
    walk(copy, {}, [this](const std::string& member, const std::string& name, std::string& text) {
        if (!name.empty() && names_.isSecret(name) && secretsIn(text, names_).empty()) {
            learnValue(name, text);
        } else if (!isOneOf(kSentences, member) && !isOneOf(kFixed, member)) {
            learn(text);
        }
    });
}

// "-Ddb.password=..." under a secret key is an argument, of which the name may stay.
void Redactor::redactValue(const std::string& name, std::string& value) {
    const bool isSecret = !name.empty() && names_.isSecret(name) && !isHarmless(value);
    value = isSecret && secretsIn(value, names_).empty() ? mark(name, value) : redact(value);
}

void Redactor::redactDocument(Json& document) {
    walk(document, {},
         [this](const std::string& member, const std::string& name, std::string& text) {
             if (!isOneOf(kFixed, member)) {
                 redactValue(name, text);
             }
         });
}

}  // namespace rcp::inspect
