#include "explanation.h"

#include "checks.h"
#include "snapshot.h"
#include "tests/acceptance/paths.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <regex>
#include <set>
#include <utility>

namespace acceptance {

namespace {

namespace files = std::filesystem;

// A path as snapshots of the tree name it. The launches see the tree's own folder as /tmp.
std::string inTree(const Installation& velmo, const std::string& path) {
    const std::string whole = path.starts_with("/tmp/") ? velmo.tmp + path.substr(4) : path;
    return whole.starts_with(velmo.root + "/") ? whole.substr(velmo.root.size() + 1) : whole;
}

// What the harness puts into the tree.
bool isTestsOwn(const std::string& path) {
    return path.starts_with("report") || path.starts_with("output");
}

bool isBelow(const std::string& path, const std::string& folder) {
    return path == folder || path.starts_with(folder + "/");
}

bool isBelowOneOf(const std::string& path, const std::set<std::string>& folders) {
    return std::any_of(folders.begin(), folders.end(),
                       [&](const std::string& folder) { return isBelow(path, folder); });
}

// A traced launch's log has the time in its name, and a record may hold it.
std::string withoutTimes(const std::string& text) {
    static const std::regex time("[0-9]{8}_[0-9]{6}_[0-9]{3}");
    return std::regex_replace(text, time, "TIME");
}

std::string lastError(const std::string& log) {
    std::string found;
    static const std::regex error("^(ZYPRA[0-9]{4}E|Error:).*");
    for (const std::string& line : splitLines(log)) {
        if (std::regex_match(line, error)) {
            found = line;
        }
    }
    return found;
}

using Environment = std::map<std::string, std::string>;

Environment explainedEnvironment(const Json& explanation, Environment environment) {
    for (const Json& variable : explanation["environment"].list) {
        if (variable["after"].isNull()) {
            environment.erase(variable["name"].text);
        } else {
            environment[variable["name"].text] = variable["after"].text;
        }
    }
    return environment;
}

Environment relevant(Environment environment) {
    std::erase_if(environment, [](const auto& variable) {
        return variable.first.starts_with("RCP_") || variable.first == "_";
    });
    return environment;
}

std::string explanationText(Installation& velmo, const Texts& arguments,
                            const Texts& options = {}) {
    const std::string launcher = std::exchange(velmo.program, rcp::test::seen(ACCEPTANCE_INSPECT));
    Texts words{"explain", "--format", "json", "--launcher", launcher};
    words.insert(words.end(), options.begin(), options.end());
    words.emplace_back("--");
    words.insert(words.end(), arguments.begin(), arguments.end());
    const Launch run = velmo.launch(words);
    velmo.program = launcher;
    EXPECT_EQ(run.status, 0) << run.output;
    return run.output;
}

// Whether the way the launch ended is what the explanation says.
void expectEnd(const Json& explanation, const Launch& launch, const std::string& log) {
    const std::string kind = explanation["outcome"]["kind"].text;
    if (launch.platform) {
        EXPECT_EQ(kind, launch.platform->kind == "library" ? "in-process" : kind);
        EXPECT_TRUE(kind == "in-process" || kind == "execv" || kind == "provisioning") << kind;
        return;
    }
    EXPECT_EQ(kind, launch.status == 0 ? "ends" : "fatal");
    EXPECT_EQ(withoutTimes(explanation["outcome"]["record"].text), withoutTimes(lastError(log)));
}

// Each is an element or has a reason not to be one.
void expectEveryArgument(const Json& explanation) {
    std::set<long> told;
    for (const Json& element : explanation["elements"].list) {
        told.insert(element["source"]["position"].number);
    }
    for (const Json& argument : explanation["dropped"].list) {
        EXPECT_NE(argument["why"].text, "") << argument["text"].text;
        told.insert(argument["position"].number);
    }
    const Texts arguments = explanation["arguments"].texts();
    for (size_t i = 0; i < arguments.size(); ++i) {
        EXPECT_TRUE(told.contains(static_cast<long>(i) + 1)) << arguments[i];
    }
}

std::set<std::string> pathsOf(const Snapshot& snapshot) {
    std::set<std::string> paths;
    for (const auto& [path, entry] : snapshot) {
        if (!isTestsOwn(path)) {
            paths.insert(withoutTimes(path));
        }
    }
    return paths;
}

Texts missingFrom(const std::set<std::string>& some, const std::set<std::string>& others) {
    Texts missing;
    std::set_difference(some.begin(), some.end(), others.begin(), others.end(),
                        std::back_inserter(missing));
    return missing;
}

void movePaths(std::set<std::string>& paths, const std::string& from, const std::string& to) {
    std::set<std::string> moved;
    for (const std::string& path : paths) {
        moved.insert(isBelow(path, from) ? to + path.substr(from.size()) : path);
    }
    paths = moved;
}

// The tree's paths when everything explained has happened to them.
std::set<std::string> pathsAfter(const Snapshot& before, const Json& explanation,
                                 const Installation& velmo) {
    std::set<std::string> paths = pathsOf(before);
    for (const char* kind : {"removed", "moved", "made"}) {
        for (const Json& change : explanation["changes"].list) {
            const std::string path = withoutTimes(inTree(velmo, change["path"].text));
            if (change["change"].text != kind) {
                continue;
            }
            if (kind == std::string("removed")) {
                std::erase_if(paths, [&](const std::string& one) { return isBelow(one, path); });
            } else if (kind == std::string("moved")) {
                movePaths(paths, path, inTree(velmo, change["to"].text));
            } else {
                const bool isTimed = path.find("TIME") != std::string::npos;
                EXPECT_TRUE(paths.insert(path).second || isTimed) << path << " was there";
            }
        }
    }
    return paths;
}

}  // namespace

Json explain(Installation& velmo, const Texts& arguments) {
    const std::string text = explanationText(velmo, arguments);
    try {
        return parseJson(text);
    } catch (const std::exception& problem) {
        ADD_FAILURE() << problem.what() << "\n" << text;
        return {};
    }
}

// What is written holds the numbers of processes, which have more digits or fewer.
const std::regex kSize("\"bytes\": ([0-9]+)");

std::string withoutTimesAndSizes(const std::string& text) {
    return std::regex_replace(withoutTimes(text), kSize, "\"bytes\": SIZE");
}

void expectSimilarSizes(const std::string& staged, const std::string& inPlace) {
    constexpr double kDigits = 100;
    std::sregex_iterator theirs(inPlace.begin(), inPlace.end(), kSize);
    for (std::sregex_iterator ours(staged.begin(), staged.end(), kSize), end;
         ours != end && theirs != end; ++ours, ++theirs) {
        EXPECT_NEAR(std::stod((*ours)[1]), std::stod((*theirs)[1]), kDigits);
    }
}

void expectSameOfStagedTree(Installation& velmo, const Texts& arguments) {
    const std::string inPlace = explanationText(velmo, arguments);
    const std::string stage = velmo.root + "/stage";
    files::create_directories(files::path(stage + velmo.home).parent_path());
    files::rename(velmo.home, stage + velmo.home);
    // What lies there on this machine is none of the tree's.
    velmo.write(velmo.rcp + "/rcplauncher.properties", "rcp.install.id=old\n");
    velmo.write(velmo.base + "/config/user/config.ini", "old=1\n");
    velmo.write(velmo.home + "/jre/lib/jvm.properties", "-Dold\n");
    const std::string staged = explanationText(velmo, arguments, {"--root", stage});
    files::remove_all(velmo.home);
    files::rename(stage + velmo.home, velmo.home);
    files::remove_all(stage);
    EXPECT_EQ(withoutTimesAndSizes(staged), withoutTimesAndSizes(inPlace));
    expectSimilarSizes(staged, inPlace);
}

Texts elementTexts(const Json& explanation) {
    Texts texts;
    for (const Json& element : explanation["elements"].list) {
        texts.push_back(element["text"].text);
    }
    return texts;
}

std::string logOfLaunch(const Snapshot& before, const Snapshot& after) {
    std::string text;
    for (const auto& [path, entry] : after) {
        const std::string name = path.substr(path.rfind('/') + 1);
        const auto former = before.find(path);
        const bool isWritten = former == before.end() || former->second != entry;
        if (name.starts_with("rcplauncher") && name.ends_with(".log") && isWritten) {
            text += entry.content;
        }
    }
    return text;
}

void expectExplained(const Json& explanation, const Launch& launch, const std::string& log,
                     const std::map<std::string, std::string>& environment) {
    expectEnd(explanation, launch, log);
    if (!launch.platform) {
        return;
    }
    expectList(launch.platform->arguments, elementTexts(explanation));
    EXPECT_EQ(relevant(explainedEnvironment(explanation, environment)),
              relevant(launch.platform->environment));
    for (const Json& element : explanation["elements"].list) {
        EXPECT_NE(element["rule"].text, "") << element["text"].text;
    }
    expectEveryArgument(explanation);
}

void expectChangesExplained(const Json& explanation, const Installation& velmo,
                            const Snapshot& before, const Snapshot& after) {
    EXPECT_EQ(missingFrom(pathsOf(after), pathsAfter(before, explanation, velmo)), Texts{})
        << "happened and was not explained";
    EXPECT_EQ(missingFrom(pathsAfter(before, explanation, velmo), pathsOf(after)), Texts{})
        << "was explained and did not happen";
    std::set<std::string> replaced;
    std::set<std::string> gone;
    for (const Json& change : explanation["changes"].list) {
        const std::string path = inTree(velmo, change["path"].text);
        (change["change"].text == "replaced" ? replaced : gone).insert(path);
    }
    for (const auto& [path, entry] : after) {
        const auto former = before.find(path);
        if (former == before.end() || isTestsOwn(path) || isBelowOneOf(path, gone)) {
            continue;
        }
        EXPECT_EQ(former->second.content != entry.content, replaced.contains(path)) << path;
    }
}

}  // namespace acceptance
