// Writes down what comes of many launches in random installations: arguments, environment, files, records
// and status of each. Two builds of the launcher do the same when the two texts are equal, which is what a
// change of its structure has to show.
//
// usage: record_launches FILE [INSTALLATIONS [SEED]]
#include "random_installation.h"
#include "snapshot.h"
#include "tests/acceptance/paths.h"
#include "tests/support/sandbox.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <regex>

namespace acceptance {
namespace {

// What differs from one run to the next: the tree's folder, process ids, times, starts of processes.
class Neutral {
  public:
    explicit Neutral(const Installation& velmo) : root_(velmo.root) {}

    void addProcess(pid_t pid) { processes_.push_back(std::to_string(pid)); }

    [[nodiscard]] std::string operator()(std::string text) const {
        replace(text, root_, "ROOT");
        for (const std::string& process : processes_) {
            text = std::regex_replace(text, std::regex("\\b" + process + "\\b"), "PID");
        }
        static const std::regex time("[0-9]{8}_[0-9]{6}_[0-9]{3}");
        text = std::regex_replace(text, time, "TIME");
        // A recorded process, with the blanks up to the field's width; the start of one.
        static const std::regex recorded("\n(?:PID|[0-9]+) {2,}\n");
        text = std::regex_replace(text, recorded, "\nPROCESS\n");
        static const std::regex start("(?:PID|[0-9]+) [0-9]+/[0-9a-f-]{36}");
        text = std::regex_replace(text, start, "PROCESS START");
        static const std::regex date("[0-9]{4}-[0-9]{2}-[0-9]{2}[T ][0-9:.]+");
        text = std::regex_replace(text, date, "DATE");
        static const std::regex long_number("\\b[0-9]{13,}\\b");
        return std::regex_replace(text, long_number, "NUMBER");
    }

  private:
    static void replace(std::string& text, const std::string& from, const std::string& to) {
        for (std::size_t at = text.find(from); at != std::string::npos;
             at = text.find(from, at + to.size())) {
            text.replace(at, from.size(), to);
        }
    }

    std::string root_;
    Texts processes_;
};

void writeReport(std::ostream& out, const Report& platform) {
    out << "kind " << platform.kind << "\nfolder " << platform.folder << "\nlibrary "
        << platform.library << "\nargc " << platform.argc << " " << platform.runArgc << "\n";
    for (const std::string& argument : platform.arguments) {
        out << "argument [" << argument << "]\n";
    }
    for (const std::string& argument : platform.runArguments) {
        out << "run [" << argument << "]\n";
    }
    for (const std::string& argument : platform.vmArguments.value_or(Texts())) {
        out << "vm [" << argument << "]\n";
    }
    for (const auto& [name, value] : platform.environment) {
        if (name != "RCP_STANDIN_REPORT") {
            out << "variable " << name << "=" << value << "\n";
        }
    }
    for (const auto& [descriptor, target] : platform.descriptors) {
        out << "descriptor " << descriptor << "\n";
    }
}

std::string textOf(const Launch& launch, const Snapshot& files) {
    std::ostringstream out;
    out << "status " << launch.status << " signal " << launch.signal << "\noutput " << launch.output
        << "\n";
    if (launch.platform) {
        writeReport(out, *launch.platform);
    }
    for (const auto& [path, entry] : files) {
        const bool isProgram = entry.content.starts_with(
            "\x7f"
            "ELF");
        out << "file " << path << "\n" << (isProgram ? "(program)" : entry.content) << "\n";
    }
    return out.str();
}

void vary(Installation& velmo, Dice& dice) {
    for (size_t left = dice.below(4); left > 0; --left) {
        velmo.addLine(dice.pick(unusualLines()));
    }
    if (dice.chance(20)) {
        velmo.set("invoke.eclipse.dylib", "1");
    }
    if (dice.chance(10)) {
        velmo.write("Velmo/rcp/eclipse/plugins/com.ovr.rcp.base/config/user/config.ini", "a=b\n");
    }
}

// Until the platform is up and recorded, or was not started at all.
void awaitPlatform(StayingLaunch& staying, const std::string& lock) {
    constexpr useconds_t kPause = 10'000;
    for (int tries = 0; tries < 3000 && !staying.reported() && staying.running(); ++tries) {
        usleep(kPause);
    }
    const std::string recorded = std::to_string(staying.pid()) + " ";
    for (int tries = 0; tries < 100 && !readFile(lock).starts_with(recorded); ++tries) {
        usleep(kPause);
    }
}

// Two launches one after the other; in every fifth installation beside a platform that stays.
std::string recorded(unsigned seed) {
    Dice dice(seed);
    Installation velmo;
    Neutral neutral(velmo);
    const Texts properties = makeRandom(velmo, dice);
    vary(velmo, dice);
    std::string text;
    std::optional<StayingLaunch> staying;
    if (seed % 5 == 0) {
        staying.emplace(velmo.startStaying());
        neutral.addProcess(staying->pid());
        awaitPlatform(*staying, velmo.workspace + "/.rcp.lock");
    }
    for (int number = 0; number < 2; ++number) {
        const Texts arguments = randomArguments(velmo, dice);
        const Launch launch = velmo.launch(arguments);
        neutral.addProcess(launch.pid);
        text += "=== " + std::to_string(seed) + " " + std::to_string(number) + "\n" +
                describe(properties, arguments) +
                textOf(launch, portable(takeSnapshot(velmo.root), velmo));
    }
    if (staying) {
        (void)staying->finish();
    }
    return neutral(text);
}

}  // namespace
}  // namespace acceptance

int main(int argc, char** argv) {
    if (argc < 2 || argc > 4) {
        std::cerr << "usage: record_launches FILE [INSTALLATIONS [SEED]]\n";
        return 2;
    }
    // Opened first: what is shut in can write into the tests' own folder only.
    std::ofstream out(argv[1], std::ios::binary);
    const int installations = argc > 2 ? std::atoi(argv[2]) : 1500;
    const unsigned seed = argc > 3 ? static_cast<unsigned>(std::atoi(argv[3])) : 1;
    rcp::test::enterSandbox(ACCEPTANCE_FOLDER);
    if (const std::string obstacle = rcp::test::sandboxObstacle(); !obstacle.empty()) {
        std::cerr << "record_launches: " << obstacle << "\n";
        return 1;
    }
    for (int i = 0; i < installations && out; ++i) {
        out << acceptance::recorded(seed + static_cast<unsigned>(i)) << std::flush;
    }
    return out ? 0 : 1;
}
