#pragma once

#include <string>
#include <string_view>

namespace frontend {

/// An array of objects as a command prints it, written out row by row: for lists of which somebody may have
/// tens of thousands of rows. Looks like what JSON::dump() writes.
class JSONRows {
  public:
    /// `name` is the array's, in the one object that a command prints.
    explicit JSONRows(std::string_view name);

    /// Begins the next row. What follows are its fields, in the order in which they are to stand.
    void beginRow();
    /// Bytes that are no UTF-8 become U+FFFD.
    void addText(std::string_view key, std::string_view text);
    void addNumber(std::string_view key, long long number);
    void addTruth(std::string_view key, bool isTrue);

    /// The whole object. Nothing can be added after it.
    [[nodiscard]] std::string finish();

  private:
    void beginField(std::string_view key);

    std::string text_;
    bool isFirstRow_ = true;
    bool isFirstField_ = true;
};

} // namespace frontend
