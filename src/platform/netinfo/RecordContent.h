#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// A record's properties as the store holds them: one string of bytes, so that a record takes one row.
// Properties and values are in order, and may hold any bytes. Each property is its name, the number of its
// values, and the values; a name or value is its length followed by its bytes. Numbers are unsigned LEB128:
// seven bits per byte, the lowest first, with the top bit set in all bytes except the last, in as few bytes
// as possible.

/// The bit of a number's byte that says that the number goes on.
inline constexpr unsigned char moreFollows = 0x80;

struct StoredProperty {
    std::string name;
    std::vector<std::string> values;
};

[[nodiscard]] std::string packedContent(std::span<const StoredProperty> properties);

/// Packs properties one after another.
class ContentWriter {
  public:
    /// Begins a property. `valueCount` calls of value() must follow.
    void property(std::string_view name, std::size_t valueCount);
    void value(std::string_view value);

    /// Adds a property with one value.
    void single(std::string_view name, std::string_view text) {
        property(name, 1);
        value(text);
    }

    [[nodiscard]] const std::string& content() const { return content_; }

    /// Removes everything, to start again.
    void clear() { content_.clear(); }

  private:
    std::string content_;
};

/// Reads a record's content from start to end. The strings that it returns are views into the content.
class ContentReader {
  public:
    explicit ContentReader(std::string_view content) : rest_(content) {}

    /// False at the end, and when the content is damaged. All values of the previous property must have been
    /// read.
    [[nodiscard]] bool nextProperty(std::string_view* name, std::size_t* valueCount) {
        if (rest_.empty() || !text(name) || !number(valueCount)) {
            return false;
        }
        return *valueCount <= rest_.size() || fail(); // each value has at least one byte
    }

    /// False when the content is damaged. Call it `valueCount` times for each property.
    [[nodiscard]] bool nextValue(std::string_view* value) { return text(value); }

    /// Whether the content is shorter than its numbers say, or a number is longer than necessary. Nothing
    /// more is read after that. Content that is read without damage would be packed into the same bytes.
    [[nodiscard]] bool damaged() const { return damaged_; }

  private:
    // Inline, because a report of a large directory reads millions of them.
    [[nodiscard]] bool number(std::size_t* number) {
        if (rest_.empty() || static_cast<unsigned char>(rest_.front()) >= moreFollows) {
            return longNumber(number);
        }
        *number = static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(1);
        return true;
    }

    [[nodiscard]] bool text(std::string_view* text) {
        std::size_t length = 0;
        if (!number(&length) || length > rest_.size()) {
            return fail();
        }
        *text = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return true;
    }

    [[nodiscard]] bool longNumber(std::size_t* number);

    bool fail() {
        damaged_ = true;
        rest_ = {};
        return false;
    }

    std::string_view rest_;
    bool damaged_ = false;
};

/// Appends copies of all properties to `properties`; false when the content is damaged.
[[nodiscard]] bool unpackContent(std::string_view content, std::vector<StoredProperty>* properties);

} // namespace platform
