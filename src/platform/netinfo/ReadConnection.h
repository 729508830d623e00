#pragma once

#include "platform/netinfo/Sqlite.h"
#include "platform/netinfo/StoreStamp.h"

#include <optional>
#include <string>

namespace platform {

/// A store that is open for reading only, in one read transaction from begin() on.
class ReadConnection {
  public:
    ReadConnection() = default;
    ReadConnection(const ReadConnection&) = delete;
    ReadConnection& operator=(const ReadConnection&) = delete;

    /// Returns SQLITE_OK, or why `file` cannot be opened. Nothing is read yet.
    [[nodiscard]] int open(const std::string& file);
    /// Opens a store in memory that holds only the records that always exist.
    [[nodiscard]] int openEmpty();
    /// Begins the transaction, waiting for writers. If a killed writer left its changes half done, or the
    /// store has an older layout, the connection changes to a private copy that is recovered or upgraded, as
    /// the next writer would do with the store itself. Returns SQLITE_OK, or what failed; it can then be
    /// called again.
    [[nodiscard]] int begin();

    [[nodiscard]] sqlite3* database() const { return database_.get(); }

    /// The state that is being read; none before begin(), and where a copy or no file is read.
    [[nodiscard]] std::optional<StoreStamp> stamp() const;

    /// How long calls wait for a writer, in seconds; none: for ever. They do not wait when the current action
    /// has already waited in vain, and the host's Patience may end a wait earlier.
    std::optional<int> waitSeconds;

    /// How many whole seconds the last begin() waited.
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
    bool isCopy_ = false; ///< or a store in memory
    double waitingSince_ = 0;
    int waitedSeconds_ = 0;
};

} // namespace platform
