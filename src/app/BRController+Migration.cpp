#include "app/BRController.h"

#include "app/Alerts.h"
#include "directory/ReportLine.h"
#include "privileged/NiutilTask.h"

#include <algorithm>

namespace {

/// Records of older systems lack at least one of these properties.
bool isOutdated(const NormalShare& share) {
    return share.AFPShared() == reportNoValue || share.AFPName() == reportNoValue;
}

} // namespace

void BRController::checkSharesFor10pt2() {
    if (std::ranges::none_of(currentShares_, isOutdated)) {
        return;
    }
    const int answer = NSRunAlertPanel(
        NSLocalizedString("Shares Are Not Updated for Jaguar"),
        NSLocalizedString(
            "Your shares are not updated for Jaguar (Mac OS X 10.2).  Do you want to update them now?"),
        NSLocalizedString("Yes"), NSLocalizedString("No"), std::nullopt);
    if (answer == NSAlertDefaultReturn) {
        updateSharesFor10pt2(nullptr);
    }
}

void BRController::updateSharesFor10pt2(NSControl* /*sender*/) {
    NiutilTask& task = NiutilTask::sharedInstance();
    for (const NormalShare& share : currentShares_) {
        // A share that only smb.conf knows must not be given a record: that would publish its folder over
        // AFP.
        if (!share.hasRecord()) {
            continue;
        }
        task.deleteShare(share.ShareName());
        if (!task.createShare(share.ShareName(), share.DirectoryPath(), 1, 0, 0)) {
            task.deleteShare(share.ShareName());
            showCreateShareFailed(share.ShareName());
        }
    }
    showAlert("Shares Updated for Jaguar",
              "Your shares have been updated.  You must now restart your computer or restart the "
              "AppleFileServer for these changes to take effect.");
}
