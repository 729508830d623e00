#pragma once

#include "platform/appkit/NSFormatter.h"

/// Restricts a number field to digits while the user types. One instance, owned by the controller, serves all
/// number fields. It never changes what was typed: it accepts an edit unchanged or refuses it.
class KWIntegerFormatter : public NSNumberFormatter {
  public:
    using NSNumberFormatter::isPartialStringValid;

    /// Accepts the edit when the inserted text, from the start of `originalSelection` to the proposed caret,
    /// consists of decimal digits of any script. The rest of the field is not checked, so that a field that
    /// the program filled with other text can still be corrected. Sets the localized `error` when it refuses.
    [[nodiscard]] bool isPartialStringValid(std::string& partial, NSRange& proposedSelection,
                                            const std::string& original, NSRange originalSelection,
                                            std::string& error) override;
};
