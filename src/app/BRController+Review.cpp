#include "app/BRController.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/SystemPaths.h"

#include <algorithm>

namespace {

/// Returns the row of the share with the same name and folder, otherwise of one with the same name; -1
/// without either. Two rows have one name when a share's folder was changed and its section still has the
/// old one.
int rowLike(const NormalShare& share, const std::vector<NormalShare>& shares) {
    auto found = std::ranges::find_if(shares, [&share](const NormalShare& each) {
        return each.ShareName() == share.ShareName() && each.DirectoryPath() == share.DirectoryPath();
    });
    if (found == shares.end()) {
        found = std::ranges::find(shares, share.ShareName(), &NormalShare::ShareName);
    }
    return found == shares.end() ? -1 : static_cast<int>(found - shares.begin());
}

} // namespace

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
    const auto before = selected != nullptr ? std::optional(*selected) : std::nullopt;
    smbConf = std::make_unique<SMBConf>();
    guarded([this] { parseCurrentShares(); }, bugMessage(FailedStep::Shares));
    normalTableView->reloadData();
    normalTableView->selectRow(before ? rowLike(*before, currentShares_) : -1);
    updateShareTextFields(nullptr);
    revertSMBProperties(nullptr);
}

void BRController::rereadAFPSettings() {
    afsProps = NSMutableDictionary::dictionaryWithContentsOfFile(platform::systempath::appleFileServer);
    guarded([this] { parseAFSProperties(); }, bugMessage(FailedStep::AFPSettings));
}

void BRController::rereadEverything() {
    rereadSMBConf();
    rereadAFPSettings();
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
