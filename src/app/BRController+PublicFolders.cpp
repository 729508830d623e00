#include "app/BRController.h"

#include "app/DirectoryRecords.h"
#include "privileged/NiutilTask.h"

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
    if (const BRRow* row = selectedRow(*userTableView, userShares)) {
        NiutilTask::sharedInstance().changeUserShare(row->at("User"), enable);
        showChangedPublicShares();
    }
}

void BRController::changePublicSharesAbove(std::int64_t highestIdLeftOut, bool enable) {
    NiutilTask& task = NiutilTask::sharedInstance();
    for (const UserRecord& user : recordsOfReport<UserRecord>(task.currentUsers())) {
        if (user.id() > highestIdLeftOut) {
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
