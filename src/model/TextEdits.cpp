#include "model/TextEdits.h"

#include <algorithm>

bool TextEdits::isBefore(const Edit& one, const Edit& other) {
    if (one.begin != other.begin) {
        return one.begin < other.begin;
    }
    return one.isInsertion() ? !other.isInsertion() : !other.isInsertion() && one.end > other.end;
}

bool TextEdits::removes(std::size_t begin, std::size_t end) const {
    return std::ranges::any_of(edits_, [&](const Edit& edit) {
        return edit.begin <= begin && edit.end >= end && edit.replacement.empty();
    });
}

std::string TextEdits::withLineBreaks(std::string_view text) const {
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

std::string TextEdits::applied(std::string_view text) const {
    std::vector<Edit> inOrder = edits_;
    std::ranges::stable_sort(inOrder, &isBefore);
    std::string result;
    std::size_t position = 0;
    for (const Edit& edit : inOrder) {
        if (edit.begin < position) { // inside something that is replaced already
            position = std::max(position, edit.end);
            continue;
        }
        result += text.substr(position, edit.begin - position);
        if (edit.isOwnLine && !result.empty() && !isEnded(result)) {
            result += lineBreak_;
        }
        result += edit.replacement;
        position = edit.end;
    }
    result += text.substr(position);
    return result;
}
