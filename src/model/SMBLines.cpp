#include "model/SMBLines.h"

#include "model/SMBParser.h"

#include <algorithm>

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
    line.isContinued = SMBParser::isContinued(content);
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
                         lines_.size(), lines_.size()});
    isInSection_ = true;
    return true;
}

const SMBSectionLines* SMBLines::section(std::string_view name, std::size_t occurrence) const {
    for (const SMBSectionLines& section : sections_) {
        if (section.name == name && occurrence-- == 0) {
            return &section;
        }
    }
    return nullptr;
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
    for (std::size_t index = section.first; index < section.last; ++index) {
        last = lines_[index].kind == SMBLine::Kind::Pair && !lines_[index].isJoined ? index : last;
    }
    return last;
}

std::size_t SMBLines::endOfJoinedLines(std::size_t index) const {
    while (index + 1 < lines_.size() && lines_[index + 1].isJoined) {
        ++index;
    }
    return index + 1;
}

std::string_view SMBLines::indentation(const SMBLine& line) const {
    const std::string_view whole = text_.substr(line.begin, line.end - line.begin);
    return whole.substr(0, whole.find_first_not_of(" \t"));
}

std::size_t SMBLines::contentEnd(const SMBLine& line) const {
    const std::string_view whole = text_.substr(line.begin, line.end - line.begin);
    return line.begin + whole.find_last_not_of("\r\n") + 1; // npos + 1 is 0, right for a line break alone
}

std::string_view SMBLines::afterMark(const SMBLine& line) const {
    const std::size_t begin = line.begin + indentation(line).size() + 1;
    return text_.substr(begin, contentEnd(line) - begin);
}

bool SMBLines::isParameterInMarks(const SMBLine& line) const {
    return line.kind == SMBLine::Kind::Comment && SMBParser::pairOf(afterMark(line)).has_value();
}

bool SMBLines::isHeaderOnceLive(const SMBLine& line) const {
    return SMBParser::isGroup(SMBParser::withoutLeadingWhiteSpace(afterMark(line)));
}
