#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

enum class TextAlignment { Left, Center, Right };

/// A stretch of text in one style.
struct TextRun {
    std::string text; ///< UTF-8; "\n" ends a paragraph
    bool bold = false;
    bool italic = false;
    double size = 12; ///< in points
    TextAlignment alignment = TextAlignment::Left;
};

using RichText = std::vector<TextRun>;

/// Reads the subset of RTF that the credits use: \b, \i, \fsN, \par, \line, \tab, \ql, \qc, \qr, \pard,
/// \plain,
/// \'hh (Windows-1252), \uN, \uc, the escapes, and groups; font and colour tables and "\*" groups are passed
/// over, unknown words ignored. None when the text is not RTF or its groups do not close. The format is
/// Microsoft's RTF 1.9.
[[nodiscard]] std::optional<RichText> readRichText(std::string_view rtf);

} // namespace platform
