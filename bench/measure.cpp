// Times whole launches of several programs, interleaved, so that whatever else the machine does
// falls on all of them alike: every round starts each program once, and each is compared with the
// first one of its own round.
//
// usage: measure ROUNDS [--first-line] -- NAME [--aside FOLDER] [VARIABLE=VALUE...] PROGRAM
//        [ARGUMENT...] -- NAME ...
//   --first-line    the clock stops at the first line that the program writes, not at its end
//   --aside FOLDER  FOLDER is renamed before each start of this program, so that it starts without
//                   one. It is not removed: a file system is slower right after files were.
//
// Writes JSON for each program: the median time and the median of the processor time in
// microseconds, the median and the quartiles of its ratios to the first program, those of the processor
// times, its peak memory in KiB, and the least peak and the least number of page faults. The processor time is that of the started process alone and says what a busy
// machine hides.
#include <fcntl.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

extern char** environ;  // environ(7)

namespace {

struct Contender {
    std::string name;
    std::string aside;  // empty: nothing
    int launches = 0;
    std::vector<char*> environment;
    std::vector<char*> command;
    std::vector<double> times;           // microseconds, one a round
    std::vector<double> processorTimes;  // the same
    std::vector<long> peaks;             // KiB
    std::vector<long> faults;
};

[[noreturn]] void fail(const std::string& what) {
    (void)std::fprintf(stderr, "measure: %s\n", what.c_str());
    std::exit(1);
}

double now() {
    timespec time{};
    (void)clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

double microseconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
}

void waitForFirstLine(int descriptor, const Contender& contender) {
    char byte = 0;
    while (byte != '\n') {
        const ssize_t length = read(descriptor, &byte, 1);
        if (length == 0 || (length < 0 && errno != EINTR)) {
            fail(contender.name + " wrote no line");
        }
    }
}

// What a launch left running (the launcher's helper that releases the lock) must not run into the
// next measurement.
void reapOrphans() {
    while (wait(nullptr) > 0 || errno == EINTR) {
    }
}

// One launch.
void launch(Contender& contender, bool untilFirstLine) {
    if (!contender.aside.empty()) {
        const std::string name = contender.aside + "." + std::to_string(contender.launches);
        (void)std::rename(contender.aside.c_str(), name.c_str());
    }
    ++contender.launches;
    int ends[2] = {-1, -1};
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (untilFirstLine) {
        if (pipe2(ends, O_CLOEXEC) != 0) {
            fail("no pipe");
        }
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    } else {
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    }
    pid_t process = 0;
    const double start = now();
    if (posix_spawn(&process, contender.command.front(), &actions, nullptr,
                    contender.command.data(), contender.environment.data()) != 0) {
        fail(contender.name + " cannot be started");
    }
    double end = 0;
    if (untilFirstLine) {
        close(ends[1]);
        waitForFirstLine(ends[0], contender);
        end = now();
        close(ends[0]);
    }
    int status = 0;
    rusage usage{};
    while (wait4(process, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    if (!untilFirstLine) {
        end = now();
    }
    posix_spawn_file_actions_destroy(&actions);
    reapOrphans();
    if (status != 0) {
        fail(contender.name + " ended with wait status " + std::to_string(status));
    }
    contender.times.push_back(end - start);
    contender.processorTimes.push_back(microseconds(usage.ru_utime) + microseconds(usage.ru_stime));
    contender.peaks.push_back(usage.ru_maxrss);
    contender.faults.push_back(usage.ru_minflt + usage.ru_majflt);
}

double quantile(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    const double position = share * static_cast<double>(values.size() - 1);
    const auto below = static_cast<std::size_t>(position);
    const std::size_t above = std::min(below + 1, values.size() - 1);
    return values[below] +
           (position - static_cast<double>(below)) * (values[above] - values[below]);
}

using Times = std::vector<double> Contender::*;

std::vector<double> ratios(const Contender& contender, const Contender& reference, Times kind) {
    std::vector<double> result;
    for (std::size_t i = 0; i < contender.times.size(); ++i) {
        result.push_back((contender.*kind)[i] / (reference.*kind)[i]);
    }
    return result;
}

// Whether both texts of the form NAME=VALUE name the same variable.
bool isSameVariable(std::string_view left, std::string_view right) {
    return left.substr(0, left.find('=')) == right.substr(0, right.find('='));
}

// The given variables, and of ours those that are not among them.
void readEnvironment(char**& at, std::vector<char*>& environment) {
    for (; *at != nullptr && std::strchr(*at, '=') != nullptr; ++at) {
        environment.push_back(*at);
    }
    const std::vector<char*> given = environment;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (std::none_of(given.begin(), given.end(),
                         [&](char* other) { return isSameVariable(other, *variable); })) {
            environment.push_back(*variable);
        }
    }
    environment.push_back(nullptr);
}

std::vector<Contender> readContenders(char** at) {
    std::vector<Contender> contenders;
    while (*at != nullptr && std::strcmp(*at, "--") == 0 && at[1] != nullptr) {
        Contender contender;
        contender.name = *++at;
        ++at;
        if (*at != nullptr && std::strcmp(*at, "--aside") == 0 && at[1] != nullptr) {
            contender.aside = at[1];
            at += 2;
        }
        readEnvironment(at, contender.environment);
        while (*at != nullptr && std::strcmp(*at, "--") != 0) {
            contender.command.push_back(*at++);
        }
        if (contender.command.empty()) {
            fail(contender.name + " has no program");
        }
        contender.command.push_back(nullptr);
        contenders.push_back(std::move(contender));
    }
    return contenders;
}

void forget(std::vector<Contender>& contenders) {
    for (Contender& contender : contenders) {
        contender.times.clear();
        contender.processorTimes.clear();
        contender.peaks.clear();
        contender.faults.clear();
    }
}

void print(const std::vector<Contender>& contenders) {
    (void)std::printf("{");
    const char* separator = "\n";
    for (const Contender& contender : contenders) {
        const std::vector<double> ratio = ratios(contender, contenders.front(), &Contender::times);
        const std::vector<double> processor =
            ratios(contender, contenders.front(), &Contender::processorTimes);
        const auto [leastPeak, peak] =
            std::minmax_element(contender.peaks.begin(), contender.peaks.end());
        (void)std::printf(
            "%s  \"%s\": {\"median_us\": %.1f, \"processor_us\": %.1f, \"lower_quartile\": %.4f, "
            "\"ratio\": %.4f, \"upper_quartile\": %.4f, \"processor_ratio\": %.4f, "
            "\"peak_kib\": %ld, \"least_peak_kib\": %ld, \"least_faults\": %ld}",
            separator, contender.name.c_str(), quantile(contender.times, 0.5),
            quantile(contender.processorTimes, 0.5), quantile(ratio, 0.25), quantile(ratio, 0.5),
            quantile(ratio, 0.75), quantile(processor, 0.5), *peak, *leastPeak,
            *std::min_element(contender.faults.begin(), contender.faults.end()));
        separator = ",\n";
    }
    (void)std::printf("\n}\n");
}

}  // namespace

int main(int argc, char** argv) {
    int rounds = 0;
    if (argc > 1) {
        std::from_chars(argv[1], argv[1] + std::strlen(argv[1]), rounds);
    }
    const bool untilFirstLine = argc > 2 && std::string_view(argv[2]) == "--first-line";
    std::vector<Contender> contenders;
    if (rounds > 0) {
        contenders = readContenders(argv + (untilFirstLine ? 3 : 2));
    }
    if (contenders.empty()) {
        fail(
            "usage: measure ROUNDS [--first-line] -- NAME [--aside FOLDER] PROGRAM [ARGUMENT...] "
            "-- NAME ...");
    }
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    // The first rounds fill the caches and are not counted. Each round begins with another program.
    const int warmUp = std::min(rounds, 10);
    for (int round = 0; round < warmUp + rounds; ++round) {
        if (round == warmUp) {
            forget(contenders);
        }
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            launch(contenders[(i + static_cast<std::size_t>(round)) % contenders.size()],
                   untilFirstLine);
        }
    }
    print(contenders);
}
