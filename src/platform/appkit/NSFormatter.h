#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

/// A range of a string in UTF-16 units.
struct NSRange {
    std::size_t location = 0;
    std::size_t length = 0;
};

/// The value of a field with a formatter: a string or a whole number.
using NSObjectValue = std::variant<std::string, std::int64_t>;

/// Checks edits of a text field before they are applied, and turns its text into a value and back. One
/// formatter may serve several fields. The base class accepts everything.
class NSFormatter {
  public:
    virtual ~NSFormatter() = default;

    /// Whether `partial` may replace `original`. `proposedSelection` is where the caret would be,
    /// `originalSelection` what was selected before. Returns false, with `error` set, to refuse the edit. The
    /// base class calls the shorter check below; when that refuses with a `newString`, it puts that into
    /// `partial`.
    [[nodiscard]] virtual bool isPartialStringValid(std::string& partial, NSRange& proposedSelection,
                                                    const std::string& original, NSRange originalSelection,
                                                    std::string& error);
    /// The check for formatters that need only the proposed text. Returns true when it is accepted.
    [[nodiscard]] virtual bool isPartialStringValid(const std::string& partial,
                                                    std::optional<std::string>& newString,
                                                    std::string& error);
    /// Returns the value of `text`, or none (with `error` set) when it has none.
    [[nodiscard]] virtual std::optional<NSObjectValue> getObjectValue(const std::string& text,
                                                                      std::string& error) const;
    /// Returns the string that shows `value`, or none for a kind of value that the formatter cannot show.
    [[nodiscard]] virtual std::optional<std::string> stringForObjectValue(const NSObjectValue& value) const;
};

namespace platform {
/// The value of a decimal digit of any script, or none for another character.
[[nodiscard]] std::optional<int> decimalDigitValue(char32_t character);
} // namespace platform

/// Whole numbers. The digits of every script are accepted; a number that does not fit in 64 bits has no
/// value.
class NSNumberFormatter : public NSFormatter {
  public:
    /// Only "##0" is known: no grouping, no decimals, at least one digit. Throws std::invalid_argument for
    /// any other.
    void setFormat(const std::string& format);

    /// The number that the whole string represents (optional minus sign, digits); none for any other string.
    [[nodiscard]] std::optional<NSObjectValue> getObjectValue(const std::string& text,
                                                              std::string& error) const override;
    [[nodiscard]] std::optional<std::string> stringForObjectValue(const NSObjectValue& value) const override;
};
