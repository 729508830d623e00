#include "FilledRoot.h"
#include "TemporaryFolder.h"
#include "WholeProgram.h"
#include "access/AccessCheck.h"
#include "access/ServerAccounts.h"
#include "model/SMBConf.h"
#include "platform/foundation/Host.h"
#include "platform/host/InstalledFiles.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

// How long it takes to find out what a user may do with one share (goal: under 20 ms) and with a thousand
// (under 300 ms). Also how long a whole program takes to list ten thousand users as JSON, compared with the
// report that the list is made from.

namespace {

constexpr int shares = 1000;
constexpr int users = 10000;

/// A root with a server's password database that contains one user.
class Computer {
  public:
    Computer(int shareCount, int userCount) : root_(folder_.path() / "root") {
        fillRoot(root_, shareCount, userCount);
        const platform::SambaAccounts accounts(platform::EmbeddedRoot(root_.string()).sambaPaths());
        for (const auto& status : {accounts.make(), accounts.setPassword("person0", "Wonderland1")}) {
            if (!status.isOk()) {
                throw std::runtime_error(status.text());
            }
        }
    }

    [[nodiscard]] std::string root() const { return root_.string(); }

    /// Asks about that many of the published shares, which are every second one.
    void ask(int questions) const {
        const platform::Host host(*platform::makeEmbeddedServices(optionsFor(root())));
        const SMBConf conf;
        accesscheck::ServerAccounts accounts{
            platform::SambaAccounts(platform::EmbeddedRoot(root()).sambaPaths())};
        accesscheck::AccessCheck check(conf, accounts, {"smb.conf", true});
        for (int share = 0; share < questions; ++share) {
            const auto answer = check.check("share" + std::to_string(2 * share), "person0");
            if (!answer.may.connect) {
                throw std::runtime_error(answer.reason ? answer.reason->text : "no reason");
            }
        }
    }

  private:
    TemporaryFolder folder_;
    std::filesystem::path root_;
};

void checkAccess(benchmark::State& state) {
    const Computer computer(2 * shares, users);
    for (auto _ : state) {
        computer.ask(1);
    }
}

void grid(benchmark::State& state) {
    const Computer computer(2 * shares, users);
    for (auto _ : state) {
        computer.ask(shares);
    }
}

void program(benchmark::State& state, const std::string& name, const std::vector<std::string>& words) {
    const Computer computer(0, users);
    std::vector<std::string> command{platform::programFolder() + "/" + name, "--root", computer.root()};
    command.insert(command.end(), words.begin(), words.end());
    for (auto _ : state) {
        if (!runProgram(command)) {
            state.SkipWithError("the program has failed");
        }
    }
}

void processReport(benchmark::State& state) {
    program(state, "nireport", {".", "/users", "name", "uid", "sharedDir", "realname", "gid"});
}

void processUsersList(benchmark::State& state) {
    program(state, "brindle", {"users", "list", "--json"});
}

void processCheckAccess(benchmark::State& state) {
    program(state, "brindle", {"check-access", "nothing", "person0"});
}

} // namespace

BENCHMARK(checkAccess)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(grid)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(processReport)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(processUsersList)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(processCheckAccess)->UseRealTime()->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
