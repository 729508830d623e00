#pragma once

#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSTextView.h"
#include "platform/appkit/NSWindow.h"
#include "platform/appkit/OutletOwner.h"

#include <memory>

class NSControl;
class NSTimer;

namespace platform {
class Interface;
}

/// The About panel: name, version and copyright, and credits that scroll slowly upwards while it is the key
/// window. There is one instance per host, which owns its interface file's controls. Main thread only.
class AboutBox : public NSWindowDelegate, public platform::OutletOwner {
  public:
    /// The current host's one instance, made on first use.
    [[nodiscard]] static AboutBox& sharedInstance();

    ~AboutBox() override;

    /// Brings the panel to the front; the first call loads and fills it. The credits start again at the top
    /// if the panel was not on screen. When the panel cannot be loaded, this logs and beeps, and the next
    /// call tries again.
    void showPanel(NSControl* sender);

    void windowDidBecomeKey(NSWindow* window) override;
    void windowDidResignKey(NSWindow* window) override;

    /// One scroll step: a hundredth of a point, or the jump at the end of a pass.
    void scrollCredits();

  private:
    AboutBox();

    [[nodiscard]] bool loadPanel();
    void fillPanel();

    NSTextField* appNameField = outlet("appNameField", appNameField); ///< unset until the panel is loaded
    NSTextField* copyrightField = outlet("copyrightField", copyrightField);
    NSTextView* creditsField = outlet("creditsField", creditsField);
    NSTextField* versionField = outlet("versionField", versionField);
    NSWindow* aboutWindow = outlet("aboutWindow", aboutWindow);
    std::unique_ptr<NSTimer> scrollTimer; ///< only while the panel is key
    float currentPosition = 0;            ///< the offset that the next step shows at the top, in points
    float maxScrollHeight = 0;            ///< where a pass ends: one point for each character of the credits
    double startTime = 0;                 ///< the time before which the credits do not move, in seconds
    bool restartAtTop = false;            ///< a pass has ended: the next step jumps back to the top
    std::unique_ptr<platform::Interface> interface_;
};
