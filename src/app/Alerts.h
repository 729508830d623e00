#pragma once

#include "platform/appkit/NSAlert.h"
#include "platform/foundation/NSBundle.h"

#include <optional>
#include <string>

// The controller's alerts. Titles and messages are keys of the string table; `arguments` fill the message's
// directives.

/// Shows an alert whose one button is "OK".
template <class... Arguments>
void showAlert(const std::string& titleKey, const std::string& messageKey, const Arguments&... arguments) {
    NSRunAlertPanel(NSLocalizedString(titleKey), NSLocalizedString(messageKey), NSLocalizedString("OK"),
                    std::nullopt, std::nullopt, arguments...);
}

/// Asks a question whose default button is "No". Returns true for "Yes".
template <class... Arguments>
[[nodiscard]] bool confirm(const std::string& titleKey, const std::string& messageKey,
                           const Arguments&... arguments) {
    return NSRunAlertPanel(NSLocalizedString(titleKey), NSLocalizedString(messageKey),
                           NSLocalizedString("No"), NSLocalizedString("Yes"), std::nullopt,
                           arguments...) == NSAlertAlternateReturn;
}
