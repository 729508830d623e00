#include "review/Blocked.h"

#include "directory/DirectoryRules.h"
#include "model/SMBParser.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTextField.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/samba/SambaAccounts.h"
#include "review/SMBFields.h"
#include "tools/HelperFolders.h"

#include <algorithm>
#include <array>
#include <utility>

namespace review {

namespace {

/// The largest id of the system: the next number means "no id".
constexpr std::string_view largestId = "4294967294";

bool isAboveLargestId(std::string_view number) {
    const bool isNumber = !number.empty() && number.find_first_not_of("0123456789") == std::string_view::npos;
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return isNumber &&
           (number.size() > largestId.size() || (number.size() == largestId.size() && number > largestId));
}

bool isId(const DirectoryChange& change) {
    return change.property == "uid" || change.property == "gid";
}

/// What the user entered that the rule is about.
std::string subjectOf(const DirectoryChange& change) {
    if (change.property && !change.values.empty()) {
        return change.values.front();
    }
    for (const std::string_view place : {"/config/Brindle/", "/users/", "/groups/"}) {
        if (change.path.starts_with(place)) {
            return change.path.substr(place.size());
        }
    }
    return change.path;
}

std::string_view codeOf(const DirectoryChange& change) {
    if (!change.property || change.property == "users") {
        return "name";
    }
    return change.property == "directory_path" ? "folder" : "text";
}

/// The field in which the user entered it, or null.
const NSTextField* fieldOf(const DirectoryChange& change, const std::string& operation,
                           const BROutlets& controls) {
    const std::string property = change.property.value_or("");
    if (operation == "createShare:") {
        return property == "directory_path" ? controls.directory : controls.shareName;
    }
    if (operation == "addNewUser:") {
        return property == "realname" ? controls.fullName
               : property == "uid"    ? controls.uid
               : property == "gid"    ? nullptr
                                      : controls.shortName;
    }
    if (operation == "addNewGroup:") {
        return property == "gid" ? controls.gid : controls.groupName;
    }
    return nullptr;
}

/// Why a tool refuses, translated if the string table has the sentence. The tools write English.
std::string reasonOf(const platform::Status& status) {
    return NSLocalizedString(std::string(status.why()));
}

/// Adds a block unless it is there: some names are written to several records.
void addOnce(Remark block, std::vector<Remark>* blocks) {
    const auto isSame = [&block](const Remark& other) {
        return other.code == block.code && other.sentence == block.sentence;
    };
    if (std::ranges::none_of(*blocks, isSame)) {
        blocks->push_back(std::move(block));
    }
}

std::string recordOf(const DirectoryChange& change) {
    return change.path.substr(change.path.rfind('/') + 1);
}

/// Adds a block if the computer's tools would refuse the change of an account.
void addAccountBlock(const DirectoryChange& change, const std::string& outlet, AccountForecast& accounts,
                     std::vector<Remark>* blocks) {
    const RecordPath path = recordPath(change.path).value();
    const platform::Status status = accounts.take(change);
    if (!status.isOk() && change.operation != "-delete") { // deleting may always be tried
        addOnce({"name",
                 accounts.exists(path) ? stringWithFormat(NSLocalizedString("\"%@\" cannot be changed: %@."),
                                                          path.back(), reasonOf(status))
                                       : stringWithFormat(NSLocalizedString("\"%@\" cannot be used: %@."),
                                                          subjectOf(change), reasonOf(status)),
                 outlet},
                blocks);
    }
}

/// Adds a block if a user is about to be made whose name differs from another one's only in case.
void addOtherUserBlock(const DirectoryChange& change, const std::string& outlet,
                       const DirectoryView& directory, std::vector<Remark>* blocks) {
    const std::string name = recordOf(change);
    if (change.property || change.operation != "-create" || change.path != "/users/" + name) {
        return;
    }
    for (const std::string& other : directory.names("/users")) {
        if (other != name && isEqualIgnoringCase(other, name)) {
            addOnce({"name",
                     stringWithFormat(NSLocalizedString("\"%@\" cannot be used: %@."), name,
                                      stringWithFormat(NSLocalizedString(ruleOfOtherUser), other)),
                     outlet},
                    blocks);
        }
    }
}

/// What the tools say of a user or group that does not exist.
std::string sayMissing(const RecordPath& path) {
    return stringWithFormat(
        NSLocalizedString(path.front() == "users" ? "there is no user \"%@\"" : "there is no group \"%@\""),
        path.back());
}

/// Adds a block if an account is about to be changed that does not exist: one that is still in a menu, or
/// that somebody else has just deleted.
void addMissingAccountBlock(const DirectoryChange& change, const Plan& plan, const DirectoryView& directory,
                            std::vector<Remark>* blocks) {
    const auto path = recordPath(change.path);
    const auto isMade = [&](const PlannedRun& run) {
        const auto other = directoryChange(run.arguments);
        return other && !other->property && other->operation == "-create" && other->path == change.path;
    };
    if (path && path->size() == 2 && isAccount(*path) && change.operation != "-delete" &&
        std::ranges::none_of(plan.runs, isMade) && !directory.record(change.path) && directory.isReadable()) {
        addOnce({"name", stringWithFormat(NSLocalizedString("\"%@\" cannot be changed: %@."), path->back(),
                                          sayMissing(*path))},
                blocks);
    }
}

std::string refusalOf(const DirectoryChange& change, const platform::Status& status) {
    return codeOf(change) == "text"
               ? stringWithFormat(NSLocalizedString("\"%@\" cannot be the \"%@\" of \"%@\": %@."),
                                  subjectOf(change), *change.property, recordOf(change), reasonOf(status))
               : stringWithFormat(NSLocalizedString("\"%@\" cannot be used: %@."), subjectOf(change),
                                  reasonOf(status));
}

void addDirectoryBlocks(const PlannedRun& run, const Plan& plan, const BROutlets& controls,
                        const DirectoryView& directory, std::optional<AccountForecast>& accounts,
                        std::vector<Remark>* blocks) {
    const auto change = directoryChange(run.arguments);
    if (!change) {
        return;
    }
    const NSTextField* field = fieldOf(*change, plan.operation, controls);
    const std::string outlet = field == nullptr ? std::string() : field->name();
    const platform::Status status =
        change->operation == "-delete" ? platform::Status() : checkDirectoryChange(*change);
    if (!status.isOk()) {
        addOnce({codeOf(*change), refusalOf(*change, status), outlet}, blocks);
    } else if (isId(*change) && std::ranges::any_of(change->values, isAboveLargestId)) {
        addOnce({"number",
                 stringWithFormat(
                     NSLocalizedString("The \"%@\" %@ of \"%@\" is too large: the largest one is %@."),
                     *change->property, change->values.front(), recordOf(*change), largestId),
                 outlet},
                blocks);
    } else if (const auto path = recordPath(change->path); accounts && path && isAccount(*path)) {
        addAccountBlock(*change, outlet, *accounts, blocks);
    } else if (!run.output.empty()) {
        addOtherUserBlock(*change, outlet, directory, blocks);
        addMissingAccountBlock(*change, plan, directory, blocks);
    }
}

void addPasswordBlocks(const BROutlets& controls, const DirectoryView& directory,
                       const std::optional<AccountForecast>& accounts, std::vector<Remark>* blocks) {
    const std::string& user = controls.shortName->stringValue();
    if (!accounts && !directory.record("/users/" + user) && directory.isReadable()) {
        blocks->push_back({"name", stringWithFormat(NSLocalizedString("\"%@\" cannot be changed: %@."), user,
                                                    sayMissing({"users", user}))});
    }
    if (const auto status = accounts ? accounts->checkPassword(user) : platform::Status(); !status.isOk()) {
        blocks->push_back({"name", stringWithFormat(NSLocalizedString("\"%@\" cannot be changed: %@."), user,
                                                    reasonOf(status))});
    }
    const auto status = platform::SambaAccounts::checkPassword(controls.passwordSecureText1->stringValue());
    if (!status.isOk()) {
        blocks->push_back({"text",
                           stringWithFormat(NSLocalizedString("The password of \"%@\" cannot be used: %@."),
                                            user, reasonOf(status)),
                           controls.passwordSecureText1->name()});
    }
}

/// Adds a block if the helper would refuse to change the folder, because anybody could replace it.
void addFolderBlock(const PlannedRun& run, const BROutlets& controls, std::vector<Remark>* blocks) {
    const auto status =
        run.arguments.size() == 2 ? tools::checkNotReplaceable(run.arguments[1]) : platform::Status();
    if (status.isOk()) {
        return;
    }
    const std::string text = stringWithFormat(NSLocalizedString("\"%@\" cannot be changed: %@."),
                                              run.arguments[1], reasonOf(status));
    if (std::ranges::find(*blocks, text, &Remark::sentence) == blocks->end()) { // owner and mode are two runs
        blocks->push_back({"folder", text, controls.directory->name()});
    }
}

/// Whether the action updates a share and leaves its folder alone.
bool keepsFolder(const BRController& now) {
    const std::array<const NSControl*, 5> menus{now.owner, now.group, now.ownerPrivs, now.groupPrivs,
                                                now.everyonePrivs};
    return std::ranges::none_of(menus, &NSControl::isEdited) &&
           std::ranges::any_of(now.currentShares(), [&](const NormalShare& share) {
               return share.ShareName() == now.shareName->stringValue() &&
                      share.DirectoryPath() == now.directory->stringValue();
           });
}

/// Adds a block if a system folder is about to be shared: the helper would refuse its owner and mode only
/// after the share is there.
void addSystemFolderBlock(const Plan& plan, const BRController& now, std::vector<Remark>* blocks) {
    const std::string& folder = now.directory->stringValue();
    const bool isWritten = !plan.runs.empty(); // otherwise the operation itself refuses
    if (isWritten && tools::isSystemFolder(folder, tools::FolderHost::Computer) && !keepsFolder(now)) {
        blocks->push_back(
            {"folder",
             stringWithFormat(NSLocalizedString("The folder \"%@\" is the system's own: it cannot be shared "
                                                "anew, and its owner and mode stay as they are."),
                              folder),
             now.directory->name()});
    }
}

bool endsInBackslash(std::string_view value) {
    while (value.ends_with(' ') || value.ends_with('\t')) {
        value.remove_suffix(1);
    }
    return value.ends_with('\\');
}

/// Whether the plan writes a line that sets the key.
bool writes(const Plan& plan, std::string_view key) {
    return std::ranges::any_of(plan.smbConfLines, [&](const LineChange& change) {
        const auto pair = SMBParser::pairOf(change.line);
        return change.kind == LineChange::Kind::Comes && pair && pair->key == key;
    });
}

void addSettingsBlocks(const Plan& plan, const BROutlets& controls, std::vector<Remark>* blocks) {
    const bool keepsLayout = platform::Host::current().services().keepsLayout;
    for (const SMBTextField& field : smbTextFields) {
        const std::string& value = (controls.*field.field)->stringValue();
        // Where lines stay as they are, one that is continued by hand is as good as before.
        if (endsInBackslash(value) && (!keepsLayout || writes(plan, field.key))) {
            blocks->push_back(
                {"text",
                 stringWithFormat(NSLocalizedString("\"%@\" cannot be the value of \"%@\": a value that ends "
                                                    "in a backslash takes in the line after it in smb.conf."),
                                  value, std::string(field.key)),
                 (controls.*field.field)->name()});
        }
    }
}

} // namespace

std::vector<Remark> blocksOf(const Plan& plan, const BRController& now, const DirectoryView& directory,
                             std::optional<AccountForecast> accounts) {
    std::vector<Remark> blocks;
    for (const PlannedRun& run : plan.runs) {
        if (run.tool == platform::systempath::nicl) {
            addDirectoryBlocks(run, plan, now, directory, accounts, &blocks);
        } else if (run.tool == platform::systempath::dscl) {
            addPasswordBlocks(now, directory, accounts, &blocks);
        } else if (platform::Host::current().services().computer != nullptr &&
                   (run.tool == platform::systempath::chown || run.tool == platform::systempath::chmod)) {
            addFolderBlock(run, now, &blocks);
        }
    }
    if (plan.operation == "createShare:" && platform::Host::current().services().computer != nullptr) {
        addSystemFolderBlock(plan, now, &blocks);
    }
    if (plan.operation == "updateSMBProperties:") {
        addSettingsBlocks(plan, now, &blocks);
    }
    return blocks;
}

} // namespace review
