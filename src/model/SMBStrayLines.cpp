#include "model/SMBStrayLines.h"

#include <cstddef>
#include <optional>
#include <string>

namespace {

class Keeper {
  public:
    Keeper(std::string_view text, const SMBLines& lines, std::string_view lineBreak, TextEdits& edits)
        : text_(text), lines_(lines), lineBreak_(lineBreak), edits_(edits) {}

    void meet(const SMBSectionLines& section, std::optional<SMBFate> fate) {
        if (!section.isCommentedOut) {
            finish();
            fate_ = section.serverLast == section.last ? fate : std::nullopt;
            place_ = fate_ == SMBFate::Disabled ? std::optional(lines_.lines()[section.last - 1].end)
                                                : std::nullopt;
            isBelowContinued_ = lines_.lines()[section.last - 1].isContinued;
        } else if (fate == SMBFate::Enabled && !fate_ && !place_) {
            place_ = lines_.lines()[section.first].begin;
            isBelowContinued_ = false;
        }
    }

    void take(std::size_t index) {
        const SMBLine& line = lines_.lines()[index];
        if (lines_.isOnlyServersHeader(index)) {
            finish(); // what follows is that section's
        }
        if ((fate_ != SMBFate::Removed && !place_) || edits_.removes(line.begin, line.end)) {
            return;
        }
        edits_.remove(line.begin, line.end);
        const std::string_view whole = text_.substr(line.begin, line.end - line.begin);
        if (fate_ == SMBFate::Disabled) {
            moved_ += whole.starts_with('[') ? "; " : ";"; // no header of a commented-out section
        }
        moved_ += whole;
        moved_ += isEnded(whole) ? "" : lineBreak_;
        // A line that ends in a backslash still takes in only what it took in before.
        moved_ += line.isContinued && lines_.endOfJoinedLines(index) == index + 1 ? lineBreak_ : "";
    }

    /// Writes what was taken where it belongs.
    void finish() {
        if (place_ && !moved_.empty()) {
            edits_.insertLines(*place_, (isBelowContinued_ ? lineBreak_ : "") + moved_);
        }
        fate_.reset();
        place_.reset();
        moved_.clear();
    }

  private:
    std::string_view text_;
    const SMBLines& lines_;
    std::string lineBreak_;
    TextEdits& edits_;
    std::optional<SMBFate> fate_;      ///< of the active section above
    std::optional<std::size_t> place_; ///< where its stray lines go, if they do not stay
    bool isBelowContinued_ = false;    ///< whether the line above that place ends in a backslash
    std::string moved_;
};

} // namespace

void keepStrayLines(std::string_view text, const SMBLines& lines, const SMBFates& fates,
                    std::string_view lineBreak, TextEdits& edits) {
    Keeper keeper(text, lines, lineBreak, edits);
    for (std::size_t index = 0; index < lines.lines().size(); ++index) {
        const SMBSectionLines* const section = lines.sectionOf(index);
        if (section != nullptr && section->first == index) {
            const auto fate = fates.find(section);
            keeper.meet(*section, fate == fates.end() ? std::nullopt : std::optional(fate->second));
        } else if (section == nullptr && lines.lines()[index].kind == SMBLine::Kind::Other) {
            keeper.take(index);
        }
    }
    keeper.finish();
}
