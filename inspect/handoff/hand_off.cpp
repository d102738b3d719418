#include "inspect/handoff/hand_off.h"

#include "inspect/archive/jar.h"
#include "inspect/check/groups.h"
#include "inspect/check/launcher_end.h"
#include "inspect/handoff/code_faults.h"
#include "inspect/quiet_read.h"
#include "launcher/command_line/assembly.h"
#include "launcher/process_entry.h"
#include "launcher/vocabulary/options.h"
#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <utility>

namespace rcp::inspect {
namespace {

std::string alongPath(const std::string& name, const EnvironmentChanges& changes) {
    std::istringstream folders(variableAfter("PATH", changes));
    for (std::string folder; std::getline(folders, folder, ':');) {
        folder.append("/").append(name);
        if (!startFault(folder)) {
            return folder;
        }
    }
    return name;
}

// Its name tells the launcher library what a file is.
JvmKind kindOfJvm(const std::string& path) {
    if (isFolder(path)) {
        return JvmKind::kFolder;
    }
    if (path.ends_with(".ee") || path.ends_with(".dll")) {
        return JvmKind::kDescription;
    }
    const std::string name = std::filesystem::path(path).filename();
    const bool isLibrary = name.ends_with(".dylib") || name.ends_with(".jnilib") ||
                           name.find(".so") != std::string::npos;
    return isLibrary ? JvmKind::kLibrary : JvmKind::kProgram;
}

}  // namespace

Fault faultAt(const Examination& examination, const char* code, const Origin& origin,
              const std::string& message) {
    if (origin.isCommandLine()) {
        return {code, examination.launcherFile(), 0,
                message + " (argument " + std::to_string(origin.line) + ")"};
    }
    return {code, examination.nameOf(origin), origin.file ? origin.line : 0, message};
}

JarRead readJar(const std::string& path) {
    if (!isAllowedAt(path, R_OK)) {
        return {.fault = std::string("cannot be read: ") + strerror(errno)};
    }
    auto entries = jarEntries(path);
    if (!entries) {
        return {.fault = "is no zip file, or damaged"};
    }
    const bool hasManifest = entries->contains(kManifest);
    return {.entries = *std::move(entries),
            .fault = hasManifest ? std::nullopt : std::optional<std::string>("has no manifest")};
}

std::string variableAfter(const std::string& name, const EnvironmentChanges& changes) {
    const char* given = getenv(name.c_str());
    std::string value = given == nullptr ? "" : given;
    for (const EnvironmentChange& change : changes) {
        if (change.kind != EnvironmentChange::kPreload && toNarrow(change.name) == name) {
            value = change.kind == EnvironmentChange::kSet ? toNarrow(change.value) : std::string();
        }
    }
    return value;
}

Argument valueBehind(OptionName option, const Plan& plan) {
    const Arguments& all = plan.line.arguments();
    const auto found = std::find(all.begin(), all.end(), option);
    return found == all.end() || found + 1 == all.end() ? Argument() : *(found + 1);
}

Jvm jvmOf(const Examination& examination, const Plan& plan) {
    if (examination.inputs.traits.isDirectJavaShape()) {
        return {plan.line.arguments().front(), JvmKind::kProgram};
    }
    Argument jvm = valueBehind(options::kVm, plan);
    if (jvm.text.empty()) {
        return {};
    }
    if (jvm.text.find(L'/') == std::wstring::npos) {
        jvm.text = toWide(alongPath(toNarrow(jvm.text), plan.environment));
    }
    const JvmKind kind = kindOfJvm(toNarrow(jvm.text));
    return {std::move(jvm), kind};
}

Arguments jvmOptionsOf(const Examination& examination, const Plan& plan) {
    const Arguments& all = plan.line.arguments();
    const bool isJava = examination.inputs.traits.isDirectJavaShape();
    const auto front = isJava ? all.begin() : std::find(all.begin(), all.end(), options::kVmargs);
    const auto end = isJava ? std::find(all.begin(), all.end(), options::kMainClass) : all.end();
    return front == end ? Arguments() : Arguments(front + 1, end);
}

bool startsJava(const Examination& examination, const Plan& plan) {
    const Jvm jvm = jvmOf(examination, plan);
    return jvm.kind == JvmKind::kFolder ? existsA(toNarrow(jvm.path.text) + "/java")
                                        : jvm.kind != JvmKind::kLibrary;
}

std::optional<Plan> planOf(const Examination& examination) {
    if (examination.base.empty()) {
        return std::nullopt;
    }
    LaunchInputs inputs = examination.inputs;
    std::optional<Plan> plan;
    endOf([&] {
        expandPlaceholders(inputs);
        plan = getUserCmdString(inputs, LaunchKind::kPlatform);
        addForEveryPlatform(*plan);
    });
    return plan;
}

std::vector<Examined> examineHandOff(const Examination& examination) {
    const std::optional<Plan> plan = planOf(examination);
    if (!plan) {
        return {};
    }
    std::vector<Examined> all = examineTargets(examination, *plan);
    const std::vector<Examined> configured = examineConfiguration(examination, *plan);
    all.insert(all.end(), configured.begin(), configured.end());
    all.push_back(examineLocale(examination, *plan));
    return all;
}

const Fault* obstacleIn(const std::vector<Examined>& handOff) {
    constexpr std::string_view kNeeded[] = {"program",      "launcher library", "JVM",
                                            "tried JVM",    "startup jar",      "class path",
                                            "install area", "framework",        "room"};
    // Of what is needed, but may do all the same.
    constexpr std::string_view kDoubts[] = {"RI815", "RI816", "RI817"};
    const auto isDoubt = [&](const Fault& fault) {
        return std::find(std::begin(kDoubts), std::end(kDoubts), fault.code) != std::end(kDoubts);
    };
    // What keeps all bundles from starting, not one of them.
    constexpr std::string_view kFatal[] = {"RI811", "RI812", "RI814"};
    for (const Examined& examined : handOff) {
        const bool isNeeded =
            !examined.isEnough &&
            std::find(std::begin(kNeeded), std::end(kNeeded), examined.what) != std::end(kNeeded);
        for (const Fault& fault : examined.faults) {
            if ((isNeeded && !isDoubt(fault)) ||
                std::find(std::begin(kFatal), std::end(kFatal), fault.code) != std::end(kFatal)) {
                return &fault;
            }
        }
    }
    return nullptr;
}

void addFaults(const Examined& examined, Findings& findings) {
    for (const Fault& fault : examined.faults) {
        findings.add(fault.code, fault.file, fault.line, fault.message);
    }
}

void findInHandOff(const Examination& examination, Findings& findings) {
    for (const Examined& examined : examineHandOff(examination)) {
        addFaults(examined, findings);
    }
}

}  // namespace rcp::inspect
