// What "rcpinspect explain" says of launches in a small installation.
#pragma once

#include "tests/inspect/status_fixture.h"

namespace rcp::inspect::test {

class ExplainTest : public StatusTest {
  protected:
    static constexpr const char* kJvmFile = "client/jre/lib/jvm.properties";
    static constexpr const char* kMaster =
        "client/rcp/eclipse/plugins/com.ovr.rcp.base/config/user/rcpinstall.properties";
    static constexpr const char* kConfiguration = "home/workspace/ann/.config";

    /// Variables beside those that every launch has.
    Words variables_;

    [[nodiscard]] Words launchEnvironment() const;
    [[nodiscard]] Words explainWords(const Words& arguments, const Words& options = {}) const;
    [[nodiscard]] Json explain(const Words& arguments = {}) const;
    [[nodiscard]] std::string explainText(const Words& arguments = {},
                                          const Words& options = {"--all"}) const;

    /// The one element of that text, the last of several; fails the test without one.
    static Json element(const Json& explanation, const std::string& text);
    /// The element behind the one of that text.
    static Json valueOf(const Json& explanation, const std::string& option);
    static bool hasElement(const Json& explanation, const std::string& text);
    /// The source in short: "rcplauncher.properties vm", "argument 2", "variable HOME", "computed".
    static std::string sourceOf(const Json& described);
    /// What lost against an element: "TEXT from SOURCE: WHY", one a line.
    static std::string losersOf(const Json& element);
    /// "NAME=VALUE" of each placeholder, one a line.
    static std::string placeholdersOf(const Json& element);
    /// Why an argument was dropped.
    static std::string whyDropped(const Json& explanation, std::size_t position);
    /// "STATE: BY" of the entries of `key` in the file of that name, one a line; paths as names.
    [[nodiscard]] std::string useOf(const Json& explanation, const std::string& file,
                                    const std::string& key) const;
    /// The changes, one a line: "made file home/x"; those of the log are left out.
    [[nodiscard]] std::string changesOf(const Json& explanation) const;
    /// The number of the last line of the installation's settings that begins with that.
    [[nodiscard]] std::size_t lineOf(const std::string& beginning) const;
    /// What stands behind "KEY=" in that line.
    [[nodiscard]] std::string valueIn(const std::string& key) const;
    /// A text with the folder's path as "FOLDER".
    [[nodiscard]] std::string portable(std::string text) const;
};

}  // namespace rcp::inspect::test
