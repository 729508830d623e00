// How long it takes to sort and to filter a list of 100,000 users, from the application's rows to their
// places in a table. The goal for each is 100 ms.

#include "app/BRRow.h"
#include "frontends/qt/TableRows.h"

#include <benchmark/benchmark.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int users = 100000;
constexpr std::array<std::string_view, BRRow::mostColumns> columns = {"User", "Public Shared", "UID",
                                                                      "Full Name", "GID"};

/// Rows in an order that does not help sorting.
std::vector<BRRow> makeRows() {
    constexpr int step = 7919;
    std::vector<BRRow> rows;
    rows.reserve(users);
    for (int user = 0; user < users; ++user) {
        const std::string number = std::to_string(user * step % users);
        rows.push_back(
            {columns, {"person" + number, "NO", std::to_string(user), "Person number " + number, "20"}});
    }
    return rows;
}

class UserRows : public benchmark::Fixture {
  protected:
    std::vector<BRRow> list = makeRows();
    frontend::TableRows rows{[this](int row, int column) {
                                 return list[static_cast<std::size_t>(row)].at(
                                     columns.at(static_cast<std::size_t>(column)));
                             },
                             static_cast<int>(columns.size())};
};

BENCHMARK_DEFINE_F(UserRows, sort)(benchmark::State& state) {
    rows.setLength(users);
    rows.setOrder(0, false);
    for (auto _ : state) {
        rows.arrange({});
    }
}

/// Filters by a first letter, for which every row is read.
BENCHMARK_DEFINE_F(UserRows, filter)(benchmark::State& state) {
    rows.setOrder(-1, false);
    for (auto _ : state) {
        rows.setLength(users);
        rows.setFilter("9");
        rows.arrange({});
    }
}

BENCHMARK_DEFINE_F(UserRows, filterFurther)(benchmark::State& state) {
    rows.setLength(users);
    rows.setFilter("person 12345");
    for (auto _ : state) {
        rows.arrange({});
    }
}

BENCHMARK_REGISTER_F(UserRows, sort)->Unit(benchmark::kMillisecond);
BENCHMARK_REGISTER_F(UserRows, filter)->Unit(benchmark::kMillisecond);
BENCHMARK_REGISTER_F(UserRows, filterFurther)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
