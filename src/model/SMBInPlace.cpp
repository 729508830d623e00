#include "model/SMBInPlace.h"

#include "model/SMBLines.h"
#include "model/SMBStrayLines.h"
#include "model/TextEdits.h"

#include <algorithm>
#include <optional>
#include <ranges>
#include <set>
#include <utility>

namespace {

std::string_view lineBreakOf(std::string_view text) {
    const std::size_t first = text.find('\n');
    return first != std::string_view::npos && first > 0 && text[first - 1] == '\r' ? "\r\n" : "\n";
}

/// Collects the edits to one text and applies them.
class Editor {
  public:
    explicit Editor(std::string_view text)
        : text_(text), lines_(text), lineBreak_(lineBreakOf(text)), edits_(lineBreak_) {}

    void make(const SMBChange& change);
    [[nodiscard]] SMBInPlaceText finish();

  private:
    using Line = SMBLine;

    void addSection(const SMBChange& change);
    void addMissingSection(const SMBChange& change);
    void removeSection(const SMBSectionLines& section);
    void comment(const SMBSectionLines& section, bool out);
    void enableHeader(const Line& line);
    /// Whether the section will be commented out after the edits.
    [[nodiscard]] bool isCommentedOut(const SMBSectionLines& section) const;
    /// Whether the nearest section above that stays will be commented out.
    [[nodiscard]] bool isBelowCommentedOut(const SMBSectionLines& section) const;
    void setValue(const SMBSectionLines& section, const SMBChange& change);
    /// Where the value of the parameter in that line ends, for the model and for the server.
    [[nodiscard]] std::size_t valueEnd(std::size_t index) const;
    void removeUnkeptSettings(const SMBSectionLines& section, std::size_t above, std::string_view key);
    void removePair(const SMBSectionLines& section, const SMBChange& change);
    void addPair(const SMBSectionLines& section, const SMBChange& change);
    void conflict(const SMBChange& change, std::string_view inFile);
    void appendAtEnd(std::string& text) const;
    /// Where a section is inserted that must come before all others: after lines above the first active
    /// section that apply to the whole server and would otherwise become part of that section.
    [[nodiscard]] std::size_t beginningOfSections() const;

    /// Whether the server reads the line as one of the section, on its own.
    [[nodiscard]] bool isRead(const SMBSectionLines& section, std::size_t index) const {
        return index < section.serverLast && !lines_.lines()[index].isJoined;
    }

    /// The index of the parameter's line that the server reads, given the line that the model counts; none
    /// when the server reads none.
    [[nodiscard]] std::optional<std::size_t> pairInEffect(const SMBSectionLines& section,
                                                          const SMBChange& change, std::size_t found) const;

    [[nodiscard]] std::size_t offset(std::string_view view) const {
        return static_cast<std::size_t>(view.data() - text_.data());
    }

    [[nodiscard]] bool isBlankLine(std::size_t index) const {
        return index < lines_.lines().size() && lines_.lines()[index].kind == Line::Kind::Blank;
    }

    [[nodiscard]] bool isRemark(std::size_t index) const {
        return isBlankLine(index) || lines_.lines()[index].kind == Line::Kind::Comment;
    }

