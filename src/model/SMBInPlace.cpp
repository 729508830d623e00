#include "model/SMBInPlace.h"

#include "model/SMBLines.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>

namespace {

/// Replaces [begin, end) of a string.
struct Edit {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::string replacement;
};

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

/// Collects the edits of one string and applies them.
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
    void removeSection(const SMBSectionLines& section);
    void comment(const SMBSectionLines& section, bool out);
    void setValue(const SMBSectionLines& section, const SMBChange& change);
    void removePair(const SMBSectionLines& section, const SMBChange& change);
    void addPair(const SMBSectionLines& section, const SMBChange& change);
    void conflict(const SMBChange& change, std::string_view inFile);
    /// The text with this file's line breaks.
    [[nodiscard]] std::string withLineBreaks(std::string_view text) const;
    [[nodiscard]] std::string_view indentation(const Line& line) const;

    [[nodiscard]] std::size_t offset(std::string_view view) const {
        return static_cast<std::size_t>(view.data() - text_.data());
    }

    [[nodiscard]] bool isBlankLine(std::size_t index) const {
        return index < lines_.lines().size() && lines_.lines()[index].kind == Line::Kind::Blank;
    }

    std::string_view text_;
    SMBLines lines_;
    std::string_view lineBreak_;
    std::vector<Edit> edits_;
    std::string atFront_;
    std::string atEnd_;
    std::vector<SMBConflict> conflicts_;
    std::map<const SMBSectionLines*, bool>
        commentedOut_; ///< the sections that are being commented out, or no longer
};

