#include "inspect/hand_out.h"

#include "inspect/making.h"
#include "inspect/page/page.h"
#include "inspect/redaction/redactor.h"
#include "inspect/redaction/sources.h"
#include "inspect/rehearsal/staged_tree.h"

#include <errno.h>
#include <string.h>
#include <sys/stat.h>

#include <functional>
#include <iostream>
#include <sstream>
#include <utility>

namespace rcp::inspect {
namespace {

using Json = Redactor::Json;

using Change = std::function<std::string(const std::string&)>;

// Changes what is written to a stream whenever its lines are whole. At the end the last may be unfinished.
class Filter : public std::stringbuf {
  public:
    Filter(std::ostream& stream, Change change)
        : stream_(stream), change_(std::move(change)), former_(stream.rdbuf(this)) {}
    ~Filter() override {
        isEnding_ = true;
        stream_.flush();
        stream_.rdbuf(former_);
    }
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;
    Filter(Filter&&) = delete;
    Filter& operator=(Filter&&) = delete;

  protected:
    int sync() override {
        const std::string text = str();
        if (text.empty() || !(isEnding_ || text.ends_with('\n'))) {
            return 0;
        }
        str({});
        const std::string changed = change_(text);
        const auto length = static_cast<std::streamsize>(changed.size());
        return former_->sputn(changed.data(), length) == length ? former_->pubsync() : -1;
    }

  private:
    std::ostream& stream_;
    Change change_;
    std::streambuf* former_;
    bool isEnding_ = false;
};

// Holds what is written to a stream.
class Hold {
  public:
    explicit Hold(std::ostream& stream) : stream_(stream), former_(stream.rdbuf(&held_)) {}
    ~Hold() { stream_.rdbuf(former_); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    Hold(Hold&&) = delete;
    Hold& operator=(Hold&&) = delete;

    [[nodiscard]] std::string text() const { return held_.str(); }

  private:
    std::stringbuf held_;
    std::ostream& stream_;
    std::streambuf* former_;
};

// SARIF has a place of its own for what others do not know.
void addList(Json& document, const Json& redactions) {
    if (!document.contains("runs")) {
        document["redacted"] = redactions;
        return;
    }
    for (Json& run : document["runs"]) {
        run["properties"]["redacted"] = redactions;
    }
}

void redact(Json& document, Redactor& redactor) {
    redactor.learnDocument(document);
    redactor.redactDocument(document);
    addList(document, redactor.redactions());
}

Redactor redactorFor(const Options& options) {
    Redactor redactor(freshSalt(), identityOfThisProcess());
    learnFrom(options, redactor);
    return redactor;
}

int writeAsPage(CarryOut command, Options options) {
    options.format = Format::kJson;
    const Told told = toldBy(command, options);
    if (told.output.empty()) {
        return told.status;
    }
    Json document = Json::parse(told.output);
    document["made"] = describeMaking();
    if (options.isRedacted) {
        Redactor redactor = redactorFor(options);
        redact(document, redactor);
    } else {
        document["made"]["host"] = hostName();
    }
    const Unstaged own;
    const mode_t former = umask(0);
    umask(options.isRedacted ? former : former | 077U);
    const bool isWritten = writePage(nlohmann::json(document), options.page);
    umask(former);
    if (!isWritten) {
        std::cerr << "rcpinspect: " << options.page << ": " << strerror(errno) << '\n';
        return kCannotCreate;
    }
    return told.status;
}

std::string shown(const Json& document, int indent) {
    return document.dump(indent, ' ', false, Json::error_handler_t::replace) + "\n";
}

// Line by line, as they come.
int watchRedacted(CarryOut command, const Options& options, Redactor& redactor) {
    const Change changeText = [&](const std::string& text) {
        redactor.learn(text);
        return redactor.redact(text);
    };
    const Change changeDocument = [&](const std::string& text) {
        Json document = Json::parse(text);
        redact(document, redactor);
        return shown(document, -1);
    };
    const Filter errors(std::cerr, changeText);
    const Filter output(std::cout, options.format == Format::kText ? changeText : changeDocument);
    return command(options);
}

// A line may hold, with no name beside it, what a later one or an error gives away.
int writeRedactedAtOnce(CarryOut command, const Options& options, Redactor& redactor) {
    Told told;
    std::string errors;
    {
        const Hold held(std::cerr);
        told = toldBy(command, options);
        errors = held.text();
    }
    if (options.format == Format::kText || told.output.empty()) {
        redactor.learn(told.output);
        redactor.learn(errors);
        std::cerr << redactor.redact(errors);
        std::cout << redactor.redact(told.output);
    } else {
        Json document = Json::parse(told.output);
        redactor.learnDocument(document);
        redactor.learn(errors);
        std::cerr << redactor.redact(errors);  // or the list would be without what was in it
        redactor.redactDocument(document);
        addList(document, redactor.redactions());
        std::cout << shown(document, 2);
    }
    return told.status;
}

int writeRedacted(CarryOut command, const Options& options) {
    Redactor redactor = redactorFor(options);
    const int status = options.isWatching ? watchRedacted(command, options, redactor)
                                          : writeRedactedAtOnce(command, options, redactor);
    const std::string list = redactor.redactionsText();
    if (options.format == Format::kText && !list.empty()) {
        std::cout << "\nRedacted:\n" << list;
    }
    return status;
}

}  // namespace

Told toldBy(CarryOut command, const Options& options) {
    const Hold output(std::cout);
    const int status = command(options);
    return {status, output.text()};
}

std::string redactedProblem(const std::string& problem) {
    return Redactor(freshSalt(), identityOfThisProcess()).redact(problem);
}

int handOut(CarryOut command, const Options& options) {
    if (options.format == Format::kHtml) {
        return writeAsPage(command, options);
    }
    return options.isRedacted ? writeRedacted(command, options) : command(options);
}

}  // namespace rcp::inspect
