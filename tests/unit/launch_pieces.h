// What the tests of the command line's pieces share.
#pragma once

#include "diagnostics/observer.h"
#include "launcher/command_line/plan.h"
#include "launcher/inputs/launch_inputs.h"
#include "launcher/properties/property_list.h"
#include "launcher/properties/vm_argument_map.h"
#include "platform/text.h"
#include "tests/unit/fixture.h"

#include <gmock/gmock.h>
#include <stdlib.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace rcp::test {

/// For the pieces of a command line.
class CommandLineTest : public LauncherTest {
  protected:
    Start start_ = Start::kOrdinary;
    CommandLine line_;
    LaunchInputs inputs_;
};

/// What the launcher tells whoever explains a launch: "text: why", and the place of what counts instead.
class LoserNotes : public Observer {
  public:
    LoserNotes() { observer = this; }
    LoserNotes(const LoserNotes&) = delete;
    LoserNotes& operator=(const LoserNotes&) = delete;
    LoserNotes(LoserNotes&&) = delete;
    LoserNotes& operator=(LoserNotes&&) = delete;
    ~LoserNotes() override { observer = nullptr; }

    void lost(const std::wstring& text, const Origin& /*origin*/, const Why& why,
              const Origin* winner) override {
        const std::wstring place = winner == nullptr ? L"" : L" (" + placeOf(L"it", *winner) + L")";
        notes.push_back(text + L": " + toWide(why.text) + place);
    }

    std::vector<std::wstring> notes;
};

using Pairs = std::vector<std::pair<std::wstring, std::wstring>>;

inline PropertyList propertyList(const Pairs& pairs) {
    PropertyList list;
    for (const auto& [key, value] : pairs) {
        list.append({key, value, {}});
    }
    return list;
}

/// The list as pairs, for comparison.
inline Pairs pairsOf(const PropertyList& list) {
    Pairs pairs;
    for (const Property& entry : list.entries()) {
        pairs.emplace_back(entry.key, entry.value);
    }
    return pairs;
}

inline VmArgumentMap vmargMap(const Pairs& pairs) {
    VmArgumentMap map;
    for (const auto& [key, text] : pairs) {
        map.emplace(key, Argument(text));
    }
    return map;
}

/// The map as pairs, for comparison.
inline Pairs pairsOf(const VmArgumentMap& map) {
    Pairs pairs;
    for (const auto& [key, argument] : map) {
        pairs.emplace_back(key, argument.text);
    }
    return pairs;
}

/// The value of an environment variable; empty optional when it is not set.
inline std::optional<std::string> variable(const char* name) {
    const char* value = getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

/// Gives an environment variable a value, or none, until the object goes.
class ScopedVariable {
  public:
    explicit ScopedVariable(const char* name) : name_(name), before_(variable(name)) {
        unsetenv(name);
    }
    ScopedVariable(const char* name, const std::string& value) : ScopedVariable(name) {
        setenv(name, value.c_str(), 1);
    }
    ~ScopedVariable() {
        if (before_) {
            setenv(name_, before_->c_str(), 1);
        } else {
            unsetenv(name_);
        }
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;
    ScopedVariable(ScopedVariable&&) = delete;
    ScopedVariable& operator=(ScopedVariable&&) = delete;

  private:
    const char* name_;
    std::optional<std::string> before_;
};

}  // namespace rcp::test
