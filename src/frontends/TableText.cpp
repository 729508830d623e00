#include "frontends/TableText.h"

#include "platform/appkit/NSTableView.h"
#include "platform/posix/UTF8.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <locale.h>
#include <wchar.h>

namespace frontend {

namespace {

constexpr std::string_view gap = "  ";
constexpr char32_t replacementCharacter = 0xFFFD;
constexpr std::string_view replacement = "\xEF\xBF\xBD";

/// How many columns of a terminal a character takes, independent of the environment's language; -1 for a
/// control character.
class TerminalWidths {
  public:
    TerminalWidths() : locale_(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
        if (locale_) {
            previous_ = uselocale(locale_.get());
        }
    }

    ~TerminalWidths() {
        if (locale_) {
            uselocale(previous_);
        }
    }

    TerminalWidths(const TerminalWidths&) = delete;
    TerminalWidths& operator=(const TerminalWidths&) = delete;

    [[nodiscard]] int width(char32_t character) const {
        if (character < 0x20 || character == 0x7F) {
            return -1;
        }
        return locale_ ? wcwidth(static_cast<wchar_t>(character)) : 1;
    }

  private:
    struct FreeLocale {
        void operator()(locale_t locale) const { freelocale(locale); }
    };

    std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale> locale_;
    locale_t previous_ = nullptr;
};

struct Cell {
    std::string text;
    std::size_t width = 0;
};

Cell makeCell(std::string text, const TerminalWidths& widths) {
    const auto isPlain = [](char character) { return character >= 0x20 && character < 0x7F; };
    if (std::ranges::all_of(text, isPlain)) { // true for most cells of a long list, and fast
        const std::size_t width = text.size();
        return {std::move(text), width};
    }
    Cell cell;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = at;
        const char32_t character = platform::nextCharacter(text, at);
        const int width = widths.width(character);
        const bool isShown = width >= 0 && character != replacementCharacter;
        cell.text += isShown ? std::string_view(text).substr(begin, at - begin) : replacement;
        cell.width += isShown ? static_cast<std::size_t>(width) : 1U;
    }
    return cell;
}

/// A column that is shown, and the width of its widest cell in terminal columns.
struct Column {
    const NSTableColumn* column = nullptr;
    std::size_t width = 0;
};

constexpr int titles = -1; ///< the row number that stands for the titles

Cell cellAt(NSTableView& table, const NSTableColumn& column, int row, const TerminalWidths& widths) {
    return makeCell(row == titles ? column.title : table.objectValue(column, row), widths);
}

} // namespace

void writeTable(NSTableView& table, std::ostream& out) {
    const TerminalWidths widths;
    std::vector<Column> columns;
    for (const NSTableColumn& column : table.tableColumns()) {
        if (!column.hidden) {
            columns.push_back({&column});
        }
    }
    // Every cell is made twice: keeping them all would take more memory than the table itself.
    for (int row = titles; row < table.numberOfRows(); ++row) {
        for (Column& each : columns) {
            each.width = std::max(each.width, cellAt(table, *each.column, row, widths).width);
        }
    }
    std::string line;
    for (int row = titles; row < table.numberOfRows(); ++row) {
        line.clear();
        std::size_t blanks = 0;
        for (const Column& each : columns) {
            const Cell cell = cellAt(table, *each.column, row, widths);
            if (!cell.text.empty()) {
                line.append(blanks, ' ').append(cell.text);
                blanks = 0;
            }
            blanks += each.width - cell.width + gap.size();
        }
        line += '\n';
        out << line;
    }
}

} // namespace frontend
