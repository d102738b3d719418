// All that somebody who helps wants to see, in one file that can be mailed.
#include "inspect/archive/zip_archive.h"
#include "inspect/commands.h"
#include "inspect/hand_out.h"
#include "inspect/quiet_read.h"
#include "inspect/redaction/redactor.h"
#include "inspect/redaction/sources.h"
#include "inspect/rehearsal/staged_tree.h"
#include "inspect/report/last_logs.h"
#include "inspect/report/surroundings.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/whole_file.h"

#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>

#include <array>
#include <iostream>
#include <optional>
#include <sstream>
#include <utility>

namespace rcp::inspect {
namespace {

using Json = Redactor::Json;

struct Part {
    const char* name;
    CarryOut command;
    Format format;
    bool Options::*setting = nullptr;
};

const Part kParts[] = {
    {"doctor.txt", doctor, Format::kText},
    {"explain.txt", explain, Format::kText, &Options::isAll},
    {"check.txt", check, Format::kText, &Options::isAll},
    {"status.txt", status, Format::kText},
    {"config.txt", config, Format::kText},
    {"files.txt", config, Format::kText, &Options::isFiles},
    {"doctor.json", doctor, Format::kJson},
    {"explain.json", explain, Format::kJson},
    {"check.json", check, Format::kJson},
    {"status.json", status, Format::kJson},
    {"config.json", config, Format::kJson},
};

using Texts = std::vector<std::pair<std::string, std::string>>;  // by name

bool isDocument(const std::string& name) {
    return name.ends_with(".json");
}

std::string toldBy(const Part& part, Options options) {
    options.format = part.format;
    options.isColored = false;
    if (part.setting != nullptr) {
        options.*part.setting = true;
    }
    return toldBy(part.command, options).output;
}

// What may stand in the name of a file: "<user>" becomes "user".
std::string asFileName(const std::string& redacted) {
    std::string name;
    for (const char character : redacted) {
        name += character == ':'                       ? "-"
                : character == '<' || character == '>' ? ""
                                                       : std::string(1, character);
    }
    return name;
}

// "2-rcplauncher.log": two logs may have one name.
std::string nameOfLog(std::size_t number, const std::string& path) {
    const std::string name = path.substr(path.rfind('/') + 1);
    return "logs/" + std::to_string(number) + (name.starts_with('.') ? "-platform" : "-") + name;
}

Texts gather(const Options& options) {
    Texts texts;
    Json doctors = Json::object();
    Json explanation = Json::object();
    std::ostringstream errors;
    std::streambuf* const former = std::cerr.rdbuf(errors.rdbuf());
    for (const Part& part : kParts) {
        const auto& [name, text] = texts.emplace_back(part.name, toldBy(part, options));
        if (isDocument(name) && !text.empty()) {
            Json& kept = part.command == doctor ? doctors : explanation;
            kept = part.command == doctor || part.command == explain ? Json::parse(text) : kept;
        }
    }
    std::cerr.rdbuf(former);
    if (const std::string text = errors.str(); !text.empty()) {
        texts.emplace_back("errors.txt", text);
    }
    texts.emplace(texts.begin(), "about.txt", describeSurroundings(options, doctors));
    std::size_t number = 0;
    for (const Log& log : lastLogs(explanation.value("facts", Json::object()), options)) {
        texts.emplace_back(nameOfLog(++number, log.path), log.path + "\n\n" + log.text);
    }
    return texts;
}

// Everything is learnt before anything is redacted: a log may hold what a file gives away.
std::string redact(Texts& texts, const Options& options) {
    Identity identity = identityOfThisProcess();
    if (options.isWithHost) {
        identity.hosts.clear();
    }
    Redactor redactor(freshSalt(), std::move(identity));
    learnFrom(options, redactor);
    for (const auto& [name, text] : texts) {
        if (isDocument(name) && !text.empty()) {
            redactor.learnDocument(Json::parse(text));
        } else if (name.starts_with("logs/")) {
            redactor.learn(text);
        }
    }
    for (auto& [name, text] : texts) {
        name = asFileName(redactor.redact(name));
        if (isDocument(name) && !text.empty()) {
            Json document = Json::parse(text);
            redactor.redactDocument(document);
            text = document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
        } else {
            text = redactor.redact(text);
        }
    }
    return redactor.redactionsText();
}

std::string dateOf(time_t time) {
    std::array<char, 16> text{};
    tm parts{};
    localtime_r(&time, &parts);
    return {text.data(), strftime(text.data(), text.size(), "%Y-%m-%d", &parts)};
}

// The name that was asked for, or one that is free.
std::string fileFor(const Options& options, const std::string& folder) {
    std::string name = options.output.empty() ? folder + ".zip" : options.output;
    for (int i = 2; options.output.empty() && existsA(name); ++i) {
        name = folder;
        name.append("-").append(std::to_string(i)).append(".zip");
    }
    return name;
}

// For the user's own eyes until he mails it: written under a name that nobody can have made for him.
bool write(const std::string& name, const std::string& bytes) {
    if (existsA(name)) {
        errno = EEXIST;
        return false;
    }
    const std::wstring wide = toWide(name);
    if (wide.empty()) {
        errno = EILSEQ;
        return false;
    }
    const mode_t former = umask(077);
    WholeFile file(wide, L"." + toWide(saltedDigest(freshSalt(), name)) + L".tmp");
    const bool isWritten = file.open() && file.write(bytes) && file.commit();
    umask(former);
    return isWritten;
}

}  // namespace

int report(const Options& options) {
    const time_t now = time(nullptr);
    const std::string folder = "rcpinspect-" + dateOf(now);
    Texts texts = gather(options);
    std::string list = "Nothing: the report was made with --show-secrets.\n";
    if (options.isRedacted) {
        list = redact(texts, options);
    }
    texts.emplace_back("redacted.txt", list);
    ZipArchive archive(now);
    for (const auto& [name, text] : texts) {
        archive.add(std::string(folder).append("/").append(name), text);
    }
    const Unstaged own;
    const std::string name = fileFor(options, folder);
    if (!write(name, archive.bytes())) {
        std::cerr << "rcpinspect: " << name << ": " << strerror(errno) << '\n';
        return kCannotCreate;
    }
    std::cout << name << ": " << texts.size() << " files\n\nRedacted:\n" << list;
    return kSuccess;
}

}  // namespace rcp::inspect
