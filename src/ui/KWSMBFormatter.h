#pragma once

#include "platform/appkit/NSFormatter.h"

/// Restricts the names of an SMB server (NetBIOS name, workgroup) to 15 characters without a blank at the
/// end, while the user types. One instance, owned by the controller, serves both fields. A field's value is
/// the string itself; text that the program fills in is not checked.
class KWSMBFormatter : public NSFormatter {
  public:
    using NSFormatter::isPartialStringValid;

    /// Refuses, with a beep and `error`, a string of 16 or more characters (UTF-16 units) and one whose last
    /// character is a blank. An accepted string is returned unchanged in `newString`.
    [[nodiscard]] bool isPartialStringValid(const std::string& partial, std::optional<std::string>& newString,
                                            std::string& error) override;
    /// Returns the string itself.
    [[nodiscard]] std::optional<NSObjectValue> getObjectValue(const std::string& text,
                                                              std::string& error) const override;
    /// Returns a string unchanged, and none for a number.
    [[nodiscard]] std::optional<std::string> stringForObjectValue(const NSObjectValue& value) const override;
};
