#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// One line of smb.conf's text. Offsets are bytes from the text's beginning; `end` is after the line break.
struct SMBLine {
    enum class Kind {
        Blank,
        Comment, ///< outside the parameters of a commented-out section
        Header,  ///< of a section, or of a commented-out one
        Pair,    ///< a parameter
        Other    ///< what the model does not keep: a line without a key or a value, or outside any section
    };

    std::size_t begin = 0;
    std::size_t end = 0;
    Kind kind = Kind::Blank;
    bool isContinued = false; ///< ends in a backslash: the server joins the next line to it
    /// The server joins it to the line before, whatever it reads like. Of a commented-out section: it would
    /// once the section is live. A header is none: the model begins a section at it all the same.
    bool isJoined = false;
    std::string_view key;   ///< of a pair, as the model has it
    std::string_view value; ///< of a pair, likewise
};

/// A section and the lines that are its own, from its header to the last line before the next header.
struct SMBSectionLines {
    std::string name;
    bool isCommentedOut = false;
    std::size_t first = 0; ///< the header's index among the lines
    std::size_t last = 0;  ///< one after its last line
};

/// The text of smb.conf taken apart into lines, by the same rules by which the model reads it, so that some
/// of them can be changed and every other byte kept. The views are into the text, which must outlive this.
class SMBLines {
  public:
    explicit SMBLines(std::string_view text);

    [[nodiscard]] const std::vector<SMBLine>& lines() const { return lines_; }

    [[nodiscard]] const std::vector<SMBSectionLines>& sections() const { return sections_; }

    /// The `occurrence`-th section (from 0, commented-out ones counted too) of that exact name, or null.
    [[nodiscard]] const SMBSectionLines* section(std::string_view name, std::size_t occurrence) const;
    /// The index of the section's `occurrence`-th parameter with that exact key. Like the model, it counts
    /// lines that the server joins to others.
    [[nodiscard]] std::optional<std::size_t> pair(const SMBSectionLines& section, std::string_view key,
                                                  std::size_t occurrence) const;
    /// The index of the section's last parameter that is not joined to another line, or of its header when it
    /// has none.
    [[nodiscard]] std::size_t lastSetting(const SMBSectionLines& section) const;
    /// One after the last of the lines that the server joins to the line `index`.
    [[nodiscard]] std::size_t endOfJoinedLines(std::size_t index) const;

    /// The blanks and tabs that the line begins with.
    [[nodiscard]] std::string_view indentation(const SMBLine& line) const;
    /// One after the line's last byte before its line break.
    [[nodiscard]] std::size_t contentEnd(const SMBLine& line) const;
    /// Of a comment: in a commented-out section it would be a parameter.
    [[nodiscard]] bool isParameterInMarks(const SMBLine& line) const;
    /// Of a line of a commented-out section: without its mark, another section would begin at it.
    [[nodiscard]] bool isHeaderOnceLive(const SMBLine& line) const;

  private:
    /// The line behind its indentation and its mark.
    [[nodiscard]] std::string_view behindMark(const SMBLine& line) const;
    void take(std::string_view content, SMBLine line);
    void takeCommentedOut(std::string_view content, SMBLine& line) const;
    void takeLive(std::string_view content, SMBLine& line) const;
    [[nodiscard]] bool takeHeader(std::string_view content);

    std::string_view text_;
    std::vector<SMBLine> lines_;
    std::vector<SMBSectionLines> sections_;
    bool isInSection_ = false;
};
