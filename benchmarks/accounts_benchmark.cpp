// How long work with the computer's own accounts takes: the report of all users, compared with the system's
// own reading of the file and one SQL join over the store; and making a user, compared with the computer's
// own programs that this runs. The latter needs root and namespaces (tests/support/own-computer).

#include "TemporaryFolder.h"
#include "directory/ni_report.h"
#include "platform/foundation/Host.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/Sqlite.h"
#include "platform/netinfo/Store.h"
#include "platform/posix/Process.h"
#include "platform/security/HelperSession.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <pwd.h>

namespace {

using Words = std::vector<std::string>;

class SilentLog : public platform::Log {
  public:
    void write(std::string_view /*text*/) override {}
};

/// A computer with that many users, each with properties that have no place in passwd; removed with the
/// object.
class Computer : public platform::LocalDomain {
  public:
    explicit Computer(std::int64_t users) {
        std::ofstream(files_.group) << "users:x:100:\n";
        std::ofstream passwd(files_.passwd);
        platform::Store store(storeFile(), platform::Store::Opening::Create);
        const auto directory = store.addRecord(platform::Store::root, "users");
        for (std::int64_t user = 0; user < users; ++user) {
            const std::string name = "user" + std::to_string(user);
            const std::string uid = std::to_string(1000 + user);
            passwd << name << ":x:" << uid << ":100:User number " << user << ":/home/" << name
                   << ":/bin/sh\n";
            const auto record = store.addRecord(directory, name);
            store.setValues(record, "uid", std::array{uid});
            store.setValues(record, "sharedDir", std::array{std::string("Public")});
            store.setValues(record, "hint", {});
            store.setValues(record, "_writers_hint", std::array{name});
        }
        if (!store.commit().isOk()) {
            throw std::runtime_error(store.status().text());
        }
    }

    [[nodiscard]] std::string storeFile() const override {
        return (folder_.path() / "directory.db").string();
    }

    [[nodiscard]] std::optional<platform::AccountFiles> accountFiles() const override { return files_; }

