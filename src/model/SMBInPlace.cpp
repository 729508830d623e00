#include "model/SMBInPlace.h"

#include "model/SMBLines.h"
#include "model/SMBParser.h"

#include <algorithm>
#include <map>
#include <optional>
#include <ranges>
#include <set>
#include <utility>

namespace {

/// Replaces [begin, end) of a string.
struct Edit {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::string replacement;
    bool isOwnLine = false; ///< for an insertion: whole lines

    [[nodiscard]] bool isInsertion() const { return begin == end; }
};

/// The order in which edits are applied. At the same place an insertion comes before a replacement, and a
/// longer replacement before a shorter one.
bool isBefore(const Edit& one, const Edit& other) {
    if (one.begin != other.begin) {
        return one.begin < other.begin;
    }
    return one.isInsertion() ? !other.isInsertion() : !other.isInsertion() && one.end > other.end;
}

bool isEnded(std::string_view text) {
    return text.ends_with('\n') || text.ends_with('\r');
}

/// Collects the edits to one text and applies them.
class Editor {
  public:
    explicit Editor(std::string_view text) : text_(text), lines_(text) {
        const std::size_t firstBreak = text.find('\n');
        lineBreak_ = firstBreak != std::string_view::npos && firstBreak > 0 && text[firstBreak - 1] == '\r'
                         ? "\r\n"
                         : "\n";
    }

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
    void removePair(const SMBSectionLines& section, const SMBChange& change);
    void addPair(const SMBSectionLines& section, const SMBChange& change);
    void conflict(const SMBChange& change, std::string_view inFile);
    void appendAtEnd(std::string& text) const;
    /// Where a section is inserted that must come before all others: after settings above the first section,
    /// which apply to the whole server and would otherwise become part of that section.
    [[nodiscard]] std::size_t beginningOfSections() const;
    /// The index of the parameter's line that the server reads, given the line that the model counts; none
    /// when the server reads none.
    [[nodiscard]] std::optional<std::size_t> pairInEffect(const SMBSectionLines& section,
                                                          const SMBChange& change, std::size_t found) const;
    /// `text` with this file's kind of line breaks.
    [[nodiscard]] std::string withLineBreaks(std::string_view text) const;

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
    std::vector<Edit> edits_;
    std::string atFront_;
    std::vector<std::string> atEnd_;
    bool dropsLastBreak_ = false; ///< the last line break of the remaining text
    std::vector<SMBConflict> conflicts_;
    std::map<const SMBSectionLines*, bool>
        commentedOut_; ///< sections whose state changes, and whether they will be commented out
    std::set<const SMBSectionLines*> removed_;
    std::set<std::pair<std::string, std::size_t>>
        missing_; ///< sections that the file has lost and that are added again
};

void Editor::make(const SMBChange& change) {
    using Kind = SMBChange::Kind;
    const SMBSectionLines* const section = lines_.section(change.section, change.sectionOccurrence);
    if (change.kind == Kind::AddSection) {
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
        if (there && !lines_.lines()[*there].isJoined) {
            setValue(*section, change); // somebody else has added it too
        } else {
            addPair(*section, change);
        }
    }
}

void Editor::conflict(const SMBChange& change, std::string_view inFile) {
    conflicts_.push_back({change.section, change.key, change.before, std::string(inFile), change.value});
}

std::string Editor::withLineBreaks(std::string_view text) const {
    std::string result;
    for (const char c : text) {
        if (c == '\n') {
            result += lineBreak_;
        } else {
            result += c;
        }
    }
    return result;
}

void Editor::addSection(const SMBChange& change) {
    const std::string block =
        withLineBreaks(change.value.ends_with('\n') ? change.value : change.value + "\n");
    if (change.atFront) {
        (atFront_ += block) += lineBreak_;
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
    std::size_t last = section.last;
    while (last > section.first + 1 && isRemark(last - 1)) {
        --last;
    }
    while (last < section.last && lines[last].kind != Line::Kind::Blank) {
        ++last; // comments right below the parameters belong to the section
    }
    if (isBelowCommentedOut(section)) {
        // A comment with a "=" would count as a parameter of that section, and become active with it.
        for (std::size_t index = last; index < section.last; ++index) {
            last = lines_.isParameterInMarks(lines[index]) ? index + 1 : last;
        }
    }
    removed_.insert(&section);
    Edit edit{lines[section.first].begin, lines[last - 1].end, "", false};
    const bool isAtEnd = last == lines.size();
    const bool isSetOff = section.first > 0 && isBlankLine(section.first - 1);
    const std::size_t above = section.first - (isSetOff ? 1 : 0);
    if (above > 0 && lines[above - 1].isContinued && !isAtEnd) {
        // The server would join what follows to the line above. An empty line below the section may be
        // removed with it.
        edit.replacement = isSetOff ? "" : lineBreak_;
    } else if (isSetOff) {
        edit.begin = lines[section.first - 1].begin;
        // The last line had no line break when the section was added.
        dropsLastBreak_ = dropsLastBreak_ || (isAtEnd && !isEnded(text_));
    } else if (section.first == 0 && isBlankLine(last)) {
        edit.end = lines[last].end;
    }
    edits_.push_back(std::move(edit));
}

bool Editor::isBelowCommentedOut(const SMBSectionLines& section) const {
    std::size_t first = section.first;
    for (const SMBSectionLines& above : std::views::reverse(lines_.sections())) {
        if (above.last == first && !removed_.contains(&above)) {
            return isCommentedOut(above);
        }
        first = above.last == first ? above.first : first;
    }
    return false;
}

bool Editor::isCommentedOut(const SMBSectionLines& section) const {
    const auto toggled = commentedOut_.find(&section);
    return toggled == commentedOut_.end() ? section.isCommentedOut : toggled->second;
}

void Editor::comment(const SMBSectionLines& section, bool out) {
    if (section.isCommentedOut == out) {
        return; // somebody else has done the same in the file
    }
    commentedOut_[&section] = out;
    for (std::size_t index = section.first; index < section.last; ++index) {
        const Line& line = lines_.lines()[index];
        const std::size_t begin = line.begin + lines_.indentation(line).size();
        if (out) {
            // In a commented-out section a comment with a "=" counts as a parameter, and would become active
            // with the section.
            const bool isComment = line.kind == Line::Kind::Comment && !lines_.isParameterInMarks(line);
            if (line.kind != Line::Kind::Blank && !isComment) {
                // A broken header must not become the header of a commented-out section.
                const bool isBroken = line.kind != Line::Kind::Header && text_[begin] == '[';
                edits_.push_back(
                    {begin, begin + 1, (isBroken ? "; " : ";") + std::string(1, text_[begin]), false});
            }
        } else if (line.kind == Line::Kind::Header) {
            enableHeader(line);
        } else if ((line.kind == Line::Kind::Pair || line.isJoined) && !lines_.isHeaderOnceLive(line)) {
            edits_.push_back({begin, begin + 1, "", false});
        }
    }
}

/// Makes a commented-out header active. An active header must end at its bracket.
void Editor::enableHeader(const Line& line) {
    const std::size_t begin = line.begin + lines_.indentation(line).size();
    const std::size_t end = lines_.contentEnd(line);
    const std::size_t bracket = text_.substr(0, end).find(']', begin);
    edits_.push_back({begin, begin + 1, "", false});
    if (bracket == std::string_view::npos) {
        edits_.push_back({end, end, "]", false});
    } else if (bracket + 1 < end) {
        edits_.push_back({bracket + 1, end, "", false});
    }
}

std::optional<std::size_t> Editor::pairInEffect(const SMBSectionLines& section, const SMBChange& change,
                                                std::size_t found) const {
    const auto& lines = lines_.lines();
    if (!lines[found].isJoined) {
        return found;
    }
    // The server joins the line to another one. What was set instead is further down.
    std::optional<std::size_t> inEffect;
    for (std::size_t index = found; index < section.last; ++index) {
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
    const std::size_t begin = offset(line.value);
    const std::size_t joined = lines_.endOfJoinedLines(*index);
    // The value continues in the lines that the server joins to this one.
    const std::size_t end =
        joined > *index + 1 ? lines_.contentEnd(lines_.lines()[joined - 1]) : begin + line.value.size();
    edits_.push_back({begin, end, change.value, false});
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
    edits_.push_back({line.begin, lines_.lines()[lines_.endOfJoinedLines(*index) - 1].end, "", false});
}

void Editor::addPair(const SMBSectionLines& section, const SMBChange& change) {
    const auto& lines = lines_.lines();
    const std::size_t last = lines_.lastSetting(section);
    const Line& line = lines[last];
    const Line& end = lines[lines_.endOfJoinedLines(last) - 1];
    // The server would join it to a line above that ends in a backslash.
    const std::size_t place = end.isContinued ? line.begin : end.end;
    std::string added(line.kind == Line::Kind::Pair ? lines_.indentation(line) : std::string_view());
    added += (isCommentedOut(section) ? ";" : "") + change.key + " = " + change.value;
    if (isEnded(text_.substr(0, place)) || place == line.begin) {
        added += lineBreak_;
    }
    edits_.push_back({place, place, std::move(added), true});
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
    const std::size_t first = lines_.sections().empty() ? lines.size() : lines_.sections().front().first;
    std::size_t begin = 0;
    for (std::size_t index = 0; index < first; ++index) {
        const bool isSetting = lines[index].kind == Line::Kind::Other || lines[index].isJoined;
        begin = isSetting ? lines[index].end : begin;
    }
    return begin;
}

SMBInPlaceText Editor::finish() {
    if (!atFront_.empty()) {
        const std::size_t begin = beginningOfSections();
        if (begin > 0) { // the blank line that separates it comes first
            atFront_.erase(atFront_.size() - lineBreak_.size());
            atFront_.insert(0, lineBreak_);
        }
        edits_.insert(edits_.begin(), {begin, begin, atFront_, begin > 0});
    }
    // Edits at the same place stay in the order in which they were made.
    std::ranges::stable_sort(edits_, isBefore);
    SMBInPlaceText result;
    std::size_t position = 0;
    for (const Edit& edit : edits_) {
        if (edit.begin < position) { // inside something that is replaced already
            position = std::max(position, edit.end);
            continue;
        }
        result.text += text_.substr(position, edit.begin - position);
        if (edit.isOwnLine && !result.text.empty() && !isEnded(result.text)) {
            result.text += lineBreak_;
        }
        result.text += edit.replacement;
        position = edit.end;
    }
    result.text += text_.substr(position);
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
