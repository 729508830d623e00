#include "model/SMBParser.h"

#include <algorithm>

namespace {

/// The end mark of the scanner that reads values: a value that contains it ends there.
constexpr std::string_view valueEndMark = "#$%BLAK";
constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

constexpr bool isWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Removes only blanks: tabs belong to a key or value.
std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && text.back() == ' ') {
        text.remove_suffix(1);
    }
    while (!text.empty() && text.front() == ' ') {
        text.remove_prefix(1);
    }
    return text;
}

/// True when a header continues after its name; the rest is not kept.
bool isCut(std::string_view line) {
    const std::size_t end = line.find(']');
    return end != std::string_view::npos &&
           !SMBParser::withoutLeadingWhiteSpace(line.substr(end + 1)).empty();
}

} // namespace

std::string_view SMBParser::withoutLeadingWhiteSpace(std::string_view text) {
    std::size_t start = 0;
    while (start < text.size() && isWhiteSpace(text[start])) {
        ++start;
    }
    return text.substr(start);
}

std::string_view SMBParser::headerName(std::string_view line, std::size_t openingLength) {
    const std::string_view rest = withoutLeadingWhiteSpace(line.substr(openingLength));
    const std::string_view name = rest.substr(0, rest.find(']'));
    return name.empty() ? line : name;
}

bool SMBParser::isContinued(std::string_view line) {
    while (!line.empty() && isWhiteSpace(line.back())) {
        line.remove_suffix(1);
    }
    return !line.empty() && line.back() == '\\';
}

