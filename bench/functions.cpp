// What single functions take as their input grows. "per_entry" is the figure to look at: a function
// that does its work once an entry keeps it, whatever the number.
#include "launcher/command_line/config_extensions.h"
#include "launcher/hand_off_tools.h"
#include "launcher/properties/placeholders.h"
#include "launcher/properties/property_file.h"
#include "launcher/properties/vm_argument_map.h"
#include "platform/removal.h"
#include "platform/text.h"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <climits>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace files = std::filesystem;

// A folder of its own that goes with the measurement.
class Folder {
  public:
    Folder() {
        if (mkdtemp(path_.data()) == nullptr) {
            std::abort();
        }
    }
    ~Folder() {
        std::error_code ignored;
        files::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    Folder(Folder&&) = delete;
    Folder& operator=(Folder&&) = delete;
    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_ = (files::temp_directory_path() / "bench.XXXXXX").string();
};

std::wstring numbered(const wchar_t* prefix, std::int64_t number) {
    return prefix + std::to_wstring(number);
}

rcp::PropertyList properties(const wchar_t* prefix, std::int64_t count) {
    rcp::PropertyList list;
    for (std::int64_t i = 1; i <= count; ++i) {
        list.append({numbered(prefix, i), numbered(L"value of ", i), {}});
    }
    return list;
}

rcp::Arguments arguments(std::int64_t count) {
    rcp::Arguments list{L"launcher"};
    for (std::int64_t i = 1; i <= count; ++i) {
        list.push_back(numbered(L"-argument", i));
    }
    return list;
}

void countEntries(benchmark::State& state) {
    state.counters["per_entry"] = benchmark::Counter(
        static_cast<double>(state.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void readPropertyFile(benchmark::State& state) {
    const Folder folder;
    const std::string path = folder.path() + "/properties";
    std::ofstream file(path);
    for (std::int64_t i = 1; i <= state.range(0); ++i) {
        file << "property.number." << i << "=value of " << i << "\n";
    }
    file.close();
    for (auto _ : state) {
        rcp::PropertyList list;
        rcp::getProperties(rcp::toWide(path), list);
        benchmark::DoNotOptimize(list);
    }
    countEntries(state);
}

void findEveryProperty(benchmark::State& state) {
    const rcp::PropertyList list = properties(L"property.number.", state.range(0));
    for (auto _ : state) {
        for (const rcp::Property& entry : list.entries()) {
            benchmark::DoNotOptimize(rcp::findProperty(entry.key, list));
        }
    }
    countEntries(state);
}

void replacePlaceholders(benchmark::State& state) {
    rcp::PropertyList list;
    list.append({L"property", L"value", {}});
    for (std::int64_t i = 1; i < state.range(0); ++i) {
        list.append({numbered(L"number.", i), L"${rcp.home}/${prop.property}", {}});
    }
    for (auto _ : state) {
        state.PauseTiming();
        rcp::PropertyList copy = list;
        state.ResumeTiming();
        rcp::replacePlaceholdersInRcpInstallProp({L"/workspace", L"/installation"}, copy);
        benchmark::DoNotOptimize(copy);
    }
    countEntries(state);
}

void extendConfiguration(benchmark::State& state) {
    rcp::PropertyList list = properties(L"config.many.", state.range(0));
    const rcp::Arguments started{L"launcher", L"-config", L"many"};
    for (auto _ : state) {
        rcp::VmArgumentMap map;
        benchmark::DoNotOptimize(rcp::addConfigExtentionsToArg(started, list, map, std::nullopt));
    }
    countEntries(state);
}

void sortVmArguments(benchmark::State& state) {
    const rcp::PropertyList list = properties(L"vmarg.number.", state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        rcp::PropertyList copy = list;
        state.ResumeTiming();
        rcp::VmArgumentMap map;
        rcp::insertPropToVmargMap(map, copy);
        benchmark::DoNotOptimize(map);
    }
    countEntries(state);
}

void narrowArguments(benchmark::State& state) {
    const rcp::Arguments list = arguments(state.range(0));
    for (auto _ : state) {
        rcp::NarrowArguments narrow(list);
        benchmark::DoNotOptimize(narrow);
    }
    countEntries(state);
}

void removeTree(benchmark::State& state) {
    constexpr std::int64_t kFilesPerFolder = 100;
    const Folder folder;
    const std::string tree = folder.path() + "/tree";
    for (auto _ : state) {
        state.PauseTiming();
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            const files::path below = files::path(tree) / std::to_string(i / kFilesPerFolder);
            if (i % kFilesPerFolder == 0) {
                files::create_directories(below);
            }
            std::ofstream(below / std::to_string(i)).flush();
        }
        state.ResumeTiming();
        const rcp::Removed removed = rcp::removeDirectoryAndContents(rcp::toWide(tree));
        benchmark::DoNotOptimize(removed);
    }
    countEntries(state);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->RangeMultiplier(10)->Range(10, 100'000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(readPropertyFile)->Apply(sizes);
BENCHMARK(findEveryProperty)->Apply(sizes);
BENCHMARK(replacePlaceholders)->Apply(sizes);
BENCHMARK(extendConfiguration)->Apply(sizes);
BENCHMARK(sortVmArguments)->Apply(sizes);
BENCHMARK(narrowArguments)->Apply(sizes);
BENCHMARK(removeTree)->Apply(sizes);

}  // namespace

int main(int argc, char** argv) {
    // Memory that was given back is kept: how fast the system hands out pages is no matter of these
    // functions, and the whole launches show it.
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
    mallopt(M_MMAP_MAX, 0);
    (void)std::setlocale(LC_CTYPE, "C.UTF-8");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
