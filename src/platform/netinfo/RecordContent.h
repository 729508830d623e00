#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// A record's properties as the store keeps them: one text of bytes, so that a directory is read with one row
// a record. Properties and values stand in their order, and nothing in them is special. For each property its
// name, the number of its values, and each value; a name and a value are their length and their bytes.
// Numbers are unsigned LEB128: seven bits a byte, the lowest first, and the top bit set in all bytes but the
// last, and never more bytes than the number needs.

struct StoredProperty {
    std::string name;
    std::vector<std::string> values;
};

[[nodiscard]] std::string packedContent(std::span<const StoredProperty> properties);

/// Packs properties one after another.
class ContentWriter {
  public:
    /// Begins a property, of which `valueCount` values follow.
    void property(std::string_view name, std::size_t valueCount);
    void value(std::string_view value);

    /// A property with one value.
    void single(std::string_view name, std::string_view text) {
        property(name, 1);
        value(text);
    }

    [[nodiscard]] const std::string& content() const { return content_; }

    /// Begins anew.
    void clear() { content_.clear(); }

  private:
    std::string content_;
};

/// Reads a record's content from its beginning. The strings are views into it.
class ContentReader {
  public:
    explicit ContentReader(std::string_view content) : rest_(content) {}

    /// False at the end, and when the content is damaged. All values of the property before were read.
    [[nodiscard]] bool nextProperty(std::string_view* name, std::size_t* valueCount);

    /// False when the content is damaged. Asked `valueCount` times for each property.
    [[nodiscard]] bool nextValue(std::string_view* value) { return text(value); }

    /// The content is shorter than its numbers say, or a number is longer than it need be. Nothing more is
    /// read then: what is read whole packs into the same bytes.
    [[nodiscard]] bool damaged() const { return damaged_; }

  private:
    [[nodiscard]] bool number(std::size_t* number);
    [[nodiscard]] bool text(std::string_view* text);
    [[nodiscard]] bool fail();

    std::string_view rest_;
    bool damaged_ = false;
};

/// All of it as copies; false when it is damaged.
[[nodiscard]] bool unpackContent(std::string_view content, std::vector<StoredProperty>* properties);

} // namespace platform
