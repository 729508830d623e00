// How long it takes to read smb.conf: within this process for three lengths, to see that the time grows no
// faster than the file; and as whole programs, compared with one that only scans the file's lines and with
// Samba's own reader. Also how long Brindle takes to print the shares of such a file, as a whole program.

#include "FilledRoot.h"
#include "TemporaryFolder.h"
#include "WholeProgram.h"
#include "model/SMBConf.h"
#include "platform/foundation/Host.h"
#include "platform/host/InstalledFiles.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class SamePaths : public platform::Paths {
  public:
    [[nodiscard]] std::string map(const std::string& path) const override { return path; }

    [[nodiscard]] std::string home() const override { return "/nonexistent"; }

    [[nodiscard]] std::string defaultsFile() const override { return ""; }

    [[nodiscard]] std::string resources() const override { return "/nonexistent"; }
};

platform::Services services() {
    platform::Services services;
    services.paths = std::make_shared<SamePaths>();
    return services;
}

/// Returns a file with that many sections, which is kept for the next benchmark that needs it.
std::string fileOf(std::int64_t sections) {
    const fs::path folder = fs::temp_directory_path() / ("brindle-smbconf-" + std::to_string(::getuid()));
    fs::create_directories(folder);
    const fs::path path = folder / std::to_string(sections);
    std::ofstream file(path);
    file << "# The department's server\n\n[global]\n   workgroup = OFFICE\n   server string = Files\n";
    for (std::int64_t i = 0; i < sections; ++i) {
        file
            << "\n# share " << i << "\n[share" << i << "]\n\tpath = /Users/Shared/folder" << i
            << "\n\tread only = No\n\tinherit permissions = Yes\n\tguest ok = no\n   comment = Folder number "
            << i << " of many\n";
    }
    return path.string();
}

std::size_t scanLines(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    std::size_t lines = 0;
    while (std::getline(file, line)) {
        ++lines;
    }
    return lines;
}

std::size_t parse(const std::string& path) {
    const platform::Host host(services());
    return SMBConf(path).Entries().size();
}

void countBytes(benchmark::State& state, const std::string& path) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * fs::file_size(path)));
    state.SetComplexityN(state.range(0));
}

void scan(benchmark::State& state) {
    const std::string path = fileOf(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(scanLines(path));
    }
    countBytes(state, path);
}

void parseFile(benchmark::State& state) {
    const std::string path = fileOf(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(parse(path));
    }
    countBytes(state, path);
}

void process(benchmark::State& state, const char* program, const char* option) {
    const std::string path = fileOf(state.range(0));
    for (auto _ : state) {
        if (!runProgram({program, option, path})) {
            state.SkipWithError("the program cannot be run, or failed");
            break;
        }
    }
}

void printShares(benchmark::State& state) {
    const TemporaryFolder root;
    fillRoot(root.path(), 0, 0);
    fs::copy_file(fileOf(state.range(0)), root.path() / "etc/smb.conf", fs::copy_options::overwrite_existing);
    double megabytes = 0;
    for (auto _ : state) {
        if (!runProgram(
                {platform::programFolder() + "/brindle", "--root", root.path().string(), "--print", "shares"},
                &megabytes)) {
            state.SkipWithError("the program has failed");
            break;
        }
    }
    state.SetLabel(std::to_string(static_cast<int>(megabytes)) + " MB");
}

constexpr const char* thisProgram = "/proc/self/exe";
constexpr std::int64_t longest = 100000;

BENCHMARK(scan)
    ->RangeMultiplier(10)
    ->Range(1000, longest)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);
BENCHMARK(parseFile)
    ->RangeMultiplier(10)
    ->Range(1000, longest)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(process, scan, thisProgram, "--scan")
    ->Arg(longest)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(process, parse, thisProgram, "--parse")
    ->Arg(longest)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(process, testparm, "testparm", "-s")
    ->Arg(longest)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);
BENCHMARK(printShares)->Arg(longest)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string_view(argv[1]) == "--scan") {
        std::cout << scanLines(argv[2]) << '\n';
        return 0;
    }
    if (argc == 3 && std::string_view(argv[1]) == "--parse") {
        std::cout << parse(argv[2]) << '\n';
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
