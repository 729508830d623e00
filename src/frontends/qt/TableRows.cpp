#include "frontends/qt/TableRows.h"

#include <QString>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <numeric>

namespace frontend {

namespace {

constexpr char betweenCells = '\n';

bool isDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

/// Appends the text so that comparing bytes compares numbers by value: the length of a number is put before
/// its digits.
void appendKey(std::string& keys, std::string_view text) {
    constexpr std::size_t longest = 255;
    for (std::size_t at = 0; at < text.size();) {
        if (!isDigit(text[at])) {
            keys += text[at++];
            continue;
        }
        while (at + 1 < text.size() && text[at] == '0' && isDigit(text[at + 1])) {
            ++at;
        }
        std::size_t end = at;
        while (end < text.size() && end - at < longest && isDigit(text[end])) {
            ++end;
        }
        keys += '0'; // numbers sort among other characters where digits do
        keys += static_cast<char>(end - at);
        keys += text.substr(at, end - at);
        at = end;
    }
}

struct Key {
    std::uint64_t beginning; ///< the first bytes of the key, which decide most comparisons
    std::string_view text;
    int row;
};

std::uint64_t beginningOf(std::string_view text) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text.data(), std::min(text.size(), sizeof bytes));
    static_assert(std::endian::native == std::endian::little);
    return __builtin_bswap64(bytes);
}

bool isBefore(const Key& left, const Key& right) {
    if (left.beginning != right.beginning) {
        return left.beginning < right.beginning;
    }
    const int order = left.text.compare(right.text);
    return order != 0 ? order < 0 : left.row < right.row;
}

} // namespace

std::string foldedText(std::string_view text) {
    std::string folded(text);
    bool isPlain = true;
    for (char& letter : folded) {
        isPlain = isPlain && static_cast<unsigned char>(letter) < 0x80;
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    if (isPlain) {
        return folded;
    }
    QString letters = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))
                          .toCaseFolded()
                          .normalized(QString::NormalizationForm_KD);
    letters.removeIf([](QChar each) { return each.category() == QChar::Mark_NonSpacing; });
    return letters.toStdString();
}

void TableRows::setLength(int rows) {
    length_ = rows;
    texts_.clear();
    ends_.clear();
}

void TableRows::setOrder(int column, bool isDescending) {
    column_ = column;
    isDescending_ = isDescending;
}

void TableRows::setFilter(const std::string& text) {
    words_.clear();
    const std::string folded = foldedText(text);
    for (std::size_t begin = 0; (begin = folded.find_first_not_of(' ', begin)) != std::string::npos;) {
        const std::size_t end = std::min(folded.find(' ', begin), folded.size());
        words_.push_back(folded.substr(begin, end - begin));
        begin = end;
    }
    if (words_.empty()) {
        setLength(length_); // frees the texts
    }
}

void TableRows::readTexts() {
    if (static_cast<int>(ends_.size()) == length_) {
        return;
    }
    ends_.reserve(static_cast<std::size_t>(length_));
    for (int row = 0; row < length_; ++row) {
        for (int column = 0; column < columns_; ++column) {
            texts_ += foldedText(text_(row, column));
            texts_ += betweenCells;
        }
        ends_.push_back(texts_.size());
    }
}

bool TableRows::matches(int row) const {
    const std::size_t begin = row == 0 ? 0 : ends_[static_cast<std::size_t>(row) - 1];
    const std::string_view text =
        std::string_view(texts_).substr(begin, ends_[static_cast<std::size_t>(row)] - begin);
    return std::ranges::all_of(words_, [text](const std::string& word) {
        return memmem(text.data(), text.size(), word.data(), word.size()) != nullptr;
    });
}

void TableRows::sort() {
    std::string texts;
    std::vector<std::size_t> ends;
    ends.reserve(rows_.size());
    for (const int row : rows_) {
        appendKey(texts, foldedText(text_(row, column_)));
        ends.push_back(texts.size());
    }
    std::vector<Key> keys;
    keys.reserve(rows_.size());
    std::size_t begin = 0;
    for (std::size_t index = 0; index < rows_.size(); ++index) {
        const std::string_view text = std::string_view(texts).substr(begin, ends[index] - begin);
        keys.push_back({beginningOf(text), text, rows_[index]});
        begin = ends[index];
    }
    std::ranges::sort(keys, isBefore);
    if (isDescending_) {
        std::ranges::reverse(keys);
    }
    std::ranges::transform(keys, rows_.begin(), &Key::row);
}

void TableRows::arrange(const std::vector<int>& kept) {
    rows_.clear();
    places_.clear();
    isPlain_ = !isFiltered() && column_ < 0;
    if (isPlain_) {
        return;
    }
    if (!isFiltered()) {
        rows_.resize(static_cast<std::size_t>(length_));
        std::iota(rows_.begin(), rows_.end(), 0);
    } else {
        if (!words_.empty()) {
            readTexts();
        }
        for (int row = 0; row < length_; ++row) {
            const bool isWanted = (words_.empty() || matches(row)) && !(isLeftOut_ && isLeftOut_(row));
            if (isWanted || std::ranges::binary_search(kept, row)) {
                rows_.push_back(row);
            }
        }
    }
    if (column_ >= 0) {
        sort();
    }
    places_.assign(static_cast<std::size_t>(length_), -1);
    for (std::size_t place = 0; place < rows_.size(); ++place) {
        places_[static_cast<std::size_t>(rows_[place])] = static_cast<int>(place);
    }
}

} // namespace frontend
