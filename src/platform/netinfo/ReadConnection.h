#pragma once

#include "platform/netinfo/Sqlite.h"

#include <optional>
#include <string>

namespace platform {

/// A store opened for reading only, in one read transaction from begin() on. Belongs to an open domain.
class ReadConnection {
  public:
    ReadConnection() = default;
    ReadConnection(const ReadConnection&) = delete;
    ReadConnection& operator=(const ReadConnection&) = delete;

    /// SQLITE_OK, or why `file` cannot be opened. Nothing is read yet.
    [[nodiscard]] int open(const std::string& file);
    /// Opens a store in memory that holds nothing but the records that always exist.
    [[nodiscard]] int openEmpty();
    /// Begins the transaction, waiting for writers. Where a killed writer left its changes half done, or the
    /// store has an older layout, the connection becomes one to a copy that is put in order, as the next
    /// writer would put the store itself. SQLITE_OK, or what failed; it can be tried again then.
    [[nodiscard]] int begin();

    [[nodiscard]] sqlite3* database() const { return database_.get(); }

    /// How long calls wait for a writer, in seconds; none: for ever. Where the action under way has waited in
    /// vain already they do not, and whoever shows what is waited for may end it earlier (Patience).
    std::optional<int> waitSeconds;

    /// For how many whole seconds the last begin() waited.
    [[nodiscard]] int waitedSeconds() const { return waitedSeconds_; }

  private:
    [[nodiscard]] int beginOrCopy();
    [[nodiscard]] int beginHere();
    [[nodiscard]] int recoverCopy();
    [[nodiscard]] int upgradeCopy();
    void setWaiting();
    static int waitForWriter(void* connection, int tries);

    std::string file_;
    SqliteConnection database_;
    bool begun_ = false;
    double waitingSince_ = 0;
    int waitedSeconds_ = 0;
};

} // namespace platform
