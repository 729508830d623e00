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

/// Reads the subset of RTF 1.9 (Microsoft) that the credits use: \b, \i, \fsN, \par, \line, \tab, \ql, \qc,
/// \qr, \pard, \plain, \'hh (Windows-1252), \uN, \uc, the escapes, and groups. Font and colour tables and
/// "\*" groups are skipped, unknown words ignored. Returns none when the text is not RTF or a group is not
/// closed.
[[nodiscard]] std::optional<RichText> readRichText(std::string_view rtf);

} // namespace platform
