#include "app/BRController.h"

#include "app/Alerts.h"
#include "platform/foundation/Fetch.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSUserDefaults.h"
#include "privileged/NiutilTask.h"

namespace {

const std::string launchCounterKey = "BrindleDonationReminder";
constexpr std::int32_t launchOfSecondRequest = 10;

void openAddressOf(const std::string& infoKey) {
    NSWorkspace::openURL(NSBundle::mainBundle().objectForInfoDictionaryKey(infoKey));
}

/// The current version, or why it is not known.
struct PublishedVersion {
    std::optional<std::string> version;
    std::string error;
};

PublishedVersion publishedVersion() {
    const std::string address = NSBundle::mainBundle().objectForInfoDictionaryKey("BRVersionList");
    const auto list = platform::fetchContentsOfURL(address);
    if (!list.isOk()) {
        return {std::nullopt, std::string(list.status().why())};
    }
    const auto versions = NSMutableDictionary::dictionaryWithData(*list);
    if (!versions) {
        return {std::nullopt,
                stringWithFormat(NSLocalizedString("the document at %@ is not a version list"), address)};
    }
    auto version = versions->stringForKey("Brindle");
    if (!version) {
        return {std::nullopt,
                stringWithFormat(NSLocalizedString("the version list at %@ does not name Brindle"), address)};
    }
    return {std::move(version), ""};
}

} // namespace

void BRController::restartAFS(NSControl* /*sender*/) {
    NiutilTask::sharedInstance().restartAFS();
}

void BRController::restartSMB(NSControl* /*sender*/) {
    NiutilTask::sharedInstance().restartSMB();
}

void BRController::checkForNewVersion(NSControl* sender) {
    const std::string running = NSBundle::mainBundle().objectForInfoDictionaryKey("CFBundleVersion");
    const PublishedVersion published = publishedVersion();
    if (!published.version) {
        showAlert(
            "Version Not Checked",
            "Brindle could not find out which version is the most recent one: %@.  Please try again later.",
            published.error);
        return;
    }
    if (*published.version == running) {
        showAlert("Your Software is up-to-date", "You have the most recent version of Brindle.");
        return;
    }
    const int answer = NSRunAlertPanel(
        NSLocalizedString("A New Version is Available"),
        NSLocalizedString(
            "A new version of Brindle is available (version %@). Would you like to download the "
            "new version now?"),
        NSLocalizedString("OK"), NSLocalizedString("Cancel"), std::nullopt, *published.version);
    if (answer == NSAlertDefaultReturn) {
        goToWebpage(sender);
    }
}

void BRController::goToWebpage(NSControl* /*sender*/) {
    openAddressOf("BRHomePage");
}

void BRController::sendDonation(NSControl* /*sender*/) {
    openAddressOf("BRDonationAddress");
}

void BRController::sendDonationKagi(NSControl* /*sender*/) {
    openAddressOf("BRStoreAddress");
}

void BRController::sendFeedback(NSControl* /*sender*/) {
    NSWorkspace::openURL("mailto:" + NSBundle::mainBundle().objectForInfoDictionaryKey("BRSupportAddress") +
                         "?subject=Brindle");
}

void BRController::remindOfDonation() {
    const auto ask = [this](const std::string& messageKey) {
        const int answer =
            NSRunAlertPanel(NSLocalizedString("Donation"), NSLocalizedString(messageKey),
                            NSLocalizedString("Make Donation via Paypal"), NSLocalizedString("Cancel"),
                            NSLocalizedString("Make Donation via Kagi"));
        if (answer == NSAlertDefaultReturn) {
            sendDonation(nullptr);
        } else if (answer == NSAlertOtherReturn) {
            sendDonationKagi(nullptr);
        }
    };
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    const auto launches = defaults.integerForKey(launchCounterKey);
    if (!launches) {
        ask("Please consider making a donation if you enjoy and use this software.  This message will appear "
            "once more in the future.  Thank you.");
        defaults.setInteger(1, launchCounterKey);
    } else if (*launches == launchOfSecondRequest) {
        ask("This is the 10th time Brindle has been launched on your computer.\nPlease consider making a "
            "donation if you enjoy and use this software.  This message will not appear again.  Thank you.");
        defaults.setInteger(launchOfSecondRequest + 1, launchCounterKey);
    } else if (*launches != 0 && *launches < launchOfSecondRequest) {
        // 0 turns the reminder off permanently.
        defaults.setInteger(*launches + 1, launchCounterKey);
    }
}
