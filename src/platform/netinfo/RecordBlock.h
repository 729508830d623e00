#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

struct sqlite3;

namespace platform {

/// Keeps many short texts in few pieces of memory. The views it hands out live as long as it does.
class TextArena {
  public:
    [[nodiscard]] std::string_view keep(std::string_view text);

  private:
    static constexpr std::size_t chunkSize = 65536;

    std::vector<std::unique_ptr<char[]>> chunks_;
    char* end_ = nullptr;  ///< of the last chunk
    std::size_t free_ = 0; ///< bytes left before it
};

/// Records read from a store in one pass over it, with all their properties and values in stored order.
/// Reading a directory's records one property at a time would be a query each; a report of a large directory
/// asks for all of them anyway.
class RecordBlock {
  public:
    struct Property {
        std::string_view name;
        std::size_t firstValue = 0;
        std::size_t valueCount = 0;
    };

    struct Record {
        std::int64_t id = 0;
        std::size_t firstProperty = 0;
        std::size_t propertyCount = 0;
    };

    /// The records below `parent`. On failure the answer is empty and `*error` is SQLite's code.
    [[nodiscard]] static RecordBlock children(sqlite3* database, std::int64_t parent, int* error);
    /// The one record `id`; no record when there is none.
    [[nodiscard]] static RecordBlock single(sqlite3* database, std::int64_t id, int* error);

    /// In the order in which they were made.
    [[nodiscard]] const std::vector<Record>& records() const { return records_; }

    /// The record `id`, or null. Records that are asked for in their order are found at once.
    [[nodiscard]] const Record* find(std::int64_t id) const;

    [[nodiscard]] std::span<const Property> properties(const Record& record) const {
        return std::span(properties_).subspan(record.firstProperty, record.propertyCount);
    }

    [[nodiscard]] std::span<const std::string_view> values(const Property& property) const {
        return std::span(values_).subspan(property.firstValue, property.valueCount);
    }

    /// The record's first property of that name, or null.
    [[nodiscard]] const Property* property(const Record& record, std::string_view name) const;

  private:
    [[nodiscard]] int readRecords(sqlite3* database, const char* condition, std::int64_t key);
    [[nodiscard]] int readProperties(sqlite3* database, const char* condition, std::int64_t key);
    [[nodiscard]] int readValues(sqlite3* database, const char* condition, std::int64_t key);
    [[nodiscard]] static RecordBlock read(sqlite3* database, const char* condition, std::int64_t key,
                                          int* error);
    [[nodiscard]] std::string_view keepName(std::string_view name, std::size_t place);

    TextArena arena_;
    std::vector<Record> records_;
    std::vector<Property> properties_;
    std::vector<std::int64_t> positions_; ///< of each property in its record; only while reading
    std::vector<std::string_view> names_; ///< the names that the records read so far had last, by place
    std::vector<std::string_view> values_;
    mutable std::size_t next_ = 0; ///< where the next record asked for probably is
};

} // namespace platform
