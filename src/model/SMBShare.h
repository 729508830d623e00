#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// Kinds of entries.
inline constexpr std::int32_t SMBCommentGroup = 0; ///< a commented-out section
inline constexpr std::int32_t SMBComment = 1;      ///< a block of comment lines outside any section
inline constexpr std::int32_t SMBGroup = 2;        ///< a section

/// A parameter of a section, as written.
struct SMBPair {
    std::string Name;
    std::string Value;
    [[nodiscard]] bool operator==(const SMBPair&) const = default;
};

/// One entry of smb.conf: a comment block, a section, or a commented-out section. Texts are bytes, as in the file.
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
