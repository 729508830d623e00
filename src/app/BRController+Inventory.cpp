#include "app/BRController.h"

#include "app/AccountReports.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "privileged/NiutilTask.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_map>

namespace {

constexpr std::size_t userReportPieces = 6;

// Pieces of a report line raise std::out_of_range when they are missing: the parse is abandoned there.
std::vector<std::string> pieces(const std::string& line) {
    return componentsSeparatedByString(line, "\t");
}

NormalShare shareFromRecord(const std::vector<std::string>& record) {
    const auto yesOrNo = [](const std::string& flag) {
        return NSLocalizedString(flag == "1" ? "Yes" : "No");
    };
    NormalShare share;
    share.setShareName(record.at(0));
    share.setAFPShared(record.at(2));
    share.setAFPName(record.at(3));
    if (record.at(1) != reportNoValue) {
        share.setPathandPermissions(record.at(1));
    }
    if (record.at(2) == "1") {
        share.setAFS("+");
    }
    share.setInherit(yesOrNo(record.at(4)));
    share.setInheritOwner(yesOrNo(record.at(5)));
    return share;
}

/// What the inventory wants to know of a section.
struct SectionFacts {
    std::optional<std::string> folder;
    std::optional<std::string> guestAccess;
};

/// The last "path" and "guest ok" up to where both have been seen.
SectionFacts factsOfSection(const SMBShare& section) {
    SectionFacts facts;
    for (const SMBPair& pair : section.Props()) {
        if (pair.Name == "path") {
            facts.folder = std::string(pair.Value);
        } else if (pair.Name == "guest ok") {
            facts.guestAccess = std::string(pair.Value);
        }
        if (facts.folder && facts.guestAccess) {
            break;
        }
    }
    return facts;
}

NormalShare shareFromSection(const SMBShare& section, const SectionFacts& facts) {
    NormalShare share;
    share.setShareName(section.ShareName());
    share.setAFPShared("0");
    share.setAFPName(section.ShareName());
    if (facts.folder) {
        share.setPathandPermissions(*facts.folder);
    }
    if (facts.guestAccess) {
        share.setSMBGuestAccess(*facts.guestAccess);
    }
    share.setSMB("+");
    return share;
}

bool isPublicFolderShared(const std::vector<std::string>& user) {
    static constexpr std::array<std::string_view, 3> notShared = {"<no entry>", "<no value>", reportNoValue};
    return user.size() == userReportPieces && std::ranges::find(notShared, user.at(2)) == notShared.end();
}

/// System accounts are left out of a list unless its check box is on; one in a state of neither lists
/// nothing.
bool isListed(int showSystemState, bool isSystemAccount) {
    return showSystemState == NSOnState || (showSystemState == NSOffState && !isSystemAccount);
}

std::string valueOf(const std::string* text) {
    return text != nullptr ? *text : std::string();
}

} // namespace

void BRController::parseCurrentShares() {
    currentShares_.clear();
    for (const std::string& line : NiutilTask::sharedInstance().currentShares()) {
        currentShares_.push_back(shareFromRecord(pieces(line)));
    }
    joinSMBSections();
}

void BRController::joinSMBSections() {
    // The first row of each folder, kept up to date with the rows that sections add.
    std::unordered_map<std::string, std::size_t> rowOfFolder;
    rowOfFolder.reserve(currentShares_.size() + smbConf->Entries().size());
    for (std::size_t row = 0; row < currentShares_.size(); ++row) {
        rowOfFolder.emplace(currentShares_[row].DirectoryPath(), row);
    }
    for (const auto& entry : smbConf->Entries()) {
        if (entry->Type() != SMBGroup || entry.get() == smbConf->Global() ||
            entry.get() == smbConf->Homes() || entry->ShareName() == "printers") {
            continue;
        }
        const SectionFacts facts = factsOfSection(*entry);
        const auto found = facts.folder ? rowOfFolder.find(*facts.folder) : rowOfFolder.end();
        if (found == rowOfFolder.end()) {
            currentShares_.push_back(shareFromSection(*entry, facts));
            rowOfFolder.emplace(currentShares_.back().DirectoryPath(), currentShares_.size() - 1);
            continue;
        }
        NormalShare& share = currentShares_[found->second];
        share.setSMB("+");
        if (facts.guestAccess) {
            share.setSMBGuestAccess(*facts.guestAccess);
        }
    }
}

