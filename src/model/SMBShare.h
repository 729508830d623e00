#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Kinds of entries.
inline constexpr std::int32_t SMBCommentGroup = 0; ///< a commented-out section
inline constexpr std::int32_t SMBComment = 1;      ///< a block of comment lines outside any section
inline constexpr std::int32_t SMBGroup = 2;        ///< a section

/// A text of bytes in a parameter. What the parser read is a view into the file's bytes, which the model
/// keeps, so that reading a long file copies nothing; every text made or copied elsewhere is its own.
class SMBText {
  public:
    SMBText() = default;

    SMBText(std::string text) : own_(std::make_unique<const std::string>(std::move(text))), view_(*own_) {}

    SMBText(std::string_view text) : SMBText(std::string(text)) {}

    SMBText(const char* text) : SMBText(std::string(text)) {}

    SMBText(const SMBText& other) : SMBText(std::string(other.view_)) {}

    SMBText(SMBText&& other) noexcept : own_(std::move(other.own_)), view_(std::exchange(other.view_, {})) {}

    SMBText& operator=(SMBText other) noexcept {
        own_ = std::move(other.own_);
        view_ = other.view_;
        return *this;
    }

    ~SMBText() = default;

    /// A view of `text`, whose bytes must outlive it.
    [[nodiscard]] static SMBText borrowed(std::string_view text) {
        SMBText answer;
        answer.view_ = text;
        return answer;
    }

    /// Valid until the text is changed or destroyed.
    [[nodiscard]] std::string_view view() const { return view_; }

    [[nodiscard]] std::string str() const { return std::string(view_); }

    [[nodiscard]] bool empty() const { return view_.empty(); }

    operator std::string_view() const { return view_; }

    operator std::string() const { return str(); }

    // One for each kind of text, because both conversions above would serve a comparison.
    [[nodiscard]] friend bool operator==(const SMBText& left, const SMBText& right) {
        return left.view_ == right.view_;
    }

    [[nodiscard]] friend bool operator==(const SMBText& left, std::string_view right) {
        return left.view_ == right;
    }

    [[nodiscard]] friend bool operator==(const SMBText& left, const std::string& right) {
        return left.view_ == right;
    }

    [[nodiscard]] friend bool operator==(const SMBText& left, const char* right) {
        return left.view_ == right;
    }

  private:
    std::unique_ptr<const std::string>
        own_; ///< stays where it is when the text moves, so the view stays good
    std::string_view view_;
};

/// A parameter of a section, as written.
struct SMBPair {
    SMBText Name;
    SMBText Value;
    [[nodiscard]] bool operator==(const SMBPair&) const = default;
};

/// One entry of smb.conf: a comment block, a section, or a commented-out section. Texts are bytes, as in the
/// file.
class SMBShare {
  public:
    [[nodiscard]] std::int32_t Type() const { return _type; }

    void setType(std::int32_t type) { _type = type; }

    /// The text between the header's brackets; empty for a comment block.
    [[nodiscard]] const std::string& ShareName() const { return _sharename; }

    void setShareName(std::string name) { _sharename = std::move(name); }

    /// The live list, changed in place by its users. A key may occur more than once.
    [[nodiscard]] std::vector<SMBPair>& Props() { return _props; }

    [[nodiscard]] const std::vector<SMBPair>& Props() const { return _props; }

    void setProps(std::vector<SMBPair> props) { _props = std::move(props); }

    /// The entry's comment lines, each ended by "\n".
    [[nodiscard]] std::string& Text() { return _text; }

    [[nodiscard]] const std::string& Text() const { return _text; }

    void setText(std::string text) { _text = std::move(text); }

    /// The first parameter with that key, exactly as written, or null.
    [[nodiscard]] SMBPair* firstProp(std::string_view key);
    /// Gives the first parameter with that key the value, or adds one at the end.
    void setProp(std::string_view key, std::string_view value);
    /// Takes away the first parameter with that key; nothing when there is none.
    void removeProp(std::string_view key);

    /// The kind's name, "Error" for any code that is no kind.
    [[nodiscard]] std::string smbTypeToText() const;
    /// For the log.
    [[nodiscard]] std::string description() const;

  private:
    std::int32_t _type = SMBComment;
    std::string _sharename;
    std::vector<SMBPair> _props;
    std::string _text;
};
