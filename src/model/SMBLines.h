#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// One line of smb.conf. Offsets are in bytes from the start of the text; `end` is after the line break.
struct SMBLine {
    enum class Kind {
        Blank,
        Comment, ///< a comment that is not a commented-out parameter
        Header,  ///< the header of a section, commented out or not
        Pair,    ///< a parameter
        Other    ///< a line that the model does not keep: without a key or a value, or outside any section
    };

    std::size_t begin = 0;
    std::size_t end = 0;
    Kind kind = Kind::Blank;
    bool isContinued = false; ///< ends in a backslash, so that the server joins the next line to it
    /// The server joins it to the line before, whatever it looks like; in a commented-out section it would do
    /// so once the section is active. Never true for a header, at which the model begins a section in any
    /// case.
    bool isJoined = false;
    std::string_view key;   ///< for a pair: the key as in the model
    std::string_view value; ///< for a pair: the value as in the model
};

/// A section and its lines, from its header to the last line before the next header.
struct SMBSectionLines {
    std::string name;
    bool isCommentedOut = false;
    std::size_t first = 0; ///< the index of the header's line
    std::size_t last = 0;  ///< one after the index of its last line
    /// One after the index of the last line that the server takes for this section's. Less than `last` if the
    /// server sees a header where the model sees none, as in "[data] " with a blank at its end.
    std::size_t serverLast = 0;
};

/// The text of smb.conf split into lines by the rules of the model's parser, so that single lines can be
/// changed and every other byte kept. The views refer to the text, which must outlive this object.
class SMBLines {
  public:
    explicit SMBLines(std::string_view text);

    [[nodiscard]] const std::vector<SMBLine>& lines() const { return lines_; }

    [[nodiscard]] const std::vector<SMBSectionLines>& sections() const { return sections_; }

    /// The section number `occurrence` (from 0, counting commented-out sections too) with exactly that name,
    /// or null.
    [[nodiscard]] const SMBSectionLines* section(std::string_view name, std::size_t occurrence) const;
    /// How many sections of exactly that name are not commented out.
    [[nodiscard]] std::size_t activeSections(std::string_view name) const;
    /// The index of the section's parameter number `occurrence` with exactly that key. Like the model, this
    /// counts lines that the server joins to others.
    [[nodiscard]] std::optional<std::size_t> pair(const SMBSectionLines& section, std::string_view key,
                                                  std::size_t occurrence) const;
    /// The index of the section's last line that the server reads as a parameter, also one without a value;
    /// of its header if there is none. Never a line that is joined to another one.
    [[nodiscard]] std::size_t lastSetting(const SMBSectionLines& section) const;
    /// One after the index of the last line that may be the section's for the server: an active section goes
    /// on below commented-out ones.
    [[nodiscard]] std::size_t serverEnd(const SMBSectionLines& section) const;
    /// One after the last of the lines that the server joins to the line `index`.
    [[nodiscard]] std::size_t endOfJoinedLines(std::size_t index) const;

    /// The white space at the start of the line.
    [[nodiscard]] std::string_view indentation(const SMBLine& line) const;
    /// The offset of the line's end without its line break.
    [[nodiscard]] std::size_t contentEnd(const SMBLine& line) const;
    /// The line without the white space around it.
    [[nodiscard]] std::string_view content(const SMBLine& line) const;
    /// Whether the server takes the line for a header and the model does not.
    [[nodiscard]] bool isOnlyServersHeader(std::size_t index) const;
    /// The section that the model counts the line in, or null.
    [[nodiscard]] const SMBSectionLines* sectionOf(std::size_t index) const;
    /// Whether the line sets the key, under any name that mainSettingName knows for it, and the model does
    /// not keep it: it has no value, or none before the parser's end mark.
    [[nodiscard]] bool isUnkeptSetting(const SMBLine& line, std::string_view key) const;
    /// Whether the line is a comment that would count as a parameter in a commented-out section.
    [[nodiscard]] bool isParameterInMarks(const SMBLine& line) const;
    /// For a line of a commented-out section: whether the model or the server would take it for a header, or
    /// for the beginning of one, without its comment mark.
    [[nodiscard]] bool isHeaderOnceLive(const SMBLine& line) const;

  private:
    /// The line after its indentation and its comment mark.
    [[nodiscard]] std::string_view afterMark(const SMBLine& line) const;
    void take(std::string_view content, SMBLine line);
    void takeCommentedOut(std::string_view content, SMBLine& line) const;
    void takeLive(std::string_view content, SMBLine& line) const;
    [[nodiscard]] bool takeHeader(std::string_view content);

    std::string_view text_;
    std::vector<SMBLine> lines_;
    std::vector<SMBSectionLines> sections_;
    bool isInSection_ = false;
};