void BRController::parseUserShares() {
    userShares.clear();
    const std::string yes = NSLocalizedString("YES");
    const std::string no = NSLocalizedString("NO");
    for (const std::string& line : NiutilTask::sharedInstance().currentUsers()) {
        const std::vector<std::string> user = pieces(line);
        if (isSystemUserId(intValue(user.at(1)))) {
            continue;
        }
        userShares.push_back({{"User", user.at(0)},
                              {"Public Shared", isPublicFolderShared(user) ? yes : no},
                              {"UID", user.at(1)},
                              {"Full Name", user.at(3)},
                              {"GID", user.at(4)}});
    }
}

void BRController::parseGroupShares() {
    groupShares.clear();
    for (const std::string& line : NiutilTask::sharedInstance().currentGroups()) {
        const std::vector<std::string> record = pieces(line);
        if (isListed(showSystemUsersGroups3->state(), isSystemGroup(intValue(record.at(0)), record.at(1)))) {
            groupShares.push_back(
                {{"GID", record.at(0)}, {"Group", record.at(1)}, {"Users in Group", record.at(2)}});
        }
    }
}

void BRController::parseGroupUserShares() {
    groupUserShares.clear();
    for (const std::string& line : NiutilTask::sharedInstance().currentUsers()) {
        const std::vector<std::string> user = pieces(line);
        if (isListed(showSystemUsersGroups3->state(), isSystemUserId(intValue(user.at(1))))) {
            groupUserShares.push_back(user.at(0));
        }
    }
}

void BRController::refreshNormalList(NSControl* /*sender*/) {
    parseCurrentShares();
    normalTableView->reloadData();
    // The selected row stays selected, and may hold another share now.
    showSelectedShareName();
}

void BRController::refreshPublicList(NSControl* /*sender*/) {
    parseUserShares();
    reloadUserTable();
}

const NormalShare* BRController::shareAtRow(int row) const {
    const auto index = static_cast<std::size_t>(row);
    return row >= 0 && index < currentShares_.size() ? &currentShares_[index] : nullptr;
}

int BRController::numberOfRowsInTableView(NSTableView* table) {
    std::size_t rows = 0;
    if (table == normalTableView) {
        rows = currentShares_.size();
    } else if (table == userTableView) {
        rows = userShares.size();
    } else if (table == groupTableView) {
        rows = groupShares.size();
    } else if (table == groupUsersTableView) {
        rows = groupUserShares.size();
    }
    return static_cast<int>(rows);
}

std::string BRController::tableViewObjectValueForTableColumn(NSTableView* table, const NSTableColumn& column,
                                                             int row) {
    // A list that was read again may be shorter than its table, until the table is reloaded.
    if (row < 0 || row >= numberOfRowsInTableView(table)) {
        return {};
    }
    const auto index = static_cast<std::size_t>(row);
    if (table == normalTableView) {
        return valueOf(currentShares_[index].valueForKey(column.identifier));
    }
    if (table == userTableView) {
        return valueOf(userShares[index].valueForKey(column.identifier));
    }
    if (table == groupTableView) {
        return valueOf(groupShares[index].valueForKey(column.identifier));
    }
    return groupUserShares[index];
}

void BRController::tableViewSelectionDidChange(NSTableView* table) {
    if (table == normalTableView) {
        updateShareTextFields(nullptr);
    } else if (table == userTableView) {
        updateUserTextFields(nullptr);
    } else if (table == groupTableView) {
        updateGroupTextFields(nullptr);
    }
}
