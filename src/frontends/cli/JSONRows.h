#pragma once

#include <string>
#include <string_view>

namespace frontend {

/// Writes an array of objects row by row, for lists that may have tens of thousands of rows. The text is the
/// same as JSON::dump() writes.
class JSONRows {
  public:
    /// `name` is the key of the array in the object that the command prints.
    explicit JSONRows(std::string_view name);

    /// Begins the next row. The fields that are added next belong to it, in that order.
    void beginRow();
    /// Adds a field. Bytes that are not UTF-8 become U+FFFD.
    void addText(std::string_view key, std::string_view text);
    void addNumber(std::string_view key, long long number);
    void addTruth(std::string_view key, bool isTrue);

    /// Returns the whole object. Nothing can be added afterwards.
    [[nodiscard]] std::string finish();

  private:
    void beginField(std::string_view key);

    std::string text_;
    bool isFirstRow_ = true;
    bool isFirstField_ = true;
};

} // namespace frontend