  private:
    TemporaryFolder folder_;
    platform::AccountFiles files_{(folder_.path() / "passwd").string(), (folder_.path() / "group").string()};
};

void accountReport(benchmark::State& state) {
    platform::Services services;
    services.log = std::make_shared<SilentLog>();
    services.localDomain = std::make_shared<Computer>(state.range(0));
    const platform::Host host(std::move(services));
    const std::array<std::string, 5> shown{"name", "uid", "sharedDir", "realname", "gid"};
    for (auto _ : state) {
        std::vector<std::string> lines;
        if (ni_report_local("/users", shown, lines) != 0 || std::ssize(lines) != state.range(0)) {
            state.SkipWithError("the report is not whole");
        }
        benchmark::DoNotOptimize(lines);
    }
}

void linesAndJoin(benchmark::State& state) {
    const Computer computer(state.range(0));
    for (auto _ : state) {
        std::FILE* file = std::fopen(computer.accountFiles()->passwd.c_str(), "re");
        std::int64_t lines = 0;
        while (const passwd* line = ::fgetpwent(file)) {
            benchmark::DoNotOptimize(line->pw_uid);
            ++lines;
        }
        std::fclose(file);
        sqlite3* opened = nullptr;
        sqlite3_open_v2(computer.storeFile().c_str(), &opened, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX,
                        nullptr);
        const platform::SqliteConnection database(opened);
        platform::SqliteStatement join(opened, "SELECT r.name, r.content FROM record u JOIN record r ON "
                                               "r.parent = u.id WHERE u.name = 'users' AND u.parent = 0");
        std::size_t bytes = 0;
        while (join.step()) {
            bytes += join.text(0).size() + join.text(1).size();
        }
        benchmark::DoNotOptimize(bytes);
        if (lines != state.range(0)) {
            state.SkipWithError("not all lines were read");
        }
    }
}

/// Runs the computer's own programs as a person would.
bool byHand(const std::vector<std::pair<Words, std::string>>& programs) {
    for (const auto& [words, input] : programs) {
        const auto finished = platform::runProcess({words}, input);
        if (!finished.isOk() || finished->status != 0) {
            return false;
        }
    }
    return true;
}

/// Deletes what a round has made. Not timed.
void takeAway() {
    static_cast<void>(byHand({{{"/usr/bin/pdbedit", "-x", "--user=bench"}, ""},
                              {{"/usr/sbin/userdel", "bench"}, ""},
                              {{"/usr/sbin/groupdel", "benchers"}, ""}}));
}

void userMadeByHand(benchmark::State& state) {
    for (auto _ : state) {
        const bool isMade = byHand({{{"/usr/sbin/groupadd", "-g", "1600", "benchers"}, ""},
                                    {{"/usr/sbin/useradd", "-l", "-M", "-N", "-d", "/dev/null", "-s",
                                      "/sbin/nologin", "-u", "1501", "-g", "1600", "-c", "Bench", "bench"},
                                     ""},
                                    {{"/usr/bin/gpasswd", "-a", "bench", "benchers"}, ""},
                                    {{"/usr/sbin/chpasswd"}, "bench:secret\n"},
                                    {{"/usr/bin/smbpasswd", "-s", "-a", "bench"}, "secret\nsecret\n"}});
        state.PauseTiming();
        if (!isMade) {
            state.SkipWithError("one of the programs has failed");
        }
        takeAway();
        state.ResumeTiming();
    }
}

/// Makes the tool runs of the application's actions, with one helper per action, as the application does.
void userMade(benchmark::State& state) {
    const std::string helper =
        std::filesystem::read_symlink("/proc/self/exe").parent_path() / "brindle-helper";
    const std::vector<std::vector<Words>> actions = {{{"-create", "/groups/benchers"},
                                                      {"-create", "/groups/benchers", "gid", "1600"},
                                                      {"-create", "/groups/benchers", "passwd", "*"},
                                                      {"-create", "/groups/benchers", "users"}},
                                                     {{"-create", "/users/bench"},
                                                      {"-create", "/users/bench", "realname", "Bench"},
                                                      {"-create", "/users/bench", "gid", "1600"},
                                                      {"-create", "/users/bench", "uid", "1501"},
                                                      {"-create", "/users/bench", "sharedDir", "<no value>"},
                                                      {"-create", "/users/bench", "_shadow_passwd"},
                                                      {"-create", "/users/bench", "hint"},
                                                      {"-create", "/users/bench", "_writers_hint", "bench"},
                                                      {"-create", "/users/bench", "_writers_passwd", "bench"},
                                                      {"-create", "/users/bench", "home", "/dev/null"},
                                                      {"-create", "/users/bench", "passwd", "!"},
                                                      {"-create", "/users/bench", "shell", "/sbin/nologin"},
                                                      {"-append", "/groups/benchers", "users", "bench"}},
                                                     {{"-passwd", "/Users/bench", "secret"}}};
    for (auto _ : state) {
        for (const auto& runs : actions) {
            platform::HelperSession session({helper, "--system"});
            for (Words words : runs) {
                const char* tool = words.front() == "-passwd" ? "/usr/bin/dscl" : "/usr/bin/nicl";
                words.insert(words.begin(), ".");
                if (session.run(tool, words, nullptr) != 0) {
                    state.SkipWithError("the helper has failed");
                }
            }
        }
        state.PauseTiming();
        if (::getpwnam("bench") == nullptr) {
            state.SkipWithError("no account was made");
        }
        takeAway();
        state.ResumeTiming();
    }
}

} // namespace

BENCHMARK(linesAndJoin)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(accountReport)->Arg(10000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    if (std::getenv("BRINDLE_OWN_COMPUTER") != nullptr) {
        // Other programs do the work, so only the real time is meaningful.
        benchmark::RegisterBenchmark("userMadeByHand", userMadeByHand)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
        benchmark::RegisterBenchmark("userMade", userMade)->Unit(benchmark::kMillisecond)->UseRealTime();
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
