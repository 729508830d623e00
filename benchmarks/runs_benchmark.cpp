// How long a whole program takes to turn on the Public folders of 2,000 users in one action: each is a
// separate tool run, and all of them are one transaction. It is compared with as many bare changes of an
// SQLite table in one process, each of which waits for the disk (write-ahead log, synchronous=FULL); and, to
// show what the runs themselves cost, with the same changes in one transaction.

#include "FilledRoot.h"
#include "TemporaryFolder.h"
#include "WholeProgram.h"
#include "platform/host/InstalledFiles.h"

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

namespace {

constexpr int users = 2000;

/// A table with that many rows, for the bare changes.
class Table {
  public:
    Table() {
        sqlite3_open((folder_.path() / "table.db").c_str(), &database_);
        execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;"
                "CREATE TABLE record (name TEXT PRIMARY KEY, content BLOB)");
        change("x", true);
    }

    ~Table() { sqlite3_close(database_); }

    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    /// Gives every row this content, one after another, in separate transactions unless `isOne`.
    void change(const std::string& content, bool isOne) {
        execute(isOne ? "BEGIN" : "");
        sqlite3_stmt* upsert = nullptr;
        sqlite3_prepare_v2(database_,
                           "INSERT INTO record VALUES (?1, ?2) ON CONFLICT (name) DO UPDATE SET content = ?2",
                           -1, &upsert, nullptr);
        for (int user = 0; user < users; ++user) {
            const std::string name = "person" + std::to_string(user);
            sqlite3_bind_text(upsert, 1, name.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_bind_blob(upsert, 2, content.data(), static_cast<int>(content.size()), SQLITE_STATIC);
            if (sqlite3_step(upsert) != SQLITE_DONE) {
                throw std::runtime_error(sqlite3_errmsg(database_));
            }
            sqlite3_reset(upsert);
        }
        sqlite3_finalize(upsert);
        execute(isOne ? "COMMIT" : "");
    }

  private:
    void execute(const char* sql) {
        if (sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
            throw std::runtime_error(sqlite3_errmsg(database_));
        }
    }

    TemporaryFolder folder_;
    sqlite3* database_ = nullptr;
};

void bareUpserts(benchmark::State& state, bool isOne) {
    Table table;
    char last = 'a';
    for (auto _ : state) {
        last = last == 'a' ? 'b' : 'a';
        table.change(std::string(200, last), isOne);
    }
}

/// Runs the program as a user would. Each iteration reverses the change of the one before.
void publicFolders(benchmark::State& state) {
    const TemporaryFolder folder;
    fillRoot(folder.path() / "root", 0, users);
    for (const std::string name : {"enable", "disable"}) {
        std::ofstream(folder.path() / name) << "start\nsend " << name << "AllPublicShares:\n";
    }
    ::setenv("HOME", folder.path().c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1);
    bool isEnabled = false;
    for (auto _ : state) {
        isEnabled = !isEnabled;
        if (!runProgram({platform::programFolder() + "/brindle", "--root", (folder.path() / "root").string(),
                         "--script", (folder.path() / (isEnabled ? "enable" : "disable")).string()})) {
            state.SkipWithError("the program has failed");
            break;
        }
    }
}

/// The same program with nothing to change.
void onlyStart(benchmark::State& state) {
    const TemporaryFolder folder;
    fillRoot(folder.path() / "root", 0, users);
    std::ofstream(folder.path() / "script") << "start\n";
    ::setenv("HOME", folder.path().c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1);
    for (auto _ : state) {
        if (!runProgram({platform::programFolder() + "/brindle", "--root", (folder.path() / "root").string(),
                         "--script", (folder.path() / "script").string()})) {
            state.SkipWithError("the program has failed");
            break;
        }
    }
}

BENCHMARK_CAPTURE(bareUpserts, eachLasting, false)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(bareUpserts, oneTransaction, true)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(publicFolders)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(onlyStart)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