void Editor::make(const SMBChange& change) {
    using Kind = SMBChange::Kind;
    const SMBSectionLines* const section = lines_.section(change.section, change.sectionOccurrence);
    if (change.kind == Kind::AddSection) {
        addSection(change);
    } else if (section == nullptr) {
        if (change.kind == Kind::SetValue || change.kind == Kind::AddPair) {
            conflict(change, "");
            SMBChange added = change;
            added.value = "[" + change.section + "]\n" + change.key + " = " + change.value + "\n";
            addSection(added);
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
        addPair(*section, change);
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

std::string_view Editor::indentation(const Line& line) const {
    std::size_t end = line.begin;
    while (end < line.end && isBlank(text_[end])) {
        ++end;
    }
    return text_.substr(line.begin, end - line.begin);
}

/// A section at the end is set off by an empty line, and a file whose last line is not ended stays like that:
/// so its removal can leave exactly what was there before.
void Editor::addSection(const SMBChange& change) {
    std::string block = change.value;
    if (!block.ends_with('\n')) {
        block += '\n';
    }
    if (change.atFront) {
        atFront_ += withLineBreaks(block + "\n");
        return;
    }
    const std::string_view before = atEnd_.empty() ? text_ : std::string_view(atEnd_);
    if (before.empty()) {
        atEnd_ += withLineBreaks(block);
    } else if (before.ends_with('\n') || before.ends_with('\r')) {
        atEnd_ += withLineBreaks("\n" + block);
    } else {
        block.pop_back();
        atEnd_ += withLineBreaks("\n\n" + block);
    }
}

void Editor::removeSection(const SMBSectionLines& section) {
    const auto& lines = lines_.lines();
    std::size_t last = lines_.endOfJoinedLines(lines_.lastSetting(section));
    while (last < section.last && lines[last].kind != Line::Kind::Blank) {
        ++last; // the comments right below the parameters are the section's own
    }
    std::size_t begin = lines[section.first].begin;
    std::size_t end = lines[last - 1].end;
    const bool isAtEnd = last == lines.size();
    if (section.first > 0 && isBlankLine(section.first - 1)) {
        begin = lines[section.first - 1].begin; // it set the section off
        if (isAtEnd && begin > 0 && end > 0 && text_[end - 1] != '\n' && text_[end - 1] != '\r') {
            // The line before was not ended when the section was added.
            begin -= text_.substr(0, begin).ends_with("\r\n") ? 2 : 1;
        }
    } else if (section.first == 0 && isBlankLine(last)) {
        end = lines[last].end;
    }
    edits_.push_back({begin, end, ""});
}

void Editor::comment(const SMBSectionLines& section, bool out) {
    if (section.isCommentedOut == out) {
        return; // somebody did the same in the file
    }
    commentedOut_[&section] = out;
    const auto& lines = lines_.lines();
    const std::size_t end = lines_.endOfJoinedLines(lines_.lastSetting(section));
    for (std::size_t index = section.first; index < end; ++index) {
        const Line& line = lines[index];
        const std::size_t begin = line.begin + indentation(line).size();
        const bool isPlain = line.kind == Line::Kind::Blank || line.kind == Line::Kind::Comment;
        if (out && !isPlain) {
            edits_.push_back({begin, begin, ";"});
        } else if (!out && (line.kind == Line::Kind::Header || line.kind == Line::Kind::Pair)) {
            edits_.push_back({begin, begin + 1, ""});
        }
    }
}

void Editor::setValue(const SMBSectionLines& section, const SMBChange& change) {
    const auto index = lines_.pair(section, change.key, change.occurrence);
    if (!index) {
        conflict(change, "");
        addPair(section, change);
        return;
    }
    const Line& line = lines_.lines()[*index];
    if (line.value != change.before && line.value != change.value) {
        conflict(change, line.value);
    }
    const std::size_t begin = offset(line.value);
    const std::size_t joined = lines_.endOfJoinedLines(*index);
    std::size_t end = begin + line.value.size();
    if (joined > *index + 1) { // the value goes on in the lines that the server joins to it
        end = lines_.lines()[joined - 1].end;
        while (end > begin && (text_[end - 1] == '\n' || text_[end - 1] == '\r')) {
            --end;
        }
    }
    edits_.push_back({begin, end, change.value});
}

void Editor::removePair(const SMBSectionLines& section, const SMBChange& change) {
    const auto index = lines_.pair(section, change.key, change.occurrence);
    if (!index) {
        return; // it is gone already
    }
    const Line& line = lines_.lines()[*index];
    if (line.value != change.before) {
        conflict(change, line.value);
    }
    edits_.push_back({line.begin, lines_.lines()[lines_.endOfJoinedLines(*index) - 1].end, ""});
}

void Editor::addPair(const SMBSectionLines& section, const SMBChange& change) {
    const std::size_t last = lines_.lastSetting(section);
    const Line& line = lines_.lines()[last];
    const std::size_t end = lines_.lines()[lines_.endOfJoinedLines(last) - 1].end;
    const bool isEnded = end > 0 && (text_[end - 1] == '\n' || text_[end - 1] == '\r');
    std::string added(line.kind == Line::Kind::Pair ? indentation(line) : std::string_view());
    const auto toggled = commentedOut_.find(&section);
    const bool isCommentedOut = toggled == commentedOut_.end() ? section.isCommentedOut : toggled->second;
    added += (isCommentedOut ? ";" : "") + change.key + " = " + change.value;
    edits_.push_back({end, end, isEnded ? added + std::string(lineBreak_) : std::string(lineBreak_) + added});
}

SMBInPlaceText Editor::finish() {
    // Edits at one place keep the order in which they were asked for.
    std::ranges::stable_sort(edits_, {}, &Edit::begin);
    SMBInPlaceText result;
    result.text = atFront_;
    std::size_t position = 0;
    for (const Edit& edit : edits_) {
        if (edit.begin > position) {
            result.text += text_.substr(position, edit.begin - position);
            position = edit.begin;
        }
        result.text += edit.replacement;
        position = std::max(position, edit.end);
    }
    result.text += text_.substr(position);
    result.text += atEnd_;
    result.conflicts = std::move(conflicts_);
    return result;
}

bool isSection(const SMBShare& entry) {
    return entry.Type() == SMBGroup || entry.Type() == SMBCommentGroup;
}

using Sections = std::vector<const SMBShare*>;

/// The entries of each section's name, in order.
std::map<std::string_view, Sections> sectionsByName(const SMBConf::EntryList& entries) {
    std::map<std::string_view, Sections> byName;
    for (const auto& entry : entries) {
        if (isSection(*entry)) {
            byName[entry->ShareName()].push_back(entry.get());
        }
    }
    return byName;
}

/// For each of `now`, the index of the one of `read` that it was. Where there are fewer now, those are taken
/// for gone that no longer occur.
std::vector<std::optional<std::size_t>> matched(const Sections& read, const Sections& now) {
    std::vector<std::optional<std::size_t>> matches(now.size());
    std::size_t next = 0;
    for (std::size_t index = 0; index < now.size() && next < read.size(); ++index) {
        std::size_t found = next;
        if (now.size() - index < read.size() - next) {
            while (found < read.size() && read[found]->Props() != now[index]->Props()) {
                ++found;
            }
            found = found == read.size() ? next : found;
        }
        matches[index] = found;
        next = found + 1;
    }
    return matches;
}

std::string sectionText(const SMBShare& section) {
    const std::string mark = section.Type() == SMBCommentGroup ? ";" : "";
    std::string text = mark + "[" + section.ShareName() + "]\n";
    for (const SMBPair& pair : section.Props()) {
        text += mark + std::string(pair.Name.view()) + " = " + std::string(pair.Value.view()) + "\n";
    }
    return text + section.Text();
}

/// The changes within one section, whose place the changes' first fields are.
void appendPairChanges(const SMBPairs& read, const SMBPairs& now, const SMBChange& place,
                       std::vector<SMBChange>& changes) {
    std::map<std::string_view, std::vector<std::string_view>> before;
    for (const SMBPair& pair : read) {
        before[pair.Name.view()].push_back(pair.Value.view());
    }
    std::map<std::string_view, std::size_t> seen;
    for (const SMBPair& pair : now) {
        const std::vector<std::string_view>& values = before[pair.Name.view()];
        const std::size_t occurrence = seen[pair.Name.view()]++;
        SMBChange change = place;
        change.key = pair.Name.view();
        change.occurrence = occurrence;
        change.value = pair.Value.view();
        if (occurrence >= values.size()) {
            change.kind = SMBChange::Kind::AddPair;
            changes.push_back(std::move(change));
        } else if (values[occurrence] != pair.Value.view()) {
            change.kind = SMBChange::Kind::SetValue;
            change.before = values[occurrence];
            changes.push_back(std::move(change));
        }
    }
    for (const auto& [key, values] : before) {
        for (std::size_t occurrence = seen[key]; occurrence < values.size(); ++occurrence) {
            SMBChange change = place;
            change.kind = SMBChange::Kind::RemovePair;
            change.key = key;
            change.occurrence = occurrence;
            change.before = values[occurrence];
            changes.push_back(std::move(change));
        }
    }
}

SMBChange changeOf(SMBChange::Kind kind, const SMBShare& section, std::size_t occurrence) {
    SMBChange change;
    change.kind = kind;
    change.section = section.ShareName();
    change.sectionOccurrence = occurrence;
    return change;
}

/// Where a section that is there now was when the file was read.
struct Origin {
    const SMBShare* read = nullptr;
    std::size_t occurrence = 0;
};

void appendSectionChanges(const Origin& origin, const SMBShare& now, std::vector<SMBChange>& changes) {
    using Kind = SMBChange::Kind;
    if (origin.read->Type() != now.Type()) {
        const Kind kind = now.Type() == SMBGroup ? Kind::EnableSection : Kind::DisableSection;
        changes.push_back(changeOf(kind, now, origin.occurrence));
    }
    appendPairChanges(origin.read->Props(), now.Props(), changeOf(Kind::SetValue, now, origin.occurrence),
                      changes);
}

} // namespace

std::vector<SMBChange> changesBetween(const SMBConf::EntryList& read, const SMBConf::EntryList& now) {
    std::map<const SMBShare*, Origin> origins;
    std::vector<SMBChange> gone;
    const auto after = sectionsByName(now);
    for (const auto& [name, sections] : sectionsByName(read)) {
        const auto found = after.find(name);
        const Sections remaining = found == after.end() ? Sections() : found->second;
        std::vector<bool> isKept(sections.size());
        const auto matches = matched(sections, remaining);
        for (std::size_t index = 0; index < remaining.size(); ++index) {
            if (const auto match = matches[index]) {
                isKept[*match] = true;
                origins[remaining[index]] = {sections[*match], *match};
            }
        }
        for (std::size_t index = 0; index < sections.size(); ++index) {
            if (!isKept[index]) {
                gone.push_back(changeOf(SMBChange::Kind::RemoveSection, *sections[index], index));
            }
        }
    }
    std::vector<SMBChange> changes;
    bool isAtFront = true; // until the first entry that was read
    for (const auto& entry : now) {
        const auto origin = origins.find(entry.get());
        if (origin != origins.end()) {
            appendSectionChanges(origin->second, *entry, changes);
        } else if (isSection(*entry)) {
            SMBChange change = changeOf(SMBChange::Kind::AddSection, *entry, 0);
            change.value = sectionText(*entry);
            change.atFront = isAtFront && !read.empty();
            changes.push_back(std::move(change));
        }
        isAtFront = isAtFront && isSection(*entry) && origin == origins.end();
    }
    std::ranges::move(gone, std::back_inserter(changes));
    return changes;
}

SMBInPlaceText textWithChanges(std::string_view text, std::span<const SMBChange> changes) {
    Editor editor(text);
    for (const SMBChange& change : changes) {
        editor.make(change);
    }
    return editor.finish();
}
