#include "frontends/TableText.h"

#include "platform/appkit/NSTableView.h"
#include "platform/posix/UTF8.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <type_traits>
#include <vector>

#include <locale.h>
#include <wchar.h>

namespace frontend {

namespace {

constexpr std::string_view gap = "  ";
constexpr char32_t replacementCharacter = 0xFFFD;
constexpr std::string_view replacement = "\xEF\xBF\xBD";

/// How many places of a terminal a character takes, whatever the language of the environment: -1 for a
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

Cell makeCell(std::string_view text, const TerminalWidths& widths) {
    Cell cell;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = at;
        const char32_t character = platform::nextCharacter(text, at);
        const int width = widths.width(character);
        const bool isShown = width >= 0 && character != replacementCharacter;
        cell.text += isShown ? text.substr(begin, at - begin) : replacement;
        cell.width += isShown ? static_cast<std::size_t>(width) : 1U;
    }
    return cell;
}

std::string joined(const std::vector<std::vector<Cell>>& lines,
                   const std::vector<std::size_t>& columnWidths) {
    std::string text;
    for (const auto& line : lines) {
        std::size_t blanks = 0;
        for (std::size_t column = 0; column < line.size(); ++column) {
            if (!line[column].text.empty()) {
                text.append(blanks, ' ').append(line[column].text);
                blanks = 0;
            }
            blanks += columnWidths[column] - line[column].width + gap.size();
        }
        text += '\n';
    }
    return text;
}

} // namespace

std::string tableText(NSTableView& table) {
    const TerminalWidths widths;
    std::vector<const NSTableColumn*> columns;
    for (const NSTableColumn& column : table.tableColumns()) {
        if (!column.hidden) {
            columns.push_back(&column);
        }
    }
    std::vector<std::vector<Cell>> lines(1);
    for (const NSTableColumn* column : columns) {
        lines.front().push_back(makeCell(column->title, widths));
    }
    for (int row = 0; row < table.numberOfRows(); ++row) {
        auto& line = lines.emplace_back();
        for (const NSTableColumn* column : columns) {
            line.push_back(makeCell(table.objectValue(*column, row), widths));
        }
    }
    std::vector<std::size_t> columnWidths(columns.size(), 0);
    for (const auto& line : lines) {
        for (std::size_t column = 0; column < line.size(); ++column) {
            columnWidths[column] = std::max(columnWidths[column], line[column].width);
        }
    }
    return joined(lines, columnWidths);
}

} // namespace frontend
