#include "platform/posix/LetterCase.h"

#include "platform/posix/UTF8.h"

#include <iterator>

#include <locale.h>
#include <wctype.h>

namespace platform {

std::string lowercased(std::string_view text) {
    // Independent of the user's language. If the system lacks this locale, "C" still knows the ASCII letters.
    static const locale_t named = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    static const locale_t letters = named != nullptr ? named : ::newlocale(LC_CTYPE_MASK, "C", nullptr);
    std::string small;
    small.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        const std::size_t start = offset;
        const char32_t character = nextCharacter(text, offset);
        if (offset - start > 1 || character < 0x80) {
            const auto letter = ::towlower_l(static_cast<wint_t>(character), letters);
            utf8::append(static_cast<char32_t>(letter), std::back_inserter(small));
        } else {
            small += text[start]; // not UTF-8
        }
    }
    return small;
}

} // namespace platform
