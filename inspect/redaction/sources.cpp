#include "inspect/redaction/sources.h"

#include "inspect/check/examination.h"
#include "inspect/explain/account.h"
#include "inspect/explain/rehearse_launch.h"
#include "inspect/locate.h"
#include "inspect/quiet_read.h"
#include "inspect/rehearsal/staged_tree.h"
#include "inspect/report/last_logs.h"
#include "platform/text.h"

#include <algorithm>
#include <exception>

namespace rcp::inspect {
namespace {

// First of all: what is a secret depends on them.
void addNames(const Examination& examination, Redactor& redactor) {
    for (const Property& entry : examination.inputs.properties.entries()) {
        if (entry.key == kSecretNamesKey) {
            redactor.addNames(toNarrow(entry.value));
        }
    }
    for (const PropertyFile& file : examination.files) {
        for (const Property& entry : file.entries.entries()) {
            redactor.addSourceOf(toNarrow(entry.key), toNarrow(entry.value));
        }
    }
}

void learnInstallation(const Options& options, Redactor& redactor) {
    const Examination examination = examine(options);
    addNames(examination, redactor);
    for (const PropertyFile& file : examination.files) {
        redactor.learnFile(file.bytes);
        for (const Property& entry : file.entries.entries()) {
            redactor.learn(toNarrow(entry.key), toNarrow(entry.value));
        }
    }
    try {
        const nlohmann::json explanation = explainLaunch(options);
        for (const nlohmann::json& file : explanation["files"]) {
            const std::string bytes = readQuietly(file["path"], kLongestSettings);
            if (std::none_of(examination.files.begin(), examination.files.end(),
                             [&](const PropertyFile& known) { return known.bytes == bytes; })) {
                redactor.learnFile(bytes);
            }
        }
        redactor.learnDocument(Redactor::Json(explanation));
        // What is told of a log may be a line without the name that is beside the value in another.
        for (const Log& log : lastLogs(explanation["facts"], options)) {
            redactor.learn(log.text);
        }
    } catch (const std::exception&) {
        // The command will say so; what is known without a launch is known.
    }
}

}  // namespace

void learnFrom(const Options& options, Redactor& redactor) {
    Options other = options;
    other.launcher = options.other;
    if (!options.other.empty()) {
        const Unstaged own;
        other.installation = installationOf(options.other);
        learnInstallation(other, redactor);
    }
    if (!options.launcher.empty()) {
        learnInstallation(options, redactor);
    }
    for (const std::string& root : options.roots) {
        other.launcher = launcherPath({}, root, Launcher::kIsThere);
        if (!other.launcher.empty()) {
            other.installation = installationOf(other.launcher);
            learnInstallation(other, redactor);
        }
    }
    for (const auto& [name, value] : environmentNow()) {
        redactor.learn(name, value);
        redactor.learn(value);
    }
    redactor.learnDocument({{"arguments", options.arguments}});
}

}  // namespace rcp::inspect
