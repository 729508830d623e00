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

/// The directory's store opened for writing: a tree of records in an SQLite file, each with properties and
/// values in order. Texts are bytes. All changes between construction and commit() are one transaction: a
/// writer that is killed leaves the store as it was or as it was meant to be. Writers wait for each other and
/// for readers, and readers for them, all at the beginning: the commit then meets nobody who could make it
/// fail. So nothing may read the file through another connection while the same thread has a Store. Rules
/// about what may be written are the tools' own.
///
/// The first failure stays: from then on nothing is read or written, operations return nothing, and commit()
/// returns the failure, which says what to do. So only whoever decides by what was read asks status().
class Store {
  public:
    using Record = std::int64_t;
    static constexpr Record root = 0;

    /// How long a writer waits for others, where it is told nothing else.
    static constexpr int waitSeconds = 30;

    enum class Opening { Existing, Create };

    /// Opens `file` and begins the transaction, waiting so many seconds for those who use it. Fails also when
    /// the file is missing, exists and is to be created, or was written by a later Brindle.
    explicit Store(const std::string& file, Opening opening = Opening::Existing, int patience = waitSeconds);
    /// Rolls back what was not committed.
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    /// Ok, or the first failure.
    [[nodiscard]] const Status& status() const { return status_; }

    /// Whether this Brindle knows the layout of the store at `file`. A file that is no store, or is missing,
    /// passes: opening it says so.
    [[nodiscard]] static Status checkVersion(const std::string& file);

    /// The record called `name` right below `parent`.
    [[nodiscard]] std::optional<Record> child(Record parent, std::string_view name);
    /// The record that `components` lead to from the root.
    [[nodiscard]] std::optional<Record> find(std::span<const std::string> components);
    /// The name of another record right below `parent` that differs from `name` in the case of letters only.
    [[nodiscard]] std::optional<std::string> childInOtherCase(Record parent, std::string_view name);
    /// All records right below `parent`, as this transaction sees them.
    [[nodiscard]] RecordBlock children(Record parent);
    /// Adds a record after its siblings, with the property `name`. No sibling has that name.
    Record addRecord(Record parent, std::string_view name);
    /// The same with all its properties, the first of which is `name`.
    Record addRecord(Record parent, std::span<const StoredProperty> properties);
    /// Renames a record: its place in paths and its `name` property. No sibling has that name.
    void rename(Record record, std::string_view name);
    /// Takes a record away, with all records below it. Fails in a damaged store where the root is one of
    /// them.
    void removeRecord(Record record);

    /// The property's values; none when the record has no such property.
    [[nodiscard]] std::optional<std::vector<std::string>> values(Record record, std::string_view property);
    /// Replaces the property's values where it stands, or makes it at the record's end.
    void setValues(Record record, std::string_view property, std::span<const std::string> values);
    /// Adds values at the property's end, making it when it is missing.
    void appendValues(Record record, std::string_view property, std::span<const std::string> values);
    void removeProperty(Record record, std::string_view property);

    /// Ends the transaction. On failure nothing was changed.
    [[nodiscard]] Status commit();
    /// Takes back all changes and begins anew, unless something failed.
    void undo();

    /// One of several steps of the transaction: what it changed is taken back unless it is kept. Steps do not
    /// overlap.
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
    /// Begins the transaction of a store that exists, in today's layout.
    void begin();
    void create();
    void execute(const char* sql);
    template <class... Values>
    void change(std::string_view sql, const Values&... values);
    void check(int error); ///< remembers a failure: any but 0
    void fail(std::string why);
    [[nodiscard]] std::vector<StoredProperty> load(Record record);
    void save(Record record, std::span<const StoredProperty> properties);

    std::string file_;
    int patience_;
    Status status_;
    std::unique_ptr<Connection> connection_;
};

} // namespace platform
