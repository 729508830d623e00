#include "BRController.h"

#include "AccountReports.h"
#include "NiutilTask.h"

void BRController::enableSelectedPublicShare(NSControl* /*sender*/) {
    changeSelectedPublicShare(true);
}

void BRController::disableSelectedPublicShare(NSControl* /*sender*/) {
    changeSelectedPublicShare(false);
}

void BRController::enableAllPublicShares(NSControl* /*sender*/) {
    // A user with the id 100 is listed and can be turned on alone, but is left out here.
    changePublicSharesAbove(highestSystemUserId + 1, true);
}

void BRController::disableAllPublicShares(NSControl* /*sender*/) {
    changePublicSharesAbove(highestSystemUserId, false);
}

void BRController::changeSelectedPublicShare(bool enable) {
    const int row = userTableView->selectedRow();
    if (row < 0 || static_cast<std::size_t>(row) >= userShares.size()) {
        return;
    }
    NiutilTask::sharedInstance().changeUserShare(userShares[static_cast<std::size_t>(row)].at("User"),
                                                 enable);
    showChangedPublicShares();
}

void BRController::changePublicSharesAbove(std::int32_t highestIdLeftOut, bool enable) {
    NiutilTask& task = NiutilTask::sharedInstance();
    for (const UserRecord& user : recordsOfReport<UserRecord>(task.currentUsers())) {
        if (user.id > highestIdLeftOut) {
            task.changeUserShare(user.name, enable);
        }
    }
    showChangedPublicShares();
}

void BRController::showChangedPublicShares() {
    NiutilTask::sharedInstance().restartAFS();
    parseUserShares();
    userTableView->reloadData();
}
