#pragma once

#include "platform/appkit/NSFormatter.h"

/// Keeps a number field to digits while the user types. One instance, owned by the controller, serves all
/// number fields. It never changes what was typed: an edit is taken as it is or refused.
class KWIntegerFormatter : public NSNumberFormatter {
  public:
    using NSNumberFormatter::isPartialStringValid;

    /// Accepts the edit when what it inserts, from the start of `originalSelection` to the proposed caret, is
    /// nothing but decimal digits of any script. The rest of the field is not checked, so that a field that
    /// the program filled with any other string can still be corrected. Sets the localized `error` when it
    /// refuses.
    [[nodiscard]] bool isPartialStringValid(std::string& partial, NSRange& proposedSelection,
                                            const std::string& original, NSRange originalSelection,
                                            std::string& error) override;
};
