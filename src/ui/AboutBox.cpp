#include "ui/AboutBox.h"

#include "platform/appkit/Interface.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/ObjectClass.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSLog.h"

namespace {

constexpr double pauseSeconds = 3.0;
constexpr double pointsPerStep = 0.01;

double now() {
    return platform::Host::current().clock().now();
}

} // namespace

AboutBox::AboutBox() = default;

AboutBox::~AboutBox() = default;

AboutBox& AboutBox::sharedInstance() {
    return platform::Host::current().sharedInstance<AboutBox>(
        [] { return std::shared_ptr<AboutBox>(new AboutBox); });
}

void AboutBox::showPanel(NSControl* /*sender*/) {
    if (appNameField == nullptr) {
        if (!loadPanel()) {
            NSLog("Failed to load AboutBox.nib");
            NSBeep();
            return;
        }
        fillPanel();
    }
    if (!aboutWindow->isVisible()) {
        currentPosition = 0;
        restartAtTop = false;
        startTime = now() + pauseSeconds;
        creditsField->scrollToPoint(0);
    }
    aboutWindow->makeKeyAndOrderFront();
}

bool AboutBox::loadPanel() {
    platform::registerClass(platform::describeClass<AboutBox>("AboutBox").take());
    interface_ =
        platform::Interface::load(NSBundle::mainBundle().resourcePath() + "/AboutBox.xml", "AboutBox", this)
            .valueOr(nullptr);
    return interface_ != nullptr;
}

void AboutBox::fillPanel() {
    const NSBundle& bundle = NSBundle::mainBundle();
    const std::string name = bundle.objectForLocalInfoDictionaryKey("CFBundleName");
    appNameField->setStringValue(name);
    aboutWindow->setTitle(stringWithFormat(NSLocalizedString("About %@"), name));
    versionField->setStringValue(stringWithFormat(NSLocalizedString("Version %@"),
                                                  bundle.objectForInfoDictionaryKey("CFBundleVersion")));
    if (const auto file = contentsOfFile(bundle.pathForResource("Credits.rtf")); file.isOk()) {
        if (const auto credits = platform::readRichText(*file)) {
            creditsField->insertAtStart(*credits);
        }
    }
    copyrightField->setStringValue(bundle.objectForLocalInfoDictionaryKey("NSHumanReadableCopyright"));
    maxScrollHeight = static_cast<float>(creditsField->length());
    aboutWindow->center();
}

void AboutBox::windowDidBecomeKey(NSWindow* /*window*/) {
    scrollTimer = std::make_unique<NSTimer>(0.0, [this] { scrollCredits(); });
}

void AboutBox::windowDidResignKey(NSWindow* /*window*/) {
    scrollTimer.reset();
}

void AboutBox::scrollCredits() {
    const double time = now();
    if (time < startTime) {
        return;
    }
    if (restartAtTop) {
        startTime = time + pauseSeconds;
        restartAtTop = false;
        creditsField->scrollToPoint(0);
    } else if (currentPosition >= maxScrollHeight) {
        // Keep the end of the text visible during the pause.
        startTime = time + pauseSeconds;
        currentPosition = 0;
        restartAtTop = true;
    } else {
        creditsField->scrollToPoint(currentPosition);
        currentPosition = static_cast<float>(static_cast<double>(currentPosition) + pointsPerStep);
    }
}
