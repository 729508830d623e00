#include "TemporaryFolder.h"
#include "directory/ni_report.h"
#include "platform/foundation/Host.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/Store.h"

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

// How long the report of all users takes. Each user has twelve properties, and the report shows five of them.
// It is compared with two SQL joins that fetch the same records in the order of their ids: one over the
// store, which returns each record's content as stored, and one over the same texts in a plain relational
// layout, which returns each property with its value.

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
    if (!store.commit().isOk()) {
        throw std::runtime_error(store.status().text());
    }
}

/// The same users with a row for each property and a row for each value.
void fillRelational(const std::string& file, std::int64_t users) {
    sqlite3* database = nullptr;
    sqlite3_open(file.c_str(), &database);
    sqlite3_exec(database,
                 "BEGIN; CREATE TABLE record (id INTEGER PRIMARY KEY);"
                 "CREATE TABLE property (record INTEGER, position INTEGER, name TEXT,"
                 " PRIMARY KEY (record, position)) WITHOUT ROWID;"
                 "CREATE TABLE value (record INTEGER, property INTEGER, position INTEGER, value TEXT,"
                 " PRIMARY KEY (record, property, position)) WITHOUT ROWID",
                 nullptr, nullptr, nullptr);
    for (std::int64_t user = 0; user < users; ++user) {
        const std::string id = std::to_string(user);
        std::string change = "INSERT INTO record VALUES (" + id + ");";
        for (std::size_t place = 0; place < properties.size(); ++place) {
            const std::string key = id + "," + std::to_string(place);
            const std::string name = properties[place];
            change += "INSERT INTO property VALUES (" + key + ",'" + name + "');INSERT INTO value VALUES (" +
                      key + ",0,'" + name + " of " + id + "');";
        }
        sqlite3_exec(database, change.c_str(), nullptr, nullptr, nullptr);
    }
    sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(database);
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

/// A directory with that many users, and a host that has it as its local domain; removed with the object.
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

/// Opens the file, runs the statement to its end and reads the bytes of every column, once per iteration.
void fetchAll(benchmark::State& state, const std::string& file, const char* statement,
              std::int64_t expected) {
    for (auto _ : state) {
        sqlite3* database = nullptr;
        sqlite3_stmt* join = nullptr;
        sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
        sqlite3_prepare_v2(database, statement, -1, &join, nullptr);
        std::int64_t bytes = 0;
        std::int64_t rows = 0;
        while (sqlite3_step(join) == SQLITE_ROW) {
            for (int column = 1; column < sqlite3_column_count(join); ++column) {
                bytes += sqlite3_column_bytes(join, column);
            }
            ++rows;
        }
        sqlite3_finalize(join);
        sqlite3_close(database);
        if (rows != expected) {
            state.SkipWithError("the join is not whole");
        }
        benchmark::DoNotOptimize(bytes);
    }
    state.SetComplexityN(state.range(0));
}

void sqlJoin(benchmark::State& state) {
    const UserDirectory directory(state.range(0));
    fetchAll(state, directory.file(),
             "SELECT r.id, r.content FROM record u JOIN record r ON r.parent = u.id "
             "WHERE u.name = 'users' AND u.parent = 0 ORDER BY r.id",
             state.range(0));
}

void relationalJoin(benchmark::State& state) {
    const TemporaryFolder folder;
    const std::string file = (folder.path() / "relational.db").string();
    fillRelational(file, state.range(0));
    fetchAll(
        state, file,
        "SELECT r.id, p.name, v.value FROM record r JOIN property p ON p.record = r.id LEFT JOIN value v "
        "ON v.record = p.record AND v.property = p.position ORDER BY r.id, p.position, v.position",
        state.range(0) * std::ssize(properties));
}

} // namespace

BENCHMARK(relationalJoin)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);
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
