#include "ui/KWSMBFormatter.h"

#include "platform/appkit/NSAlert.h"
#include "platform/foundation/NSString.h"

namespace {

// A NetBIOS name has 16 bytes, and the protocol reserves the last one.
constexpr std::size_t lengthLimit = 15;

} // namespace

bool KWSMBFormatter::isPartialStringValid(const std::string& partial, std::optional<std::string>& newString,
                                          std::string& error) {
    // Only scripts and commands show these messages, so they are not translated.
    if (utf16Length(partial) > lengthLimit) {
        error = "String too long.";
    } else if (partial.ends_with(' ')) {
        error = "No Spaces.";
    } else {
        newString = partial;
        return true;
    }
    NSBeep();
    return false;
}

std::optional<NSObjectValue> KWSMBFormatter::getObjectValue(const std::string& text,
                                                            std::string& /*error*/) const {
    return text;
}

std::optional<std::string> KWSMBFormatter::stringForObjectValue(const NSObjectValue& value) const {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return *text;
    }
    return std::nullopt;
}
