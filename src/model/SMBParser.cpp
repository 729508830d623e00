#include "model/SMBParser.h"

#include <algorithm>
#include <cstring>

namespace {

/// The end mark of the scanner that reads values: a value holding it ends there.
constexpr std::string_view valueEndMark = "#$%BLAK";

constexpr bool isWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Blanks only: tabs belong to a key or value.
std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && text.back() == ' ') {
        text.remove_suffix(1);
    }
    while (!text.empty() && text.front() == ' ') {
        text.remove_prefix(1);
    }
    return text;
}

/// True when a header goes on behind its name: that is not kept.
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
    : _text(text), _hasValueEndMark(text.find(valueEndMark) != std::string_view::npos), _memory(memory) {}

void SMBParser::parse() {
    _current = std::make_unique<SMBShare>(_memory);
    while (_haveLine || nextLine()) {
        _haveLine = false;
        parseLine();
    }
    entries.push_back(std::move(_current));
    numberNotices();
}

bool SMBParser::nextLine() {
    constexpr std::string_view byteOrderMark = "\xef\xbb\xbf"; // the SMB server passes over one, too
    if (_position == 0 && _text.starts_with(byteOrderMark)) {
        _position = byteOrderMark.size();
    }
    while (_position != _text.size() && isWhiteSpace(_text[_position])) {
        ++_position;
    }
    if (_position == _text.size()) {
        return false;
    }
    const std::size_t end = std::min(nextOf('\n', _lineFeed), nextOf('\r', _carriageReturn));
    _line = _text.substr(_position, end - _position);
    _position = end;
    return true;
}

/// The first `mark` from the position on, else the text's end. `known` is the one found last: it is looked
/// for again only once it is behind, so that a file that never holds one of the marks is not searched for it
/// at every line.
std::size_t SMBParser::nextOf(char mark, std::size_t& known) const {
    if (known <= _position) {
        known = std::min(_text.find(mark, _position), _text.size());
    }
    return known;
}

void SMBParser::beginEntry(std::int32_t type) {
    if (_state != State::Start) {
        entries.push_back(std::move(_current));
    }
    _current = std::make_unique<SMBShare>(_memory);
    _current->setType(type);
}

void SMBParser::parseLine() {
    if (isCommentGroup(_line)) {
        beginEntry(SMBCommentGroup);
        if (isCut(_line)) {
            note(SMBLoss::BrokenHeader);
        }
        const std::string_view name = headerName(_line, 2);
        _current->setShareName(std::string(name));
        homes = name == "homes" ? _current.get() : homes;
        readCommentGroup();
    } else if (isComment(_line)) {
        if (_state != State::Comment) {
            beginEntry(SMBComment);
        }
        appendLineToText();
        _state = State::Comment;
    } else if (isGroup(_line)) {
        beginEntry(SMBGroup);
        if (isCut(_line)) {
            note(SMBLoss::BrokenHeader);
        }
        const std::string_view name = headerName(_line, 1);
        _current->setShareName(std::string(name));
        global = name == "global" ? _current.get() : global;
        homes = name == "homes" ? _current.get() : homes;
        readGroup();
    } else {
        note(_line.front() == '[' ? SMBLoss::BrokenHeader : SMBLoss::OutsideSection);
    }
}

void SMBParser::readCommentGroup() {
    while (nextLine()) {
        if (isCommentGroup(_line) || !isComment(_line)) {
            _haveLine = true;
            break;
        }
        addPair(_line.substr(1), true);
    }
    takePairs();
    _state = State::Closed;
}

void SMBParser::readGroup() {
    while (nextLine()) {
        if (isCommentGroup(_line) || isGroup(_line)) {
            _haveLine = true;
            break;
        }
        if (isComment(_line)) {
            appendLineToText();
        } else {
            addPair(_line, false);
        }
    }
    takePairs();
    _state = State::Closed;
}

void SMBParser::addPair(std::string_view text, bool commentedOut) {
    const std::string_view rest = withoutLeadingWhiteSpace(text);
    if (!commentedOut && rest.front() == '[') {
        note(SMBLoss::BrokenHeader);
    }
    const auto pair = pairOf(rest, _hasValueEndMark);
    if (!commentedOut && (!pair || pair->isCut)) {
        note(SMBLoss::NoValue);
    }
    if (!pair) {
        if (commentedOut && !rest.empty() && rest.find('=') == std::string_view::npos) {
            appendLineToText();
        }
        return;
    }
    // Home folders that are switched on bring the section's commented-out parameters to life.
    if (isContinued(pair->value) && (!commentedOut || _current.get() == homes)) {
        note(SMBLoss::Continuation);
    }
    _pairs.emplace_back(pair->key, pair->value);
}

void SMBParser::takePairs() {
    SMBPairs& props = _current->Props();
    props.reserve(_pairs.size());
    for (const auto& [key, value] : _pairs) {
        props.push_back({SMBText::borrowed(key), SMBText::borrowed(value)});
    }
    _pairs.clear();
}

void SMBParser::appendLineToText() {
    (_current->Text() += _line) += '\n';
}

void SMBParser::note(SMBLoss loss) {
    const auto offset = static_cast<std::size_t>(_line.data() - _text.data());
    if (lossNotices.empty() ||
        lossNotices.back().line != offset) { // the first that is wrong with a line is enough
        lossNotices.push_back({offset, loss});
    }
}

/// While reading, a notice holds its line's offset: most files have none, and so need no counting of lines.
void SMBParser::numberNotices() {
    std::size_t line = 1;
    const char* counted = _text.data();
    for (SMBLossNotice& notice : lossNotices) {
        const char* const start = _text.data() + notice.line;
        // "\r\n" and "\n" end a line, as every editor counts them; so does a lone "\r".
        for (; counted != start; ++counted) {
            line += *counted == '\n' || (*counted == '\r' && counted[1] != '\n') ? 1U : 0U;
        }
        notice.line = line;
    }
}
