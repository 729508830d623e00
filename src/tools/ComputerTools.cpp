#include "tools/ComputerTools.h"

#include "directory/AccountRules.h"
#include "platform/posix/Secret.h"
#include "platform/samba/ComputerPasswords.h"
#include "platform/samba/UserShares.h"
#include "tools/AccountPrograms.h"
#include "tools/ComputerDirectory.h"
#include "tools/ComputerGroup.h"
#include "tools/ComputerUser.h"
#include "tools/StoreChange.h"

#include <optional>
#include <string_view>
#include <vector>

namespace tools {

using platform::ComputerPasswords;
using platform::PublicFolderOwner;
using platform::Status;
using platform::Store;

namespace {

constexpr const char* sharedFolder = "sharedDir";

/// Carries out a change that does not concern an account.
Status changeShares(const DirectoryPlace& place, const DirectoryChange& change) {
    const auto lock =
        ComputerLock::take(place.computer->files, place.waitSeconds); // this also makes the store
    if (!lock.isOk()) {
        return refusal(change, lock.status().text());
    }
    Store store(place.storeFile, Store::Opening::Existing, place.waitSeconds);
    DirectorySession::AccountChanges none;
    Status status = changeStore(store, change, none);
    if (status.isOk()) {
        status = store.commit();
    }
    return status;
}

/// Sets the user's own password on the computer. With `option` "--encrypted", `password` is a hash.
Status setOwnPassword(const std::string& user, std::string_view password, const std::string& option = {}) {
    std::string line;
    line.reserve(user.size() + password.size() + 2); // so that growing leaves no copy of it in memory
    line.append(user).append(":").append(password).append("\n");
    std::vector<std::string> words = {accountprogram::chpasswd};
    if (!option.empty()) {
        words.push_back(option);
    }
    Status status = runAccountProgram(words, line);
    platform::wipe(line);
    return status;
}

Status checkPasswordOf(ComputerDirectory& directory, const std::string& user, const std::string& password) {
    constexpr const char* what = "cannot set the password of";
    const platform::UserLine* line = directory.accounts().findUser(user);
    if (line == nullptr) {
        return Status::failure(what, user, "there is no such user; create it first");
    }
    if (password.empty()) {
        return Status::failure(what, user, "an empty one would let everybody in; choose one");
    }
    return checkOrdinaryUser(*line, directory.hasMade(RecordPath{"users", user}),
                             directory.accounts().limits);
}

/// Whether an administrator has locked a password that there was (usermod --lock puts "!" before its hash).
bool isLocked(std::string_view hash) {
    return hash.size() > 1 && hash[0] == '!' && hash[1] != '!' && hash[1] != '*';
}

PublicFolderOwner ownerOf(const platform::UserLine& line) {
    return {line.name, line.uid, line.gid, line.home};
}

/// Whether the directory says that the user's Public folder is shared.
bool sharesPublicFolder(Store& store, const std::string& user) {
    const auto record = store.find(RecordPath{"users", user});
    const auto values = record ? store.values(*record, sharedFolder) : std::nullopt;
    return values && !values->empty() && values->front() == "Public";
}

/// Offers the user's Public folder or withdraws the offer, depending on what `change` has left in the
/// directory. `before` is the account before the change, `wasShared` whether its folder was shared. It is no
/// failure if an account has no folder to offer.
Status followPublicFolder(const DirectoryPlace& place, const DirectoryChange& change,
                          const platform::UserLine& before, bool wasShared,
                          const platform::AccountLimits& limits) {
    const bool isDeletion = change.operation == "-delete" && !change.property;
    const bool isRenaming = change.property == "name";
    if (!isDeletion && !isRenaming && change.property != sharedFolder) {
        return {};
    }
    PublicFolderOwner owner = ownerOf(before);
    owner.name = isRenaming && !change.values.empty() ? change.values.front() : before.name;
    const bool canBeOffered =
        platform::whyNoPublicFolder(owner, limits.lowestUser, limits.highestUser) == nullptr;
    if (!canBeOffered && !wasShared) {
        return {}; // without asking Samba, which takes longer than making a user
    }
    bool isOffered = false;
    {
        Store store(place.storeFile, Store::Opening::Existing, place.waitSeconds);
        isOffered = !isDeletion && canBeOffered && sharesPublicFolder(store, owner.name);
        if (!store.status().isOk()) {
            return store.status();
        }
    }
    Status status = isOffered && !isRenaming ? Status() : platform::takePublicFolderAway(before.name);
    return status.isOk() && isOffered ? platform::offerPublicFolder(owner) : status;
}

/// The change that would undo `change` of a property.
DirectoryChange changeBack(Store& store, const RecordPath& path, const DirectoryChange& change) {
    DirectoryChange back = change;
    const auto record = store.find(path);
    const auto values = record && change.property ? store.values(*record, *change.property) : std::nullopt;
    back.operation = values ? "-create" : "-delete";
    back.values = values.value_or(std::vector<std::string>());
    return back;
}

} // namespace

Status changeComputer(const DirectoryPlace& place, const DirectoryChange& change) {
    const RecordPath path = recordPath(change.path).value();
    if (!isAccount(path)) {
        return changeShares(place, change);
    }
    ComputerDirectory directory(place);
    if (!directory.status().isOk()) {
        return refusal(change, directory.status().text());
    }
    if (path.front() != "users") {
        return ComputerGroup(directory, change).run();
    }
    const platform::UserLine* line = directory.accounts().findUser(path[1]);
    const auto before = line != nullptr ? std::optional(*line) : std::nullopt;
    const bool wasShared = before && sharesPublicFolder(directory.store(), path[1]);
    const DirectoryChange back = changeBack(directory.store(), path, change);
    Status status = ComputerUser(directory, change).run();
    if (status.isOk() && before) {
        status = directory.commit();
    }
    if (!status.isOk() || !before) {
        return status;
    }
    status = followPublicFolder(place, change, *before, wasShared, directory.accounts().limits);
    if (!status.isOk() && change.property == sharedFolder) {
        // The directory must not say that a folder is shared when it is not. If this fails too, the first
        // failure is the one to report.
        static_cast<void>(ComputerUser(directory, back).run());
        static_cast<void>(directory.commit());
    }
    return status;
}

Status setComputerPassword(const DirectoryPlace& place, const std::string& user,
                           const std::string& password) {
    ComputerDirectory directory(place);
    if (!directory.status().isOk()) {
        return directory.status();
    }
    Status status = checkPasswordOf(directory, user, password);
    if (status.isOk()) {
        status = directory.commit();
    }
    if (!status.isOk()) {
        return status;
    }
    std::string before = passwordHashOf(user);
    status = setOwnPassword(user, password);
    if (status.isOk()) {
        if (isLocked(before)) {
            // The password is meant for shares; logging in stays as the administrator wants it.
            status = runAccountProgram({accountprogram::usermod, "--lock", "--", user});
        }
        status = status.isOk() ? ComputerPasswords::set(user, password) : status;
        if (!status.isOk() && !before.empty()) {
            // If this fails too, the first failure is the one to report.
            static_cast<void>(setOwnPassword(user, before, "--encrypted"));
        }
    }
    platform::wipe(before);
    return status;
}

} // namespace tools