    std::string_view text_;
    SMBLines lines_;
    std::string_view lineBreak_;
    TextEdits edits_;
    std::string atFront_;
    bool isFrontCommentedOut_ = false; ///< the last section in `atFront_`
    std::vector<std::string> atEnd_;
    bool dropsLastBreak_ = false; ///< the last line break of the remaining text
    std::vector<SMBConflict> conflicts_;
    SMBFates fates_;
    /// Sections that the file has lost and that are added again.
    std::set<std::pair<std::string, std::size_t>> missing_;
};

void Editor::make(const SMBChange& change) {
    using Kind = SMBChange::Kind;
    if (change.key.starts_with('[')) {
        return; // for the server a header, or none that it can read
    }
    const SMBSectionLines* const section = lines_.section(change.section, change.sectionOccurrence);
    if (change.kind == Kind::AddSection) {
        if (lines_.activeSections(change.section) > change.sectionOccurrence) {
            conflict(change, change.section); // somebody else has added one, too
        }
        addSection(change);
    } else if (section == nullptr) {
        if (change.kind == Kind::SetValue || change.kind == Kind::AddPair ||
            change.kind == Kind::EnableSection) {
            addMissingSection(change);
        }
    } else if (change.kind == Kind::RemoveSection) {
        removeSection(*section);
    } else if (change.kind == Kind::EnableSection || change.kind == Kind::DisableSection) {
        comment(*section, change.kind == Kind::DisableSection);
    } else if (change.kind == Kind::SetValue) {
        setValue(*section, change);
    } else if (change.kind == Kind::RemovePair) {
        removePair(*section, change);
    } else {
        const auto there = lines_.pair(*section, change.key, change.occurrence);
        if (there && isRead(*section, *there)) {
            setValue(*section, change); // somebody else has added it too
        } else {
            addPair(*section, change);
        }
    }
}

void Editor::conflict(const SMBChange& change, std::string_view inFile) {
    conflicts_.push_back({change.section, change.key, change.before, std::string(inFile), change.value});
}

void Editor::addSection(const SMBChange& change) {
    const std::string block =
        edits_.withLineBreaks(change.value.ends_with('\n') ? change.value : change.value + "\n");
    if (change.atFront) {
        (atFront_ += block) += lineBreak_;
        isFrontCommentedOut_ = block.starts_with(';');
    } else {
        atEnd_.push_back(block);
    }
}

/// Half a section would share nothing, or something else, so the whole section is written again.
void Editor::addMissingSection(const SMBChange& change) {
    if (missing_.emplace(change.section, change.sectionOccurrence).second) {
        conflicts_.push_back({change.section, "", "", "", ""});
        SMBChange section = change;
        section.value = change.whole;
        addSection(section);
    }
}

void Editor::removeSection(const SMBSectionLines& section) {
    const auto& lines = lines_.lines();
    // A line that the server does not understand belongs to the section too. It must not become part of the
    // section above.
    std::size_t last = section.serverLast;
    while (last > section.first + 1 && isRemark(last - 1)) {
        --last;
    }
    while (last < section.serverLast && lines[last].kind != Line::Kind::Blank) {
        ++last; // comments right below the parameters belong to the section
    }
    if (isBelowCommentedOut(section)) {
        // A comment with a "=" would count as a parameter of that section, and become active with it.
        for (std::size_t index = last; index < section.serverLast; ++index) {
            last = lines_.isParameterInMarks(lines[index]) ? index + 1 : last;
        }
    }
    fates_[&section] = SMBFate::Removed;
    std::size_t begin = lines[section.first].begin;
    std::size_t end = lines[last - 1].end;
    std::string_view replacement;
    const bool isAtEnd = last == lines.size();
    const bool isSetOff = section.first > 0 && isBlankLine(section.first - 1);
    const std::size_t above = section.first - (isSetOff ? 1 : 0);
    if (above > 0 && lines[above - 1].isContinued && !isAtEnd) {
        // The server would join what follows to the line above. An empty line below the section may be
        // removed with it.
        replacement = isSetOff ? "" : lineBreak_;
    } else if (isSetOff) {
        begin = lines[section.first - 1].begin;
        // The last line had no line break when the section was added.
        dropsLastBreak_ = dropsLastBreak_ || (isAtEnd && !isEnded(text_));
    } else if (section.first == 0 && isBlankLine(last)) {
        end = lines[last].end;
    }
    edits_.replace(begin, end, std::string(replacement));
}

bool Editor::isBelowCommentedOut(const SMBSectionLines& section) const {
    std::size_t first = section.first;
    for (const SMBSectionLines& above : std::views::reverse(lines_.sections())) {
        const auto fate = fates_.find(&above);
        if (above.last == first && (fate == fates_.end() || fate->second != SMBFate::Removed)) {
            return isCommentedOut(above);
        }
        if (above.last == first && above.serverLast < above.last) {
            return false; // what the server takes for another section stays between
        }
        first = above.last == first ? above.first : first;
    }
    const std::size_t front = isFrontCommentedOut_ ? beginningOfSections() : 0;
    return isFrontCommentedOut_ && std::ranges::none_of(lines_.sections(), [&](const auto& above) {
               return above.first < first && lines_.lines()[above.first].begin >= front;
           });
}

bool Editor::isCommentedOut(const SMBSectionLines& section) const {
    const auto fate = fates_.find(&section);
    return fate == fates_.end() ? section.isCommentedOut : fate->second == SMBFate::Disabled;
}

void Editor::comment(const SMBSectionLines& section, bool out) {
    if (section.isCommentedOut == out) {
        return; // somebody else has done the same in the file
    }
    fates_[&section] = out ? SMBFate::Disabled : SMBFate::Enabled;
    for (std::size_t index = section.first; index < section.serverLast; ++index) {
        const Line& line = lines_.lines()[index];
        const std::size_t begin = line.begin + lines_.indentation(line).size();
        if (out) {
            // In a commented-out section a comment with a "=" counts as a parameter, and would become active
            // with the section.
            const bool isComment = line.kind == Line::Kind::Comment && !lines_.isParameterInMarks(line);
            if (line.kind != Line::Kind::Blank && !isComment) {
                // A broken header must not become the header of a commented-out section.
                const bool isBroken = line.kind != Line::Kind::Header && text_[begin] == '[';
                // Not an insertion, which would stay if the line is removed.
                edits_.replace(begin, begin + 1, (isBroken ? "; " : ";") + std::string(1, text_[begin]));
            }
        } else if (line.kind == Line::Kind::Header) {
            enableHeader(line);
        } else if (line.kind == Line::Kind::Pair && !line.isJoined && lines_.isHeaderOnceLive(line)) {
            index = lines_.endOfJoinedLines(index) - 1; // it stays commented out, with what it takes in
        } else if ((line.kind == Line::Kind::Pair || line.isJoined) && !lines_.isHeaderOnceLive(line)) {
            edits_.remove(begin, begin + 1);
        }
    }
}

/// Makes a commented-out header active. An active header must end at its bracket.
void Editor::enableHeader(const Line& line) {
    const std::size_t begin = line.begin + lines_.indentation(line).size();
    const std::size_t end = lines_.contentEnd(line);
    const std::size_t bracket = text_.substr(0, end).find(']', begin);
    edits_.remove(begin, begin + 1);
    if (bracket == std::string_view::npos) {
        edits_.insert(end, "]");
    } else if (bracket + 1 < end) {
        edits_.remove(bracket + 1, end);
    }
}

std::optional<std::size_t> Editor::pairInEffect(const SMBSectionLines& section, const SMBChange& change,
                                                std::size_t found) const {
    const auto& lines = lines_.lines();
    if (isRead(section, found)) {
        return found;
    }
    // The server joins the line to another one. What was set instead is further down.
    std::optional<std::size_t> inEffect;
    for (std::size_t index = found; index < section.serverLast; ++index) {
        const Line& line = lines[index];
        if (line.kind == Line::Kind::Pair && !line.isJoined && line.key == change.key &&
            line.value == change.before) {
            inEffect = index;
        }
    }
    return inEffect;
}

void Editor::setValue(const SMBSectionLines& section, const SMBChange& change) {
    const auto found = lines_.pair(section, change.key, change.occurrence);
    const auto index = found ? pairInEffect(section, change, *found) : std::nullopt;
    if (!index) {
        if (!found) {
            conflict(change, "");
        }
        addPair(section, change);
        return;
    }
    const Line& line = lines_.lines()[*index];
    if (line.value == change.value) {
        return; // somebody else has set it too
    }
    if (line.value != change.before) {
        conflict(change, line.value);
    }
    edits_.replace(offset(line.value), valueEnd(*index), change.value);
    removeUnkeptSettings(section, *index, change.key);
}

std::size_t Editor::valueEnd(std::size_t index) const {
    const Line& line = lines_.lines()[index];
    const std::size_t joined = lines_.endOfJoinedLines(index);
    const std::size_t contentEnd = lines_.contentEnd(lines_.lines()[joined - 1]);
    const std::size_t end = offset(line.value) + line.value.size();
    // Only blanks may follow a value, unless the model does not have all of it: it continues in the lines
    // that the server joins to this one, or after the parser's end mark.
    const bool isWhole = text_.substr(end, contentEnd - end).find_first_not_of(' ') == std::string_view::npos;
    return isWhole ? end : contentEnd;
}

/// The server takes the last setting of a key, also one that the model does not keep.
void Editor::removeUnkeptSettings(const SMBSectionLines& section, std::size_t above, std::string_view key) {
    const std::size_t end = lines_.serverEnd(section);
    for (std::size_t index = above + 1; index < end; ++index) {
        const Line& line = lines_.lines()[index];
        if (lines_.isUnkeptSetting(line, key)) {
            edits_.remove(line.begin, lines_.lines()[lines_.endOfJoinedLines(index) - 1].end);
        }
    }
}

void Editor::removePair(const SMBSectionLines& section, const SMBChange& change) {
    const auto found = lines_.pair(section, change.key, change.occurrence);
    const auto index = found ? pairInEffect(section, change, *found) : std::nullopt;
    if (!index) {
        return; // it is gone already, or the server never read it
    }
    const Line& line = lines_.lines()[*index];
    if (line.value != change.before) {
        conflict(change, line.value);
    }
    edits_.remove(line.begin, lines_.lines()[lines_.endOfJoinedLines(*index) - 1].end);
    removeUnkeptSettings(section, section.first, change.key); // else the server would take an empty value
}

void Editor::addPair(const SMBSectionLines& section, const SMBChange& change) {
    const auto& lines = lines_.lines();
    const std::size_t last = lines_.lastSetting(section);
    const Line& line = lines[last];
    const Line& end = lines[lines_.endOfJoinedLines(last) - 1];
    // The server would join it to a line above that ends in a backslash.
    const std::size_t place = end.isContinued ? line.begin : end.end;
    std::string added(line.kind == Line::Kind::Header ? std::string_view() : lines_.indentation(line));
    added += (isCommentedOut(section) ? ";" : "") + change.key + " = " + change.value;
    if (isEnded(text_.substr(0, place)) || place == line.begin) {
        added += lineBreak_;
    }
    edits_.insertLines(place, std::move(added));
    removeUnkeptSettings(section, section.serverLast - 1, change.key);
}

/// A section at the end is set off by an empty line, and a file whose last line has no line break still has
/// none afterwards. So removing the section can leave exactly what was there before.
void Editor::appendAtEnd(std::string& text) const {
    for (const std::string& block : atEnd_) {
        const bool stays = text.empty() || isEnded(text);
        if (!text.empty()) {
            text += lineBreak_;
        }
        if (!stays) {
            text += lineBreak_;
        }
        text += stays ? block : block.substr(0, block.size() - lineBreak_.size());
    }
}

std::size_t Editor::beginningOfSections() const {
    const auto& lines = lines_.lines();
    const auto& sections = lines_.sections();
    const auto active = std::ranges::find(sections, false, &SMBSectionLines::isCommentedOut);
    const std::size_t first = active == sections.end() ? lines.size() : active->first;
    std::size_t begin = 0;
    for (std::size_t index = 0; index < first; ++index) {
        // A comment with a "=" would count as a parameter of a commented-out section above it.
        const bool isSetting = lines[index].kind == Line::Kind::Other ||
                               (isFrontCommentedOut_ && lines_.isParameterInMarks(lines[index]));
        begin = isSetting ? lines[index].end : begin;
    }
    return begin;
}

SMBInPlaceText Editor::finish() {
    keepStrayLines(text_, lines_, fates_, lineBreak_, edits_);
    if (!atFront_.empty()) {
        const std::size_t begin = beginningOfSections();
        if (begin > 0) { // the blank line that separates it comes first
            atFront_.erase(atFront_.size() - lineBreak_.size());
            atFront_.insert(0, lineBreak_);
        }
        edits_.insertLinesFirst(begin, atFront_);
    }
    SMBInPlaceText result{edits_.applied(text_), {}};
    if (dropsLastBreak_ && result.text.ends_with(lineBreak_)) {
        result.text.erase(result.text.size() - lineBreak_.size());
    }
    appendAtEnd(result.text);
    result.conflicts = std::move(conflicts_);
    return result;
}

} // namespace

SMBInPlaceText textWithChanges(std::string_view text, std::span<const SMBChange> changes) {
    Editor editor(text);
    for (const SMBChange& change : changes) {
        editor.make(change);
    }
    return editor.finish();
}
