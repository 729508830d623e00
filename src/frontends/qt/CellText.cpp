#include "frontends/qt/CellText.h"

#include "frontends/qt/Binding.h"
#include "platform/foundation/NSBundle.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace frontend {

namespace {

/// Recognizes every word for yes in the lists: the application's own marks, and what a settings file may
/// contain.
bool meansYes(const std::string& value) {
    static constexpr std::array<std::string_view, 4> words = {"+", "1", "yes", "true"};
    std::string lower = value;
    std::ranges::transform(lower, lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return std::ranges::find(words, lower) != words.end() || value == NSLocalizedString("Yes") ||
           value == NSLocalizedString("YES");
}

QString privilegesText(const std::string& value) {
    return value == "r/w"  ? localized("Read & Write")
           : value == "r"  ? localized("Read Only")
           : value == "w"  ? localized("Write Only")
           : value.empty() ? localized("None")
                           : shown(value);
}

bool isMissing(const std::string& value) {
    return value == "#NoValue#" || value == "<no value>" || value == "<no entry>";
}

} // namespace

QString cellText(const NSTableColumn& column, const std::string& value) {
    if (column.display == "check") {
        return meansYes(value) ? QString(QChar(0x2713)) : QString();
    }
    if (column.display == "privileges") {
        return privilegesText(value);
    }
    if (column.display.empty()) {
        return shown(value);
    }
    QString text = isMissing(value) ? QString() : shown(value);
    return column.display == "list" ? text.replace(QLatin1Char(','), QLatin1String(", ")) : text;
}

QString spokenCellText(const NSTableColumn& column, const std::string& value) {
    return column.display == "check" ? localized(meansYes(value) ? "Yes" : "No") : QString();
}

} // namespace frontend
