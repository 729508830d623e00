#pragma once

#include "model/SMBLoss.h"
#include "model/SMBShare.h"

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Parses the text of smb.conf into entries. Nothing is refused: a line that fits no rule is dropped, with a
/// notice if a user would miss it. Takes time linear in the text's length, and copies no parameters. An
/// object parses only once.
class SMBParser {
  public:
    /// `text` and `memory` must outlive the entries.
    SMBParser(std::string_view text, std::pmr::memory_resource* memory);

    /// Parses everything; the results below are valid afterwards. Makes at least one entry.
    void parse();

    SMBEntries entries;
    SMBShare* global = nullptr;
    SMBShare* homes = nullptr;
    std::vector<SMBLossNotice> lossNotices;

    // The rules for one line without leading white space, also for other code that looks at single lines.
    [[nodiscard]] static bool isCommentGroup(std::string_view line) {
        return line.starts_with("#[") || line.starts_with(";[");
    }

    [[nodiscard]] static bool isComment(std::string_view line) {
        return line.starts_with('#') || line.starts_with(';');
    }

    [[nodiscard]] static bool isGroup(std::string_view line) {
        return line.starts_with('[') && line.ends_with(']');
    }

    /// A parameter's key and value without the blanks around them.
    struct PairText {
        std::string_view key;
        std::string_view value;
        bool isCut = false; ///< the value continued after the scanner's end mark
    };

    /// None when the text has no key or no value. `mayBeCut` may be false when the end mark is known not to
    /// occur.
    [[nodiscard]] static std::optional<PairText> pairOf(std::string_view text, bool mayBeCut = true);
    /// The name in a header, after its first `openingLength` bytes. For a header without a name, its whole
    /// text, so that it cannot be confused with another section.
    [[nodiscard]] static std::string_view headerName(std::string_view line, std::size_t openingLength);
    /// True when the SMB server would join the next line to this one.
    [[nodiscard]] static bool isContinued(std::string_view line);
    [[nodiscard]] static std::string_view withoutLeadingWhiteSpace(std::string_view text);

  private:
    enum class State { Start, Comment, Closed };

    [[nodiscard]] bool nextLine();
    [[nodiscard]] std::size_t nextOf(char mark, std::size_t& known) const;
    void beginEntry(std::int32_t type);
    void parseLine();
    void beginSection(std::int32_t type, std::size_t openingLength);
    void readCommentGroup();
    void readGroup();
    void addPair(std::string_view text, bool commentedOut);
    void takePairs();
    void appendLineToText();
    void takeText();
    void note(SMBLoss loss);
    void numberNotices();

    std::string_view text_;
    std::size_t position_ = 0; ///< where the next line is searched for
    // The line ends that were last found.
    std::size_t lineFeed_ = 0;
    std::size_t carriageReturn_ = 0;
    bool hasValueEndMark_;  ///< searched for once, because most files have none
    std::string_view line_; ///< the line that was last read
    bool haveLine_ = false; ///< `line_` ended an entry and is still to be read
    State state_ = State::Start;
    std::pmr::memory_resource* memory_;
    std::unique_ptr<SMBShare> current_;
    /// Keys and values of the current entry, collected until it ends, when their number is known.
    std::vector<std::pair<std::string_view, std::string_view>> pairs_;
    // The current entry's comment lines: one piece of the file as long as they are, then a copy.
    std::string_view commentInFile_;
    std::string comment_;
};
