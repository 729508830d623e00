#pragma once

#include "platform/netinfo/RecordBlock.h"
#include "platform/netinfo/RecordContent.h"
#include "platform/posix/Status.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

namespace platform {

/// The directory's store, opened for writing: a tree of records in an SQLite file, each with properties and
/// values in order. Strings are bytes. All changes between construction and commit() are one transaction: a
/// writer that is killed leaves the store either unchanged or completely changed. Writers wait for each other
/// and for readers, and readers for writers, when they begin, so that nobody can make the commit fail. So a
/// thread that has a Store must not read the file through another connection. The tools decide what may be
/// written.
///
/// The first failure is kept: from then on nothing is read or written, operations return nothing, and
/// commit() returns the failure, which says what to do. So only a caller whose decisions depend on what was
/// read needs to check status().
class Store {
  public:
    using Record = std::int64_t;
    static constexpr Record root = 0;

    /// How long a writer waits for others by default.
    static constexpr int waitSeconds = 30;

    enum class Opening { Existing, Create };

    /// Opens `file` and begins the transaction, waiting up to `patience` seconds for others who use it. Also
    /// fails when the file is missing (Existing), exists already (Create), or was written by a later Brindle.
    explicit Store(const std::string& file, Opening opening = Opening::Existing, int patience = waitSeconds);
    /// Undoes what was not committed.
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    /// Ok, or the first failure.
    [[nodiscard]] const Status& status() const { return status_; }

    /// Fails when the store at `file` was written by a later Brindle. A file that is missing or not a store
    /// passes: opening it will fail.
    [[nodiscard]] static Status checkVersion(const std::string& file);

    /// The child of `parent` called `name`, or none.
    [[nodiscard]] std::optional<Record> child(Record parent, std::string_view name);
    /// The record at the path `components`, starting from the root, or none.
    [[nodiscard]] std::optional<Record> find(std::span<const std::string> components);
    /// The name of another child of `parent` that differs from `name` only in the case of letters, or none.
    [[nodiscard]] std::optional<std::string> childInOtherCase(Record parent, std::string_view name);
    /// All children of `parent`, as this transaction sees them.
    [[nodiscard]] RecordBlock children(Record parent);
    /// Adds the records that always exist to a store that has just been made.
    void addStandingRecords();
    /// Adds a record after its siblings, with the property `name`. No sibling may have that name.
    Record addRecord(Record parent, std::string_view name);
    /// The same with several properties. The first must be `name`.
    Record addRecord(Record parent, std::span<const StoredProperty> properties);
    /// Renames a record, in paths and in its property `name`. No sibling may have that name.
    void rename(Record record, std::string_view name);
    /// Removes a record and all records below it. Fails in a damaged store in which the root is among them.
    void removeRecord(Record record);

    /// The property's values; none when the record has no such property.
    [[nodiscard]] std::optional<std::vector<std::string>> values(Record record, std::string_view property);
    /// Replaces the property's values in place, or adds the property at the record's end.
    void setValues(Record record, std::string_view property, std::span<const std::string> values);
    /// Adds values to the end of the property, making it if it is missing.
    void appendValues(Record record, std::string_view property, std::span<const std::string> values);
    void removeProperty(Record record, std::string_view property);

    /// Ends the transaction. On failure nothing has changed.
    [[nodiscard]] Status commit();
    /// Undoes all changes and begins a new transaction, unless something failed.
    void undo();

    /// One of several steps of the transaction: its changes are undone unless keep() is called. Steps must
    /// not overlap.
    class Step {
      public:
        explicit Step(Store& store);
        ~Step();
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

        void keep();

      private:
        Store& store_;
        bool isKept_ = false;
    };

  private:
    struct Connection;

    void open(Opening opening);
    /// Begins the transaction in an existing store, upgrading it to today's layout.
    void begin();
    void create();
    void execute(const char* sql);
    template <class... Values>
    void change(std::string_view sql, const Values&... values);
    void check(int error); ///< records a failure unless `error` is SQLITE_OK
    void fail(std::string why);
    [[nodiscard]] std::vector<StoredProperty> load(Record record);
    void save(Record record, std::span<const StoredProperty> properties);

    std::string file_;
    int patience_;
    Status status_;
    std::unique_ptr<Connection> connection_;
};

} // namespace platform
