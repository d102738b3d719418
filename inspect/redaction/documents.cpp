// Redaction of the JSON that all outputs are made from: there a name and its value are two members.
#include "inspect/redaction/named_values.h"
#include "inspect/redaction/redactor.h"

#include <algorithm>
#include <iterator>

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

// The argument, or of what has one the members that tell it.
std::vector<Json*> textsOf(Json& thing) {
    std::vector<Json*> texts;
    if (thing.is_string()) {
        texts.push_back(&thing);
    }
    for (const char* member : {"text", "value", "effective"}) {
        if (thing.is_object() && thing.contains(member) && thing[member].is_string()) {
            texts.push_back(&thing[member]);
        }
    }
    return texts;
}

// Lines that belong together, as those of a log, are looked at together.
bool areLines(const std::string& member, const Json& list) {
    return member != "arguments" && list.size() > 1 &&
           std::all_of(list.begin(), list.end(), [](const Json& item) {
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

Json split(std::string_view text) {
    Json list = Json::array();
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = endOfLine(text, at);
        list.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return list;
}

// Where in a document a string stands.
struct StringPlace {
    std::string member;
    std::string name = {};  // of a value, else empty
    bool isList = false;    // it is several strings of a list, each in its line
};

bool hasMark(const Json& text) {
    return text.is_string() && text.get_ref<const std::string&>().find(kMark) != kNone;
}

// Calls visit(item, option) with every item of a list and the option of which it is the value, which may be empty.
template <typename Visit>
void walkList(Json& list, const Visit& visit) {
    std::string option;
    for (Json& item : list) {
        const std::vector<Json*> texts = textsOf(item);
        const std::string before = std::exchange(option, std::string());
        option = texts.empty() ? std::string() : texts.front()->template get<std::string>();
        const bool isValue = before.starts_with('-') &&
                             before.find_first_of("=: ") == std::string::npos && !isOption(option);
        visit(item, isValue ? before : std::string());
    }
}

// Calls visit(place, text) with every string. Of an argument that was made of placeholders walkMade() has taken what is
// secret; it is not the value of one.
template <typename Visit>
void walk(Json& node, const std::string& member, const Visit& visit) {
    if (node.is_string()) {
        visit(StringPlace{member}, node.template get_ref<std::string&>());
    } else if (node.is_array() && areLines(member, node)) {
        std::string text = joined(node);
        visit(StringPlace{.member = member, .isList = true}, text);
        node = split(text);
    } else if (node.is_array()) {
        walkList(node, [&](Json& item, const std::string& option) {
            for (Json* text : option.empty() ? std::vector<Json*>() : textsOf(item)) {
                visit(StringPlace{"option", option}, text->template get_ref<std::string&>());
            }
            walk(item, member, visit);
        });
    } else if (node.is_object()) {
        const std::string name = nameIn(node);
        for (auto& [key, value] : node.items()) {
            const bool isArgument = member == "placeholders" && key == "after" && hasMark(value);
            if (value.is_string() && !name.empty() && isOneOf(kValues, key) && !isArgument) {
                visit(StringPlace{key, name}, value.template get_ref<std::string&>());
            } else {
                walk(value, key, visit);
            }
        }
    }
}

// Calls visit(pattern, name, text) with every text that was made by replacing placeholders.
template <typename Visit>
void walkMade(Json& node, const std::string& option, const Visit& visit) {
    const auto stringIn = [](const Json& object, const char* member) {
        const bool isThere = object.is_object() && object.contains(member);
        return isThere && object[member].is_string() ? object[member].template get<std::string>()
                                                     : std::string();
    };
    const auto visitMember = [&](Json& object, const char* member, const std::string& pattern,
                                 const std::string& name) {
        if (object.is_object() && object.contains(member) && object[member].is_string()) {
            visit(pattern, option.empty() ? name : option,
                  object[member].template get_ref<std::string&>());
        }
    };
    if (node.is_array()) {
        walkList(node,
                 [&](Json& item, const std::string& before) { walkMade(item, before, visit); });
    } else if (node.is_object()) {
        visitMember(node, "effective", stringIn(node, "value"), nameIn(node));
        const Json source = node.value("source", Json());
        const std::string pattern = stringIn(source, "value");
        const std::string key = stringIn(source, "key");
        visitMember(node, "text", pattern, key);
        if (node.contains("placeholders")) {
            for (Json& placeholder : node["placeholders"]) {
                visitMember(placeholder, "after", pattern, key);
            }
        }
        for (Json& child : node) {
            walkMade(child, {}, visit);
        }
    }
}

std::string withPart(const std::string& text, const SecretPart& part, const std::string& by) {
    return text.substr(0, part.begin) + by + text.substr(part.end);
}

}  // namespace

// What in a text stands for the placeholders of a pattern; empty when none of them is secret.
SecretPart Redactor::partMadeOf(const std::string& pattern, const std::string& text) const {
    const std::size_t first = pattern.find("${");
    const std::size_t behind = pattern.rfind('}') + 1;
    for (std::size_t at = first; at != kNone; at = pattern.find("${", at + 1)) {
        std::string name = bareName(pattern.substr(at));
        if (!names_.isSecret(name) || text == pattern) {
            continue;
        }
        const std::string_view front = std::string_view(pattern).substr(0, first);
        const std::string_view back = std::string_view(pattern).substr(behind);
        const bool isFitting = front.size() + back.size() <= text.size() &&
                               text.starts_with(front) && text.ends_with(back);
        return isFitting ? SecretPart{front.size(), text.size() - back.size(), std::move(name)}
                         : SecretPart{0, text.size(), std::move(name)};
    }
    return {};
}

// The name in front of an argument is that of all behind it, quotes and lines included. Of "-Ddb.size=..." under a
// secret key that name may stay.
SecretPart Redactor::partUnder(const std::string& name, const std::string& value) const {
    const std::size_t equals = value.find_first_of("= \t\n");
    if (value.starts_with('-') && isAt(value, equals, "=") &&
        names_.isSecret(value.substr(0, equals))) {
        std::vector<SecretPart> parts;
        addPart(parts, value, {equals + 1, value.size(), value.substr(0, equals)});
        return parts.empty() ? SecretPart{} : parts.front();
    }
    const bool isUser = isUserOption(name) && hasPassword(value);
    SecretPart part = isUser ? SecretPart{0, value.size(), "user-info of an option"}
                             : narrowed(value, {0, value.size(), name});
    const std::string_view secret =
        std::string_view(value).substr(part.begin, part.end - part.begin);
    const bool isSecret = isUser || names_.isSecret(name);
    return isSecret && !isHarmless(part.name, secret) ? part : SecretPart{};
}

// What is made of placeholders may be a part of a secret that is known by a name: then that is taken, and not a half.
SecretPart Redactor::partMade(const std::string& pattern, const std::string& name,
                              const std::string& text) const {
    SecretPart made = partMadeOf(pattern, text);
    std::vector<SecretPart> around;
    if (made.begin < made.end) {
        around = secretsIn(text, names_);
        around.push_back(partUnder(name, text));
    }
    for (const SecretPart& one : around) {
        if (one.begin < made.end && made.begin < one.end) {
            made = {std::min(one.begin, made.begin), std::max(one.end, made.end), one.name};
        }
    }
    return made;
}

void Redactor::learnDocument(const Json& document) {
    Json copy = document;
    walkMade(copy, {}, [this](const auto& pattern, const auto& name, std::string& text) {
        if (const SecretPart part = partMade(pattern, name, text); part.begin < part.end) {
            learnWithin(text, part);
            learnValue(part.name, text.substr(part.begin, part.end - part.begin));
            text = withPart(text, part, std::string(kMark) + ">");
        }
    });
    walk(copy, {}, [this](const StringPlace& place, std::string& text) {
        const auto& [member, name, isList] = place;
        if (isOneOf(kSentences, member) || isOneOf(kFixed, member)) {
            return;
        }
        if (const SecretPart part = isList ? SecretPart{} : partUnder(name, text);
            part.begin < part.end) {
            learnValue(part.name, std::string_view(text).substr(part.begin, part.end - part.begin));
            learnWithin(text, part);
        }
        learn(text);
    });
}

void Redactor::redactDocument(Json& document) {
    const auto markPart = [this](std::string& text, const SecretPart& part) {
        const std::string_view secret =
            std::string_view(text).substr(part.begin, part.end - part.begin);
        text = withPart(text, part, mark(part.name, secret));
    };
    walkMade(document, {}, [&](const auto& pattern, const auto& name, std::string& text) {
        if (const SecretPart part = partMade(pattern, name, text); part.begin < part.end) {
            markPart(text, part);
        }
    });
    walk(document, {}, [&](const StringPlace& place, std::string& text) {
        const SecretPart part = place.isList ? SecretPart{} : partUnder(place.name, text);
        if (part.begin < part.end) {
            markPart(text, part);
        }
        if (!isOneOf(kFixed, place.member)) {  // a name may hold the user's
            text = redact(text);
        }
    });
}

}  // namespace rcp::inspect
