#include "ui/KWIntegerFormatter.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/posix/UTF8.h"

namespace {

/// Digits of any script count; signs and blanks do not.
bool hasOnlyDigits(std::string_view text) {
    for (std::size_t offset = 0; offset < text.size();) {
        if (!platform::decimalDigitValue(platform::nextCharacter(text, offset))) {
            return false;
        }
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
    if (hasOnlyDigits(std::string_view(partial).substr(begin, end - begin))) {
        return true;
    }
    error = NSLocalizedString("Input is not an integer");
    return false;
}
