#include "model/SMBLines.h"

#include "model/SMBParser.h"
#include "model/ServerSettings.h"

#include <algorithm>
#include <iterator>

namespace {

/// Where a line ends, and where the next one begins. "\r\n" is one line break.
struct LineEnd {
    std::size_t content = 0;
    std::size_t next = 0;
};

LineEnd endOfLine(std::string_view text, std::size_t begin) {
    const std::size_t content = std::min(text.find_first_of("\r\n", begin), text.size());
    std::size_t next = content;
    if (next < text.size()) {
        next += text.substr(next, 2) == "\r\n" ? 2 : 1;
    }
    return {content, next};
}

} // namespace

SMBLines::SMBLines(std::string_view text) : text_(text) {
    for (std::size_t begin = 0; begin < text.size();) {
        const LineEnd end = endOfLine(text, begin);
        SMBLine line;
        line.begin = begin;
        line.end = end.next;
        take(SMBParser::withoutLeadingWhiteSpace(text.substr(begin, end.content - begin)), line);
        begin = end.next;
    }
    if (isInSection_) {
        sections_.back().last = lines_.size();
    }
    for (SMBSectionLines& section : sections_) {
        section.serverLast = section.first + 1;
        while (section.serverLast < section.last && !isOnlyServersHeader(section.serverLast)) {
            ++section.serverLast;
        }
    }
}

void SMBLines::take(std::string_view content, SMBLine line) {
    const bool isInCommentedOut = isInSection_ && sections_.back().isCommentedOut;
    line.isJoined = !content.empty() && !lines_.empty() && lines_.back().isContinued;
    if (content.empty()) {
        line.kind = SMBLine::Kind::Blank;
    } else if (takeHeader(content)) {
        line.kind = SMBLine::Kind::Header;
        line.isJoined = false;
    } else if (isInCommentedOut && SMBParser::isComment(content)) {
        takeCommentedOut(content, line);
    } else {
        if (isInCommentedOut) {
            // Any other line ends the commented-out section, and belongs to no section.
            sections_.back().last = lines_.size();
            isInSection_ = false;
            line.isJoined = false;
        }
        takeLive(content, line);
    }
    lines_.push_back(line);
}

void SMBLines::takeCommentedOut(std::string_view content, SMBLine& line) const {
    const auto pair = SMBParser::pairOf(content.substr(1));
    line.kind = pair ? SMBLine::Kind::Pair : SMBLine::Kind::Comment;
    line.isContinued = (pair || line.isJoined) && SMBParser::isContinued(content);
    if (pair) {
        line.key = pair->key;
        line.value = pair->value;
    }
}

void SMBLines::takeLive(std::string_view content, SMBLine& line) const {
    if (SMBParser::isComment(content)) {
        line.kind = line.isJoined ? SMBLine::Kind::Other : SMBLine::Kind::Comment;
        line.isContinued =
            line.isJoined && SMBParser::isContinued(content); // the server does not join a line to a comment
        return;
    }
    // The server skips a backslash alone, so that what follows begins a line.
    const bool isBackslash = !line.isJoined && content.starts_with('\\') &&
                             SMBParser::withoutLeadingWhiteSpace(content.substr(1)).empty();
    line.isContinued = !isBackslash && SMBParser::isContinued(content);
    const auto pair = isInSection_ ? SMBParser::pairOf(content) : std::nullopt;
    line.kind = pair ? SMBLine::Kind::Pair : SMBLine::Kind::Other;
    if (pair) {
        line.key = pair->key;
        line.value = pair->value;
    }
}

bool SMBLines::takeHeader(std::string_view content) {
    const bool isCommentedOut = SMBParser::isCommentGroup(content);
    if (!isCommentedOut && !SMBParser::isGroup(content)) {
        return false;
    }
    if (isInSection_) {
        sections_.back().last = lines_.size();
    }
    sections_.push_back({std::string(SMBParser::headerName(content, isCommentedOut ? 2 : 1)), isCommentedOut,
                         lines_.size(), lines_.size(), lines_.size()});
    isInSection_ = true;
    return true;
}

bool SMBLines::isOnlyServersHeader(std::size_t index) const {
    const SMBLine& line = lines_[index];
    if (line.isJoined || (line.kind != SMBLine::Kind::Pair && line.kind != SMBLine::Kind::Other)) {
        return false;
    }
    const std::size_t begin = line.begin + indentation(line).size();
    const std::string_view whole = text_.substr(begin, lines_[endOfJoinedLines(index) - 1].end - begin);
    return whole.starts_with('[') && whole.find(']') != std::string_view::npos;
}

