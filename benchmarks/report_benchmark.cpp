#include "Host.h"
#include "LocalDomain.h"
#include "Store.h"
#include "TemporaryFolder.h"
#include "ni_report.h"

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

// How long the report of all users takes, against one SQL join that fetches the same records in the order of
// their ids. Each user has twelve properties, of which the report shows five.

namespace {

constexpr std::array properties{"realname",       "gid",    "uid",           "sharedDir",
                                "_shadow_passwd", "hint",   "_writers_hint", "_writers_passwd",
                                "home",           "passwd", "shell"};
const std::array<std::string, 5> shown{"name", "uid", "sharedDir", "realname", "gid"};

void fill(const std::string& file, std::int64_t users) {
    platform::Store store(file, platform::Store::Opening::Create);
    const auto directory = store.addRecord(platform::Store::root, "users");
    for (std::int64_t user = 0; user < users; ++user) {
        const auto record = store.addRecord(directory, "user" + std::to_string(user));
        for (const char* property : properties) {
            const std::string value = std::string(property) + " of " + std::to_string(user);
            store.setValues(record, property, std::span(&value, 1));
        }
    }
    store.commit();
}

class FileDomain : public platform::LocalDomain {
  public:
    explicit FileDomain(std::string file) : file_(std::move(file)) {}

    [[nodiscard]] std::string storeFile() const override { return file_; }

  private:
    std::string file_;
};

class SilentLog : public platform::Log {
  public:
    void write(std::string_view /*text*/) override {}
};

/// A directory with so many users, and the host whose local domain it is; gone with the object.
class UserDirectory {
  public:
    explicit UserDirectory(std::int64_t users) {
        fill(file(), users);
        platform::Services services;
        services.log = std::make_shared<SilentLog>();
        services.localDomain = std::make_shared<FileDomain>(file());
        host_ = std::make_unique<platform::Host>(std::move(services));
    }

    [[nodiscard]] std::string file() const { return (folder_.path() / "directory.db").string(); }

  private:
    TemporaryFolder folder_;
    std::unique_ptr<platform::Host> host_;
};

void report(benchmark::State& state) {
    const UserDirectory directory(state.range(0));
    for (auto _ : state) {
        std::vector<std::string> lines;
        if (ni_report_local("/users", shown, lines) != 0 || std::ssize(lines) != state.range(0)) {
            state.SkipWithError("the report is not whole");
        }
        benchmark::DoNotOptimize(lines);
    }
    state.SetComplexityN(state.range(0));
}

void sqlJoin(benchmark::State& state) {
    const UserDirectory directory(state.range(0));
    for (auto _ : state) {
        sqlite3* database = nullptr;
        sqlite3_stmt* join = nullptr;
        sqlite3_open_v2(directory.file().c_str(), &database, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX,
                        nullptr);
        sqlite3_prepare_v2(
            database,
            "SELECT r.id, p.name, v.value FROM record u JOIN record r ON r.parent = u.id JOIN property p "
            "ON p.record = r.id LEFT JOIN value v ON v.record = p.record AND v.property = p.position "
            "WHERE u.name = 'users' AND u.parent = 0 ORDER BY r.id, p.position, v.position",
            -1, &join, nullptr);
        std::int64_t bytes = 0;
        std::int64_t rows = 0;
        while (sqlite3_step(join) == SQLITE_ROW) {
            bytes += sqlite3_column_bytes(join, 1) + sqlite3_column_bytes(join, 2);
            ++rows;
        }
        sqlite3_finalize(join);
        sqlite3_close(database);
        if (rows != state.range(0) * (std::ssize(properties) + 1)) {
            state.SkipWithError("the join is not whole");
        }
        benchmark::DoNotOptimize(bytes);
    }
    state.SetComplexityN(state.range(0));
}

} // namespace

BENCHMARK(sqlJoin)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);
BENCHMARK(report)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

BENCHMARK_MAIN();
