#include "TableText.h"

#include "NSString.h"
#include "NSTableView.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>
#include <type_traits>
#include <vector>

#include <locale.h>
#include <wchar.h>

namespace frontend {

namespace {

constexpr std::string_view gap = "  ";
constexpr std::string_view replacement = "\xEF\xBF\xBD";

/// The length in bytes of the well-formed character at the start of `text` (not empty); 0 when there is none.
std::size_t characterLength(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80U ? 1 : lead < 0xE0U ? 2 : lead < 0xF0U ? 3 : 4;
    return isValidUTF8(text.substr(0, length)) ? std::min(length, text.size()) : 0;
}

wchar_t codePoint(std::string_view character) {
    if (character.size() == 1) {
        return static_cast<wchar_t>(character.front());
    }
    std::uint32_t code = static_cast<unsigned char>(character.front()) & (0xFFU >> (character.size() + 1));
    for (const char byte : character.substr(1)) {
        code = (code << 6U) | (static_cast<unsigned char>(byte) & 0x3FU);
    }
    return static_cast<wchar_t>(code);
}

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

    [[nodiscard]] int width(wchar_t code) const {
        if (code < 0x20 || code == 0x7F) {
            return -1;
        }
        return locale_ ? wcwidth(code) : 1;
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
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const int width = length == 0 ? -1 : widths.width(codePoint(text.substr(0, length)));
        cell.text += width < 0 ? replacement : text.substr(0, length);
        cell.width += width < 0 ? 1U : static_cast<std::size_t>(width);
        text.remove_prefix(std::max<std::size_t>(length, 1));
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