const SMBSectionLines* SMBLines::section(std::string_view name, std::size_t occurrence) const {
    for (const SMBSectionLines& section : sections_) {
        if (section.name == name && occurrence-- == 0) {
            return &section;
        }
    }
    return nullptr;
}

std::size_t SMBLines::activeSections(std::string_view name) const {
    return static_cast<std::size_t>(std::ranges::count_if(
        sections_, [&](const auto& section) { return !section.isCommentedOut && section.name == name; }));
}

std::optional<std::size_t> SMBLines::pair(const SMBSectionLines& section, std::string_view key,
                                          std::size_t occurrence) const {
    for (std::size_t index = section.first; index < section.last; ++index) {
        if (lines_[index].kind == SMBLine::Kind::Pair && lines_[index].key == key && occurrence-- == 0) {
            return index;
        }
    }
    return std::nullopt;
}

std::size_t SMBLines::lastSetting(const SMBSectionLines& section) const {
    std::size_t last = section.first;
    for (std::size_t index = section.first; index < section.serverLast; ++index) {
        const SMBLine& line = lines_[index];
        const bool isSetting = line.kind == SMBLine::Kind::Pair || line.kind == SMBLine::Kind::Other;
        last = isSetting && !line.isJoined ? index : last;
    }
    return last;
}

std::size_t SMBLines::serverEnd(const SMBSectionLines& section) const {
    if (section.isCommentedOut || section.serverLast < section.last) {
        return section.serverLast;
    }
    std::size_t end = section.last;
    while (end < lines_.size() && !isOnlyServersHeader(end)) {
        const SMBSectionLines* const below = sectionOf(end);
        if (below != nullptr && !below->isCommentedOut) {
            return end;
        }
        end = below == nullptr ? end + 1 : below->last;
    }
    return end;
}

std::size_t SMBLines::endOfJoinedLines(std::size_t index) const {
    while (index + 1 < lines_.size() && lines_[index + 1].isJoined) {
        ++index;
    }
    return index + 1;
}

std::string_view SMBLines::indentation(const SMBLine& line) const {
    const std::string_view whole = text_.substr(line.begin, line.end - line.begin);
    return whole.substr(0, whole.size() - SMBParser::withoutLeadingWhiteSpace(whole).size());
}

std::size_t SMBLines::contentEnd(const SMBLine& line) const {
    const std::string_view whole = text_.substr(line.begin, line.end - line.begin);
    return line.begin + whole.find_last_not_of("\r\n") + 1; // npos + 1 is 0, right for a line break alone
}

bool SMBLines::isUnkeptSetting(const SMBLine& line, std::string_view key) const {
    const std::string_view content = this->content(line);
    const std::size_t equals = content.find('=');
    return line.kind == SMBLine::Kind::Other && !line.isJoined && equals != std::string_view::npos &&
           mainSettingName(content.substr(0, equals)) == mainSettingName(key);
}

std::string_view SMBLines::content(const SMBLine& line) const {
    const std::size_t begin = line.begin + indentation(line).size();
    const std::string_view whole = text_.substr(begin, line.end - begin);
    return whole.substr(0, whole.find_last_not_of(" \t\n\v\f\r") + 1);
}

const SMBSectionLines* SMBLines::sectionOf(std::size_t index) const {
    const auto after = std::ranges::upper_bound(sections_, index, {}, &SMBSectionLines::first);
    return after == sections_.begin() || std::prev(after)->last <= index ? nullptr : &*std::prev(after);
}

std::string_view SMBLines::afterMark(const SMBLine& line) const {
    const std::size_t begin = line.begin + indentation(line).size() + 1;
    return text_.substr(begin, contentEnd(line) - begin);
}

bool SMBLines::isParameterInMarks(const SMBLine& line) const {
    return line.kind == SMBLine::Kind::Comment && SMBParser::pairOf(afterMark(line)).has_value();
}

bool SMBLines::isHeaderOnceLive(const SMBLine& line) const {
    const std::string_view content = SMBParser::withoutLeadingWhiteSpace(afterMark(line));
    return SMBParser::isCommentGroup(content) ||
           (line.isJoined ? SMBParser::isGroup(content) : content.starts_with('['));
}
