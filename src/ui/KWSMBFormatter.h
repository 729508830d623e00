#pragma once

#include "platform/appkit/NSFormatter.h"

/// Keeps the names of an SMB server (NetBIOS name, workgroup) to 15 characters without a blank at the end,
/// while the user types. One instance, owned by the controller, serves both fields. A value is the text
/// itself; texts that the program fills in are not checked.
class KWSMBFormatter : public NSFormatter {
  public:
    using NSFormatter::isPartialStringValid;

    /// Refuses, with a beep and `error`, a text of 16 or more characters (UTF-16 units) and one whose last
    /// character is a blank. An accepted text is handed back unchanged in `newString`.
    [[nodiscard]] bool isPartialStringValid(const std::string& partial, std::optional<std::string>& newString,
                                            std::string& error) override;
    /// The text itself.
    [[nodiscard]] std::optional<NSObjectValue> getObjectValue(const std::string& text,
                                                              std::string& error) const override;
    /// A text as it is; none for a number.
    [[nodiscard]] std::optional<std::string> stringForObjectValue(const NSObjectValue& value) const override;
};
