#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <memory_resource>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Kinds of entries.
inline constexpr std::int32_t SMBCommentGroup = 0; ///< a commented-out section
inline constexpr std::int32_t SMBComment = 1;      ///< a block of comment lines outside any section
inline constexpr std::int32_t SMBGroup = 2;        ///< a section

/// A string of bytes in a parameter or comment. One that the parser made is a view into the file's bytes,
/// which the model keeps, so that reading a long file copies nothing. Every string that is made or copied
/// elsewhere owns its bytes. At most 2^31 - 1 bytes: more throw std::length_error.
class SMBText {
  public:
    SMBText() = default;

    SMBText(std::string_view text) : SMBText(copyOf(text), text.size(), !text.empty()) {}

    SMBText(const std::string& text) : SMBText(std::string_view(text)) {}

    SMBText(const char* text) : SMBText(std::string_view(text)) {}

    SMBText(const SMBText& other) : SMBText(other.view()) {}

    SMBText(SMBText&& other) noexcept { swap(other); }

    SMBText& operator=(SMBText other) noexcept {
        swap(other);
        return *this;
    }

    ~SMBText() {
        if (word_ % 2 != 0) {
            std::default_delete<const char[]>()(bytes());
        }
    }

    /// A view of `text`, whose bytes must outlive the result.
    [[nodiscard]] static SMBText borrowed(std::string_view text) {
        return {text.data(), checkedSize(text), false};
    }

    /// Valid until this string is changed or destroyed.
    [[nodiscard]] std::string_view view() const { return {bytes(), word_ / 2}; }

    [[nodiscard]] std::string str() const { return std::string(view()); }

    [[nodiscard]] bool empty() const { return word_ < 2; }

    operator std::string_view() const { return view(); }

    operator std::string() const { return str(); }

    // One for each kind of string, because with the two conversions above a comparison would be ambiguous.
    [[nodiscard]] friend bool operator==(const SMBText& left, const SMBText& right) {
        return left.view() == right.view();
    }

    [[nodiscard]] friend bool operator==(const SMBText& left, std::string_view right) {
        return left.view() == right;
    }

    [[nodiscard]] friend bool operator==(const SMBText& left, const std::string& right) {
        return left.view() == right;
    }

    [[nodiscard]] friend bool operator==(const SMBText& left, const char* right) {
        return left.view() == right;
    }

  private:
    using Halves = std::array<std::uint32_t, sizeof(const char*) / sizeof(std::uint32_t)>;

    SMBText(const char* bytes, std::size_t size, bool isOwned)
        : address_(std::bit_cast<Halves>(bytes)), word_(static_cast<std::uint32_t>(size) * 2 + isOwned) {}

    void swap(SMBText& other) noexcept {
        std::swap(address_, other.address_);
        std::swap(word_, other.word_);
    }

    [[nodiscard]] const char* bytes() const { return std::bit_cast<const char*>(address_); }

    [[nodiscard]] static std::size_t checkedSize(std::string_view text) {
        if (text.size() > std::numeric_limits<std::int32_t>::max()) {
            throw std::length_error("A setting or comment of smb.conf is longer than 2 GB.");
        }
        return text.size();
    }

    /// Null for an empty text: most sections have no comment.
    static const char* copyOf(std::string_view text) {
        if (text.empty()) {
            return nullptr;
        }
        auto bytes = std::make_unique<char[]>(checkedSize(text));
        std::copy(text.begin(), text.end(), bytes.get());
        return bytes.release();
    }

    // A file has many strings, so each is made as small as it can be: the address in halves, which need no
    // padding before what follows, and the length and whether the bytes are owned in one word.
    Halves address_{};
    std::uint32_t word_ = 0;
};

/// A parameter of a section, as written in the file.
struct SMBPair {
    SMBText Name;
    SMBText Value;
    [[nodiscard]] bool operator==(const SMBPair&) const = default;
};

/// Parameters in the file's order. A list made by the parser is in the model's memory.
using SMBPairs = std::pmr::vector<SMBPair>;

/// One entry of smb.conf: a comment block, a section, or a commented-out section. Strings are bytes, as in
/// the file.
class SMBShare {
  public:
    SMBShare() = default;

    /// `memory` must outlive the entry.
    explicit SMBShare(std::pmr::memory_resource* memory) : _props(memory) {}

    // A file may have a hundred thousand entries: a pool saves what the heap adds to each.
    [[nodiscard]] static void* operator new(std::size_t size);
    static void operator delete(void* entry, std::size_t size);

    [[nodiscard]] std::int32_t Type() const { return _type; }

    void setType(std::int32_t type) { _type = type; }

    /// The text between the header's brackets; empty for a comment block. Valid until it is changed.
    [[nodiscard]] const SMBText& ShareName() const { return _sharename; }

    void setShareName(SMBText name) {
        _sharename = std::move(name);
        isUnnamed_ = false;
    }

    /// True when the header has nothing between its brackets. The name is then the whole header, so that it
    /// cannot be confused with another section, and is written as it was.
    [[nodiscard]] bool isUnnamed() const { return isUnnamed_; }

    void setUnnamedHeader(SMBText header) {
        _sharename = std::move(header);
        isUnnamed_ = true;
    }

    /// The parameters, which callers may change in place. A key may occur more than once.
    [[nodiscard]] SMBPairs& Props() { return _props; }

    [[nodiscard]] const SMBPairs& Props() const { return _props; }

    void setProps(SMBPairs props) { _props = std::move(props); }

    /// The entry's comment lines, each ended by "\n". Valid until it is changed.
    [[nodiscard]] std::string_view Text() const { return _text.view(); }

    void setText(SMBText text) { _text = std::move(text); }

    /// The first parameter with that key, exactly as written, or null.
    [[nodiscard]] SMBPair* firstProp(std::string_view key);
    /// Sets the value of the first parameter with that key, or adds a parameter at the end.
    void setProp(std::string_view key, std::string_view value);
    /// Removes the first parameter with that key, if there is one.
    void removeProp(std::string_view key);

    [[nodiscard]] bool isSection() const { return _type == SMBGroup || _type == SMBCommentGroup; }

    /// Whether its code is that of a kind of entry. Others are not written.
    [[nodiscard]] bool isOfKnownKind() const { return _type == SMBComment || isSection(); }

    /// Appends the entry as smb.conf has it, without the empty lines after it.
    void appendTo(std::string& text) const;

    /// The name of the kind; "Error" for a code that is not a kind.
    [[nodiscard]] std::string smbTypeToText() const;
    /// For the log. Part of the entry's public operations.
    [[nodiscard]] std::string description() const;

  private:
    SMBPairs _props;
    SMBText _sharename;
    SMBText _text;
    std::int32_t _type = SMBComment;
    bool isUnnamed_ = false;
};

/// The entries of a file, in order. They keep their addresses as long as they are in the list.
using SMBEntries = std::vector<std::unique_ptr<SMBShare>>;
