#pragma once

#include "platform/netinfo/RecordBlock.h"
#include "platform/netinfo/RecordContent.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

namespace platform {

/// What the store could not do. The text is one line for the user: what failed, on what, and what to do.
class StoreError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The directory's store opened for writing: a tree of records in an SQLite file, each with properties and
/// values in order. Texts are bytes. All changes between construction and commit() are one transaction: a
/// writer that is killed leaves the store as it was or as it was meant to be. Writers wait for each other and
/// for readers, and readers for them, all at the beginning: the commit then meets nobody who could make it
/// fail. So nothing may read the file through another connection while the same thread has a Store. Every
/// operation throws StoreError when the file cannot be read or written; rules about what may be written are
/// the tools' own.
class Store {
  public:
    using Record = std::int64_t;
    static constexpr Record root = 0;

    /// How long a writer waits for others, where it is told nothing else.
    static constexpr int waitSeconds = 30;

    enum class Opening { Existing, Create };

    /// Opens `file` and begins the transaction, waiting so many seconds for those who use it. Throws also
    /// when the file is missing, or exists and is to be created.
    explicit Store(const std::string& file, Opening opening = Opening::Existing, int patience = waitSeconds);
    /// Rolls back what was not committed.
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    /// The record called `name` right below `parent`.
    [[nodiscard]] std::optional<Record> child(Record parent, std::string_view name);
    /// The record that `components` lead to from the root.
    [[nodiscard]] std::optional<Record> find(std::span<const std::string> components);
    /// The name of another record right below `parent` that differs from `name` in the case of ASCII letters
    /// only.
    [[nodiscard]] std::optional<std::string> childInOtherCase(Record parent, std::string_view name);
    /// All records right below `parent`, as this transaction sees them.
    [[nodiscard]] RecordBlock children(Record parent);
    /// Adds a record after its siblings, with the property `name`. No sibling has that name.
    Record addRecord(Record parent, std::string_view name);
    /// Renames a record: its place in paths and its `name` property. No sibling has that name.
    void rename(Record record, std::string_view name);
    /// Takes a record away, with all records below it.
    void removeRecord(Record record);

    /// The property's values; none when the record has no such property.
    [[nodiscard]] std::optional<std::vector<std::string>> values(Record record, std::string_view property);
    /// Replaces the property's values where it stands, or makes it at the record's end.
    void setValues(Record record, std::string_view property, std::span<const std::string> values);
    /// Adds values at the property's end, making it when it is missing.
    void appendValues(Record record, std::string_view property, std::span<const std::string> values);
    void removeProperty(Record record, std::string_view property);

    /// Ends the transaction. On a throw nothing was changed.
    void commit();
    /// Takes back all changes and begins anew.
    void undo();

  private:
    struct Connection;

    void open(Opening opening);
    /// Begins the transaction of a store that exists, in today's layout.
    void begin();
    void create();
    void execute(const char* sql);
    void check(int error) const; ///< throws unless it is 0
    [[noreturn]] void fail(int error) const;
    [[nodiscard]] std::vector<StoredProperty> load(Record record);
    void save(Record record, std::span<const StoredProperty> properties);

    std::string file_;
    int patience_;
    std::unique_ptr<Connection> connection_;
};

} // namespace platform
