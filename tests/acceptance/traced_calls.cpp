#include "traced_calls.h"

#include "checks.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>

namespace acceptance {

namespace {

// Every call with which a program can change what is in the file system.
constexpr char kCalls[] =
    "openat,creat,write,pwrite64,writev,pwritev,sendfile,copy_file_range,ftruncate,truncate,"
    "fallocate,rename,renameat,renameat2,link,linkat,symlink,symlinkat,mkdir,mkdirat,unlink,"
    "unlinkat,rmdir,chmod,fchmod,fchmodat,chown,fchown,fchownat,utimensat,flock,fsync,fdatasync";

bool changesFiles(const std::string& name, const std::string& rest) {
    return name != "openat" ||
           (rest.find("O_RDONLY") == std::string::npos && rest.find("O_") != std::string::npos) ||
           rest.find("O_CREAT") != std::string::npos || rest.find("O_TRUNC") != std::string::npos;
}

// Reads the lines "PID NAME(ARGUMENTS) = RESULT" of one trace.
class TraceReader {
  public:
    void addLine(const std::string& line) {
        std::istringstream words(line);
        std::string process;
        words >> process >> std::ws;
        std::string rest;
        std::getline(words, rest);
        const std::size_t open = rest.find('(');
        if (rest.starts_with("<...") || open == std::string::npos) {
            return;  // the second half of a call, or no call
        }
        const std::string name = rest.substr(0, open);
        if (name == "execve") {
            if (!launcherHasStarted_) {
                launcherHasStarted_ = true;
            } else {
                others_.insert(process);
            }
            return;
        }
        const int count = ++counts_[process][name];
        if (!others_.contains(process) && changesFiles(name, rest)) {
            calls_.insert({name, count});
        }
    }
    [[nodiscard]] std::vector<TracedCall> calls() const { return {calls_.begin(), calls_.end()}; }

  private:
    bool launcherHasStarted_ = false;
    std::set<std::string> others_;  // processes that run another program by now
    std::map<std::string, std::map<std::string, int>> counts_;
    std::set<TracedCall> calls_;
};

// Leaks cannot be looked for under a tracer.
class TracedInstallation {
  public:
    TracedInstallation(Installation& velmo, Texts wrapper)
        : velmo_(velmo), environment_(velmo.environment) {
        velmo.wrapper = std::move(wrapper);
        velmo.environment["ASAN_OPTIONS"] += ":detect_leaks=0";
    }
    ~TracedInstallation() {
        velmo_.wrapper.clear();
        velmo_.environment = environment_;
    }
    TracedInstallation(const TracedInstallation&) = delete;
    TracedInstallation& operator=(const TracedInstallation&) = delete;

  private:
    Installation& velmo_;
    std::map<std::string, std::string> environment_;
};

const std::string kTracer = "/usr/bin/strace";

}  // namespace

const std::string& tracingObstacle() {
    static const std::string obstacle = [] {
        const std::string probe = kTracer +
                                  " -f -qq -o /dev/null -e trace=write -e "
                                  "inject=write:signal=KILL:when=65535 /bin/true 2>/dev/null";
        return std::system(probe.c_str()) == 0 ? "" : "strace is missing or may not trace";
    }();
    return obstacle;
}

std::vector<TracedCall> traceLaunch(Installation& velmo, const Texts& arguments) {
    const std::string file = velmo.path("trace");
    const TracedInstallation traced(velmo, {kTracer, "-f", "-qq", "-o", file, "-e", "signal=none",
                                            "-e", std::string("trace=execve,") + kCalls});
    velmo.start(arguments);
    TraceReader reader;
    for (const std::string& line : splitLines(readFile(file))) {
        reader.addLine(line);
    }
    return reader.calls();
}

void launchKilledAt(Installation& velmo, const TracedCall& call, const Texts& arguments) {
    const std::string file = velmo.path("trace");
    const TracedInstallation traced(
        velmo, {kTracer, "-f", "-q", "-o", file, "-e", "trace=" + call.name, "-e",
                "inject=" + call.name + ":signal=KILL:when=" + std::to_string(call.count)});
    velmo.launch(arguments);
    EXPECT_NE(readFile(file).find("+++ killed by SIGKILL +++"), std::string::npos);
}

}  // namespace acceptance
