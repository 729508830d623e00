#include "app/BRController.h"

#include "app/DirectoryRecords.h"
#include "platform/foundation/NSBundle.h"
#include "privileged/NiutilTask.h"

#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace {

NormalShare shareFromRecord(const ShareRecord& record) {
    const auto yesOrNo = [](bool flag) { return NSLocalizedString(flag ? "Yes" : "No"); };
    NormalShare share;
    share.setHasRecord(true);
    share.setShareName(record.name);
    share.setAFPShared(record.afpShared);
    share.setAFPName(record.afpName);
    if (record.folder != reportNoValue) {
        share.setPathandPermissions(record.folder);
    }
    if (record.afpShared == "1") {
        share.setAFS("+");
    }
    share.setInherit(yesOrNo(record.inheritsPrivileges));
    share.setInheritOwner(yesOrNo(record.inheritsOwner));
    return share;
}

/// The values that the inventory needs from a section.
struct SectionFacts {
    std::optional<std::string> folder;
    std::optional<std::string> guestAccess;
};

/// Returns the last "path" and "guest ok" up to the point where both have been seen.
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

/// A list leaves out system accounts unless its check box is on. When the box is neither on nor off, nothing
/// is listed.
bool isListed(int showSystemState, bool isSystemAccount) {
    return showSystemState == NSOnState || (showSystemState == NSOffState && !isSystemAccount);
}

std::string valueOf(const std::string* text) {
    return text != nullptr ? *text : std::string();
}

constexpr std::array<std::string_view, BRRow::mostColumns> userColumns = {"User", "Public Shared", "UID",
                                                                          "Full Name", "GID"};
constexpr std::array<std::string_view, 3> groupColumns = {"GID", "Group", "Users in Group"};

/// The first row of each folder: a hash table of rows' numbers in one piece of memory, because a computer may
/// have a hundred thousand shares.
class FirstRows {
  public:
    /// `rows` may grow up to its capacity.
    explicit FirstRows(const std::vector<NormalShare>& rows)
        : rows_(&rows), places_(rows.capacity() * 3 / 2 + 1, none) {}

    /// Does nothing when there is a row with the same folder.
    void add(std::uint32_t row) {
        std::uint32_t& place = placeOf((*rows_)[row].DirectoryPath());
        place = place == none ? row : place;
    }

    [[nodiscard]] std::optional<std::uint32_t> find(std::string_view folder) {
        const std::uint32_t row = placeOf(folder);
        return row == none ? std::nullopt : std::optional(row);
    }

  private:
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    /// The folder's place, or the free one where it belongs. At most two thirds of the places are taken.
    [[nodiscard]] std::uint32_t& placeOf(std::string_view folder) {
        std::size_t place = std::hash<std::string_view>()(folder) % places_.size();
        while (places_[place] != none && (*rows_)[places_[place]].DirectoryPath() != folder) {
            place = (place + 1) % places_.size();
        }
        return places_[place];
    }

    const std::vector<NormalShare>* rows_;
    std::vector<std::uint32_t> places_;
};

} // namespace

void BRController::parseCurrentShares() {
    currentShares_.clear();
    const NiutilTask::Report lines = NiutilTask::sharedInstance().currentShares();
    // Rows are large: reserve, so that none is moved. FirstRows takes its size from this.
    currentShares_.reserve(lines->size() + smbConf->Entries().size());
    for (const std::string& line : *lines) {
        currentShares_.push_back(shareFromRecord(ShareRecord(line)));
    }
    joinSMBSections();
}

void BRController::joinSMBSections() {
    FirstRows firstRows(currentShares_);
    for (std::uint32_t row = 0; row < currentShares_.size(); ++row) {
        firstRows.add(row);
    }
    for (const auto& entry : smbConf->Entries()) {
        if (entry->Type() != SMBGroup || entry.get() == smbConf->Global() ||
            entry.get() == smbConf->Homes() || entry->ShareName() == "printers") {
            continue;
        }
        const SectionFacts facts = factsOfSection(*entry);
        const auto row = facts.folder ? firstRows.find(*facts.folder) : std::nullopt;
        if (!row) {
            currentShares_.push_back(shareFromSection(*entry, facts));
            firstRows.add(static_cast<std::uint32_t>(currentShares_.size() - 1));
            continue;
        }
        NormalShare& share = currentShares_[*row];
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
    const NiutilTask::Report users = NiutilTask::sharedInstance().currentUsers();
    userShares.reserve(users->size());
    for (const std::string& line : *users) {
        const UserLine user(line);
        if (!user.isSystem()) {
            userShares.emplace_back(userColumns, std::initializer_list<std::string_view>{
                                                     user.name, user.sharesPublicFolder ? yes : no, user.uid,
                                                     user.fullName, user.gid});
        }
    }
}

void BRController::parseGroupShares() {
    groupShares.clear();
    const NiutilTask::Report groups = NiutilTask::sharedInstance().currentGroups();
    for (const std::string& line : *groups) {
        const GroupRecord record(line);
        if (isListed(showSystemUsersGroups3->state(), record.isSystem())) {
            groupShares.push_back({groupColumns, {record.gid, record.name, record.memberField}});
        }
    }
}

void BRController::parseGroupUserShares() {
    groupUserShares.clear();
    const NiutilTask::Report users = NiutilTask::sharedInstance().currentUsers();
    for (const std::string& line : *users) {
        const UserLine user(line);
        if (isListed(showSystemUsersGroups3->state(), user.isSystem())) {
            groupUserShares.emplace_back(user.name);
        }
    }
}

void BRController::refreshNormalList(NSControl* /*sender*/) {
    parseCurrentShares();
    normalTableView->reloadData();
    // The selected row stays selected, but may now hold another share.
    showSelectedShareName();
}

void BRController::refreshPublicList(NSControl* /*sender*/) {
    parseUserShares();
    userTableView->reloadData();
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
    // After a reread, the list may be shorter than its table until the table is reloaded.
    if (row < 0 || row >= numberOfRowsInTableView(table)) {
        return {};
    }
    const auto index = static_cast<std::size_t>(row);
    if (table == normalTableView) {
        return valueOf(currentShares_[index].valueForKey(column.identifier));
    }
    if (table == userTableView) {
        return std::string(userShares[index].valueForKey(column.identifier).value_or(""));
    }
    if (table == groupTableView) {
        return std::string(groupShares[index].valueForKey(column.identifier).value_or(""));
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
