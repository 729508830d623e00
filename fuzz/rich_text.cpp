// Rich text: it is read as runs of whole characters, and is the same when written and read again.

#include "Fuzz.h"
#include "platform/appkit/RichText.h"
#include "platform/foundation/NSString.h"

#include <algorithm>

#include <utf8.h>

namespace {

std::string rtfOf(const platform::TextRun& run) {
    using platform::TextAlignment;
    std::string rtf = run.alignment == TextAlignment::Left    ? "\\ql"
                      : run.alignment == TextAlignment::Right ? "\\qr"
                                                              : "\\qc";
    rtf += "\\fs" + std::to_string(static_cast<int>(run.size * 2)) + (run.bold ? "\\b" : "\\b0") +
           (run.italic ? "\\i" : "\\i0");
    for (const char16_t unit : utf8::utf8to16(run.text)) {
        rtf += unit == u'\n' ? "\\par" : "\\u" + std::to_string(static_cast<std::int16_t>(unit));
    }
    return rtf + "\n";
}

bool isSame(const platform::TextRun& one, const platform::TextRun& other) {
    return one.text == other.text && one.bold == other.bold && one.italic == other.italic &&
           one.size == other.size && one.alignment == other.alignment;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = platform::readRichText(fuzz::textOf(data, size));
    if (!text) {
        return 0;
    }
    std::string written = "{\\rtf1\\uc0";
    for (const platform::TextRun& run : *text) {
        fuzz::require(!run.text.empty() && run.size > 0, "a run has text of some size");
        fuzz::require(isValidUTF8(run.text), "a run is UTF-8", run.text);
        written += rtfOf(run);
    }
    const auto again = platform::readRichText(written + "}");
    fuzz::require(again && std::ranges::equal(*text, *again, isSame), "what was written is what was read",
                  written);
    return 0;
}
