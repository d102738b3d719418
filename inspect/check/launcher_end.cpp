#include "inspect/check/launcher_end.h"

#include "diagnostics/svc_debug.h"

namespace rcp::inspect {
namespace {

struct LaunchEnded {};

[[noreturn]] void leave(int /*status*/) {
    throw LaunchEnded();
}

class EndReplaced {
  public:
    EndReplaced() : former_(setEndFunction(&leave)) {}
    ~EndReplaced() { setEndFunction(former_); }
    EndReplaced(const EndReplaced&) = delete;
    EndReplaced& operator=(const EndReplaced&) = delete;
    EndReplaced(EndReplaced&&) = delete;
    EndReplaced& operator=(EndReplaced&&) = delete;

  private:
    EndFunction former_;
};

// The last record, less " : " and the system's reason, which is about this process.
std::string lastRecord() {
    std::string record = logQueue();
    record.erase(record.find_last_not_of('\n') + 1);
    record.erase(0, record.rfind('\n') + 1);
    return record.substr(0, record.rfind(" : "));
}

}  // namespace

std::optional<std::string> endOf(const std::function<void()>& step) {
    const EndReplaced replaced;
    try {
        step();
    } catch (const LaunchEnded&) {
        return lastRecord();
    }
    return std::nullopt;
}

}  // namespace rcp::inspect
