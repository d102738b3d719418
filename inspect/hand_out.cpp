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

// How much is changed at once: what has been flushed when lines are whole, or everything at the end.
enum class Pace { kLines, kWhole };

// Changes what is written to a stream. At the end the last line may be unfinished.
class Filter : public std::stringbuf {
  public:
    using Change = std::function<std::string(const std::string&)>;

    Filter(std::ostream& stream, Pace pace, Change change)
        : stream_(stream), pace_(pace), change_(std::move(change)), former_(stream.rdbuf(this)) {}
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
        const bool isReady = isEnding_ || (pace_ == Pace::kLines && text.ends_with('\n'));
        if (text.empty() || !isReady) {
            return 0;
        }
        str({});
        const std::string changed = change_(text);
        const auto length = static_cast<std::streamsize>(changed.size());
        return former_->sputn(changed.data(), length) == length ? former_->pubsync() : -1;
    }

  private:
    std::ostream& stream_;
    Pace pace_;
    Change change_;
    std::streambuf* former_;
    bool isEnding_ = false;
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

int writeRedacted(CarryOut command, const Options& options) {
    Redactor redactor = redactorFor(options);
    // A line may hold, with no name beside it, what a later one gives away.
    const auto changeText = [&](const std::string& text) {
        redactor.learn(text);
        return redactor.redact(text);
    };
    const Pace pace = options.isWatching ? Pace::kLines : Pace::kWhole;
    const Filter errors(std::cerr, pace, changeText);
    int status = kSuccess;
    if (options.format != Format::kText) {
        const int indent = options.isWatching ? -1 : 2;
        const Filter output(std::cout, pace, [&](const std::string& text) {
            Json document = Json::parse(text);
            redact(document, redactor);
            return document.dump(indent, ' ', false, Json::error_handler_t::replace) + "\n";
        });
        return command(options);
    }
    {
        const Filter output(std::cout, pace, changeText);
        status = command(options);
    }
    if (const std::string list = redactor.redactionsText(); !list.empty()) {
        std::cout << "\nRedacted:\n" << list;
    }
    return status;
}

}  // namespace

Told toldBy(CarryOut command, const Options& options) {
    std::ostringstream output;
    std::streambuf* const former = std::cout.rdbuf(output.rdbuf());
    const int status = command(options);
    std::cout.rdbuf(former);
    return {status, std::move(output).str()};
}

int handOut(CarryOut command, const Options& options) {
    if (options.format == Format::kHtml) {
        return writeAsPage(command, options);
    }
    return options.isRedacted ? writeRedacted(command, options) : command(options);
}

}  // namespace rcp::inspect
