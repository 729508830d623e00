#pragma once

#include "platform/netinfo/Sqlite.h"
#include "platform/posix/Status.h"
#include "review/HistoryEntry.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace review {

/// The file that keeps what actions have changed. Opened for each operation, so that several programs can use
/// it; each operation is one transaction and waits for the others a few seconds. The oldest entries are
/// dropped when there are too many. Failures say what to do.
class HistoryStore {
  public:
    static constexpr int entryLimit = 500;
    static constexpr std::size_t byteLimit = std::size_t{20} * 1024 * 1024;

    explicit HistoryStore(std::string file) : file_(std::move(file)) {}

    /// Keeps an entry under the next number, which it returns. One that takes another back marks that, and
    /// where that was an undo itself, what it had taken back counts as done again.
    [[nodiscard]] platform::Result<std::int64_t> add(const HistoryEntry& entry) const;

    /// All entries, the newest first. One whose content cannot be read is damaged, and tells nothing of what
    /// it did. None where nothing was kept yet.
    [[nodiscard]] platform::Result<std::vector<HistoryEntry>> entries() const;

    /// Hands the entries over, the newest first, until `takes` returns false.
    [[nodiscard]] platform::Status visit(const std::function<bool(HistoryEntry&& entry)>& takes) const;

  private:
    [[nodiscard]] platform::Result<platform::SqliteConnection> open() const;
    [[nodiscard]] platform::Status failure(std::string_view what, int error) const;
    [[nodiscard]] int insert(sqlite3* database, const HistoryEntry& entry, std::int64_t* number) const;

    std::string file_;
};

} // namespace review
