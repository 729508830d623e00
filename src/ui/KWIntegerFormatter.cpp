#include "ui/KWIntegerFormatter.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

namespace {

/// True when `formatter` accepts every single character of `text` as a number, which rules out signs and
/// blanks.
bool hasOnlyDigits(std::string_view text, const NSNumberFormatter& formatter) {
    std::string ignored;
    std::size_t begin = 0;
    while (begin < text.size()) {
        std::size_t end = begin + 1;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
            ++end;
        }
        if (!formatter.getObjectValue(std::string(text.substr(begin, end - begin)), ignored)) {
            return false;
        }
        begin = end;
    }
    return true;
}

} // namespace

bool KWIntegerFormatter::isPartialStringValid(std::string& partial, NSRange& proposedSelection,
                                              const std::string& /*original*/, NSRange originalSelection,
                                              std::string& error) {
    if (proposedSelection.location <= originalSelection.location) {
        return true;
    }
    const std::size_t begin = offsetOfUTF16(partial, originalSelection.location);
    const std::size_t end = offsetOfUTF16(partial, proposedSelection.location);
    if (hasOnlyDigits(std::string_view(partial).substr(begin, end - begin), *this)) {
        return true;
    }
    error = NSLocalizedString("Input is not an integer");
    return false;
}