std::optional<SMBParser::PairText> SMBParser::pairOf(std::string_view text, bool mayBeCut) {
    const std::string_view rest = withoutLeadingWhiteSpace(text);
    const std::size_t equals = rest.find('=');
    if (equals == 0 || equals == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view whole = withoutLeadingWhiteSpace(rest.substr(equals + 1));
    const std::string_view value = mayBeCut ? whole.substr(0, whole.find(valueEndMark)) : whole;
    if (value.empty()) {
        return std::nullopt;
    }
    return PairText{withoutBlanks(rest.substr(0, equals)), withoutBlanks(value),
                    value.size() != whole.size()};
}

SMBParser::SMBParser(std::string_view text, std::pmr::memory_resource* memory)
    : text_(text), hasValueEndMark_(text.find(valueEndMark) != std::string_view::npos), memory_(memory) {}

void SMBParser::parse() {
    current_ = std::make_unique<SMBShare>(memory_);
    while (haveLine_ || nextLine()) {
        haveLine_ = false;
        parseLine();
    }
    takeText();
    entries.push_back(std::move(current_));
    numberNotices();
}

bool SMBParser::nextLine() {
    while (position_ != text_.size() && isWhiteSpace(text_[position_])) {
        ++position_;
    }
    if (position_ == text_.size()) {
        return false;
    }
    const std::size_t end = std::min(nextOf('\n', lineFeed_), nextOf('\r', carriageReturn_));
    line_ = text_.substr(position_, end - position_);
    position_ = end;
    return true;
}

/// The first `mark` at or after the position, or the end of the text. `known` is the last result. It is
/// searched for again only when the position has passed it, so that a file without that mark is searched only
/// once.
std::size_t SMBParser::nextOf(char mark, std::size_t& known) const {
    if (known <= position_) {
        known = std::min(text_.find(mark, position_), text_.size());
    }
    return known;
}

void SMBParser::beginEntry(std::int32_t type) {
    if (state_ != State::Start) {
        takeText();
        entries.push_back(std::move(current_));
    }
    current_ = std::make_unique<SMBShare>(memory_);
    current_->setType(type);
}

void SMBParser::parseLine() {
    if (isCommentGroup(line_)) {
        beginSection(SMBCommentGroup, 2);
        readCommentGroup();
    } else if (isComment(line_)) {
        if (state_ != State::Comment) {
            beginEntry(SMBComment);
        }
        appendLineToText();
        state_ = State::Comment;
    } else if (isGroup(line_)) {
        beginSection(SMBGroup, 1);
        readGroup();
    } else if (line_.data() == text_.data() && line_.starts_with(byteOrderMark)) {
        note(SMBLoss::ByteOrderMark);
    } else {
        note(line_.front() == '[' ? SMBLoss::BrokenHeader : SMBLoss::OutsideSection);
    }
}

void SMBParser::beginSection(std::int32_t type, std::size_t openingLength) {
    beginEntry(type);
    const std::string_view name = headerName(line_, openingLength);
    if (name.data() == line_.data()) {
        current_->setUnnamedHeader(SMBText::borrowed(name));
        return;
    }
    if (isCut(line_)) {
        note(SMBLoss::BrokenHeader);
    }
    current_->setShareName(SMBText::borrowed(name));
    global = type == SMBGroup && name == "global" ? current_.get() : global;
    homes = name == "homes" ? current_.get() : homes;
}

void SMBParser::readCommentGroup() {
    while (nextLine()) {
        if (isCommentGroup(line_) || !isComment(line_)) {
            haveLine_ = true;
            break;
        }
        addPair(line_.substr(1), true);
    }
    takePairs();
    state_ = State::Closed;
}

void SMBParser::readGroup() {
    while (nextLine()) {
        if (isCommentGroup(line_) || isGroup(line_)) {
            haveLine_ = true;
            break;
        }
        if (isComment(line_)) {
            appendLineToText();
        } else {
            addPair(line_, false);
        }
    }
    takePairs();
    state_ = State::Closed;
}

void SMBParser::addPair(std::string_view text, bool commentedOut) {
    const std::string_view rest = withoutLeadingWhiteSpace(text);
    if (!commentedOut && rest.front() == '[') {
        note(SMBLoss::BrokenHeader);
    }
    const auto pair = pairOf(rest, hasValueEndMark_);
    if (!commentedOut && (!pair || pair->isCut)) {
        note(SMBLoss::NoValue);
    }
    if (!pair) {
        if (commentedOut && !rest.empty() && rest.find('=') == std::string_view::npos) {
            appendLineToText();
        }
        return;
    }
    // Turning on home folders makes the commented-out parameters of this section active.
    if (isContinued(pair->value) && (!commentedOut || current_.get() == homes)) {
        note(SMBLoss::Continuation);
    }
    pairs_.emplace_back(pair->key, pair->value);
}

void SMBParser::takePairs() {
    SMBPairs& props = current_->Props();
    props.reserve(pairs_.size());
    for (const auto& [key, value] : pairs_) {
        props.push_back({SMBText::borrowed(key), SMBText::borrowed(value)});
    }
    pairs_.clear();
}

void SMBParser::appendLineToText() {
    const auto start = static_cast<std::size_t>(line_.data() - text_.data());
    const bool hasLineFeed = text_.substr(start + line_.size()).starts_with('\n');
    if (comment_.empty() && hasLineFeed &&
        (commentInFile_.empty() || commentInFile_.data() + commentInFile_.size() == line_.data())) {
        const std::size_t before = commentInFile_.size();
        commentInFile_ = text_.substr(start - before, before + line_.size() + 1);
        return;
    }
    if (comment_.empty()) {
        comment_ = commentInFile_;
    }
    (comment_ += line_) += '\n';
}

void SMBParser::takeText() {
    current_->setText(comment_.empty() ? SMBText::borrowed(commentInFile_) : SMBText(comment_));
    commentInFile_ = {};
    comment_.clear();
}

void SMBParser::note(SMBLoss loss) {
    const auto offset = static_cast<std::size_t>(line_.data() - text_.data());
    if (lossNotices.empty() || lossNotices.back().line != offset) { // one notice per line is enough
        lossNotices.push_back({offset, loss});
    }
}

/// Replaces offsets by line numbers. While reading, a notice holds its line's offset, because most files have
/// no notices and then no lines need to be counted.
void SMBParser::numberNotices() {
    std::size_t line = 1;
    const char* counted = text_.data();
    for (SMBLossNotice& notice : lossNotices) {
        const char* const start = text_.data() + notice.line;
        // A line ends with "\r\n", "\n" or a lone "\r", as in an editor.
        for (; counted != start; ++counted) {
            line += *counted == '\n' || (*counted == '\r' && counted[1] != '\n') ? 1U : 0U;
        }
        notice.line = line;
    }
}
