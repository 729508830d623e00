#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

class NSTextField;
class NSWindow;

namespace platform {

class Interface;

/// A modal alert. A button without a title does not exist.
struct Alert {
    std::string title;
    std::string message;
    std::string defaultButton;
    std::optional<std::string> alternateButton;
    std::optional<std::string> otherButton;
};

/// The button that ended an alert; the values are those that NSRunAlertPanel returns.
enum class AlertAnswer : int { Default = 1, Alternate = 0, Other = -1 };

struct OpenPanelRequest {
    bool canChooseFiles = true;
    bool canChooseDirectories = false;
    std::string directory; ///< the folder to start in, empty for the front-end's choice
    std::string file;      ///< the name proposed in it, may be empty
};

/// What the administrator dialog asks for.
struct AdministratorRequest {
    bool needsPassword = false; ///< a password is asked for; otherwise only consent
    std::string message;        ///< why an earlier answer was not accepted; empty the first time
};

/// The user's consent; `password` is empty if only consent was asked for.
struct AdministratorAnswer {
    std::string password;
};

using TimerId = std::uint64_t;

/// What a front-end does for the application: everything that it shows, plays or asks outside the controls.
/// Owned by the host; called on the main thread only. The calls that ask block until they are answered.
class Presenter {
  public:
    virtual ~Presenter() = default;

    [[nodiscard]] virtual AlertAnswer runAlert(const Alert& alert) = 0;
    /// Returns the path that the user chose, or none when the panel was cancelled.
    [[nodiscard]] virtual std::optional<std::string> runOpenPanel(const OpenPanelRequest& request) = 0;
    /// Returns the user's consent (with the password if one was asked for), or none when it was refused.
    [[nodiscard]] virtual std::optional<AdministratorAnswer>
    runAdministratorDialog(const AdministratorRequest& request) = 0;
    virtual void beep() = 0;
    /// Hands a web or mail address to the user's default application, without waiting for it.
    virtual void openAddress(const std::string& address) = 0;

    /// Calls `fire` every `interval` seconds (0: as often as the front-end's event loop sensibly can) until
    /// stopTimer. The first call comes one interval later.
    [[nodiscard]] virtual TimerId startTimer(double interval, std::function<void()> fire) = 0;
    virtual void stopTimer(TimerId timer) = 0;

    /// An interface file was loaded; its controls live as long as `interface`.
    virtual void interfaceDidLoad(Interface& interface) = 0;
    /// A window, sheet or panel came on screen or went off it.
    virtual void windowVisibilityDidChange(NSWindow& window) = 0;
    /// A formatter refused an edit; called before the field's delegate is told.
    virtual void editWasRefused(const NSTextField& field, const std::string& errorText) = 0;
    /// The application has ended; the front-end leaves its event loop.
    virtual void applicationDidTerminate() = 0;

    /// A privileged tool run starts. `tool` is the tool's path; in `arguments` a password is replaced by
    /// "********".
    virtual void toolWillRun(const std::string& tool, std::span<const std::string> arguments) = 0;
    /// The run that was announced last has ended, having written `output`, which is never empty.
    virtual void toolDidWrite(std::string_view output) = 0;
};

} // namespace platform
