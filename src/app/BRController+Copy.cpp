#include "app/BRController.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/SystemPaths.h"

#include <algorithm>

void BRController::copyState(const BRController& other, bool sheetIsUp) {
    mainBundle = &NSBundle::mainBundle();
    afsProps = other.afsProps ? std::optional(other.afsProps->copy()) : std::nullopt;
    smbConf = other.smbConf ? other.smbConf->copy() : nullptr;
    smbSettingsInPart = other.smbSettingsInPart;
    currentShares_ = other.currentShares_;
    userShares = other.userShares;
    groupShares = other.groupShares;
    groupUserShares = other.groupUserShares;
    lock = other.lock;
    unlock = other.unlock;
    intFormatter = other.intFormatter;
    smbFormatter = other.smbFormatter;
    if (sheetIsUp) {
        beginPasswordSheet();
    }
}

void BRController::rereadSMBConf() {
    const NormalShare* selected = shareAtRow(normalTableView->selectedRow());
    const std::string name = selected != nullptr ? selected->ShareName() : std::string();
    smbConf = std::make_unique<SMBConf>();
    guarded([this] { parseCurrentShares(); }, bugMessage(FailedStep::Shares));
    normalTableView->reloadData();
    const auto found = std::ranges::find(currentShares_, name, &NormalShare::ShareName);
    const bool isThere = selected != nullptr && found != currentShares_.end();
    normalTableView->selectRow(isThere ? static_cast<int>(found - currentShares_.begin()) : -1);
    updateShareTextFields(nullptr);
    revertSMBProperties(nullptr);
}

void BRController::rereadEverything() {
    rereadSMBConf();
    afsProps = NSMutableDictionary::dictionaryWithContentsOfFile(platform::systempath::appleFileServer);
    guarded([this] { parseAFSProperties(); }, bugMessage(FailedStep::AFPSettings));
    refreshPublicList(nullptr);
    updateUserTextFields(nullptr);
    updateUsersGroupsList(nullptr);
    updateGroupsList(nullptr);
    refreshGroupList(nullptr);
}

std::string BRController::selectedUserName() const {
    const BRRow* row = selectedRow(*userTableView, userShares);
    return row != nullptr ? row->at("User") : std::string();
}

std::string BRController::selectedGroupName() const {
    const BRRow* row = selectedRow(*groupTableView, groupShares);
    return row != nullptr ? row->at("Group") : std::string();
}
