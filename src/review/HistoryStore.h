#pragma once

#include "platform/netinfo/Sqlite.h"
#include "platform/posix/Status.h"
#include "review/HistoryEntry.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace review {

/// The file that records what actions have changed. It is opened for each operation, so that several programs
/// can use it; each operation is one transaction, and waits a few seconds for other programs. The oldest
/// entries are dropped when there are too many. Failures say what to do.
class HistoryStore {
  public:
    static constexpr int entryLimit = 500;
    static constexpr std::size_t byteLimit = std::size_t{20} * 1024 * 1024;

    explicit HistoryStore(std::string file) : file_(std::move(file)) {}

    /// Adds an entry with the next number, which it returns. If the entry undoes another one, marks that as
    /// undone; if that was itself an undo, what it had undone counts as done again.
    [[nodiscard]] platform::Result<std::int64_t> add(const HistoryEntry& entry) const;

    /// All entries, the newest first; empty when nothing has been recorded yet. An entry whose content cannot
    /// be read is marked as damaged and has no content.
    [[nodiscard]] platform::Result<std::vector<HistoryEntry>> entries() const;

    /// Calls `takes` with each entry, the newest first, until it returns false.
    [[nodiscard]] platform::Status visit(const std::function<bool(HistoryEntry&& entry)>& takes) const;

  private:
    [[nodiscard]] platform::Result<platform::SqliteConnection> open() const;
    [[nodiscard]] std::string shownFile() const; ///< for messages
    [[nodiscard]] platform::Status failure(const char* what, int error) const;
    [[nodiscard]] int insert(sqlite3* database, const HistoryEntry& entry, std::int64_t* number) const;

    std::string file_;
};

} // namespace review
