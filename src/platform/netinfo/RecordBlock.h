#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

struct sqlite3;

namespace platform {

class SqliteStatement;

/// Stores many short strings in a few blocks of memory. The views that it returns are valid as long as it
/// lives.
class TextArena {
  public:
    [[nodiscard]] std::string_view keep(std::string_view text);

  private:
    static constexpr std::size_t chunkSize = 65536;

    std::vector<std::unique_ptr<char[]>> chunks_;
    char* end_ = nullptr;  ///< end of the last chunk
    std::size_t free_ = 0; ///< bytes left in that chunk
};

/// Records read from a store with one query, with all their properties and values in stored order. A report
/// of a large directory needs all records, and reading them one at a time would take a query each. A record's
/// content is unpacked on request, one record at a time, so that a large directory takes little more memory
/// than its strings.
class RecordBlock {
  public:
    struct Property {
        std::string_view name;
        std::size_t firstValue = 0;
        std::size_t valueCount = 0;
    };

    struct Record {
        std::int64_t id = 0;
        std::string_view content;
    };

    /// The records below `parent`. On failure the result is empty and `*error` is SQLite's code.
    [[nodiscard]] static RecordBlock children(sqlite3* database, std::int64_t parent, int* error);
    /// The records that `rows` returns, each as an id and a content, in ascending order of id. Failures as
    /// above.
    [[nodiscard]] static RecordBlock of(SqliteStatement& rows, int* error);

    /// Adds a record at the end. `id` must be higher than those before it.
    void add(std::int64_t id, std::string_view content);

    /// In the order in which they were made.
    [[nodiscard]] const std::vector<Record>& records() const { return records_; }

    /// The record `id`, or null. Fast when records are looked up in order.
    [[nodiscard]] const Record* find(std::int64_t id) const;

    // The following take one of the records above. The spans and pointers that they return are valid until
    // they are called for another record, the strings as long as the block.

    /// False when the record is damaged in the store. Its properties then end where the damage begins.
    [[nodiscard]] bool isWhole(const Record& record) const;
    [[nodiscard]] std::span<const Property> properties(const Record& record) const;
    /// The record's first property of that name, or null.
    [[nodiscard]] const Property* property(const Record& record, std::string_view name) const;

    /// The values of a property of the record that was last passed to one of the functions above.
    [[nodiscard]] std::span<const std::string_view> values(const Property& property) const {
        return std::span(values_).subspan(property.firstValue, property.valueCount);
    }

  private:
    void takeApart(const Record& record) const;

    TextArena arena_;
    std::vector<Record> records_;
    mutable std::size_t next_ = 0; ///< where find() looks first
    // The record that was unpacked last.
    mutable const char* takenApart_ = nullptr; ///< where its content begins
    mutable bool isWhole_ = false;
    mutable std::vector<Property> properties_;
    mutable std::vector<std::string_view> values_;
};

} // namespace platform
