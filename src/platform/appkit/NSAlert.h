#pragma once

#include "platform/appkit/Presenter.h"
#include "platform/foundation/NSString.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

inline constexpr int NSAlertDefaultReturn = 1;
inline constexpr int NSAlertAlternateReturn = 0;
inline constexpr int NSAlertOtherReturn = -1;

namespace platform {
[[nodiscard]] int runAlert(const std::string& title, const std::string& message,
                           const std::string& defaultButton,
                           const std::optional<std::string>& alternateButton,
                           const std::optional<std::string>& otherButton);
} // namespace platform

/// Shows a modal alert and returns the button that ended it. `message` is a format for `arguments`
/// (stringWithFormat); std::nullopt for a button means that there is no such button.
template <class... Arguments>
int NSRunAlertPanel(const std::string& title, const std::string& message, const std::string& defaultButton,
                    const std::optional<std::string>& alternateButton,
                    const std::optional<std::string>& otherButton, const Arguments&... arguments) {
    return platform::runAlert(title, stringWithFormat(message, arguments...), defaultButton, alternateButton,
                              otherButton);
}

/// The system beep.
void NSBeep();

/// A modal panel that lets the user choose one existing file or folder.
class NSOpenPanel {
  public:
    void setCanChooseFiles(bool can) { request_.canChooseFiles = can; }

    void setCanChooseDirectories(bool can) { request_.canChooseDirectories = can; }

    /// Returns the chosen path, or none when the user cancelled.
    [[nodiscard]] std::optional<std::string> runModal();
    [[nodiscard]] std::optional<std::string> runModalForDirectory(const std::string& directory,
                                                                  const std::string& file);

  private:
    platform::OpenPanelRequest request_;
};

/// Opens addresses in the user's default applications.
class NSWorkspace {
  public:
    static void openURL(const std::string& address);
};

/// A repeating timer on the front-end's event loop. Stops when it is destroyed.
class NSTimer {
  public:
    /// `interval` in seconds; 0 fires as often as the front-end sensibly can.
    NSTimer(double interval, std::function<void()> fire);
    ~NSTimer();
    NSTimer(const NSTimer&) = delete;
    NSTimer& operator=(const NSTimer&) = delete;

  private:
    std::weak_ptr<platform::Presenter> presenter_; ///< the one that fires
    platform::TimerId id_ = 0;
};
