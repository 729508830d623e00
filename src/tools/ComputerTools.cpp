#include "tools/ComputerTools.h"

#include "platform/netinfo/AccountFiles.h"
#include "platform/posix/Secret.h"
#include "platform/samba/ComputerPasswords.h"
#include "tools/AccountPrograms.h"
#include "tools/ComputerDirectory.h"
#include "tools/ComputerGroup.h"
#include "tools/ComputerUser.h"
#include "tools/StoreChange.h"

#include <initializer_list>
#include <string_view>
#include <vector>

using platform::ComputerPasswords;
using platform::Status;
using platform::Store;

namespace {

/// A change that reaches no account.
Status changeShares(const DirectoryPlace& place, const DirectoryChange& change) {
    const auto lock = ComputerLock::take(place.computer->files, place.waitSeconds); // it makes the store
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

/// Sets the password by which the computer knows the user. With `option` "--encrypted" it is a hash.
Status setOwnPassword(const std::string& user, std::string_view password, const std::string& option = {}) {
    std::string line;
    line.reserve(user.size() + password.size() + 2); // so that no copy of it is left behind by growing
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
    const platform::UserLine* line = directory.findUser(user);
    if (line == nullptr) {
        return Status::failure(what, user, "there is no such user; create it first");
    }
    if (password.empty()) {
        return Status::failure(what, user, "an empty one would let everybody in; choose one");
    }
    return checkOrdinaryUser(*line, directory.hasMade(RecordPath{"users", user}), directory.limits());
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
    if (path == RecordPath{"groups", platform::administratorsGroup}) {
        return refusal(change, whyAdministratorsStay(directory));
    }
    return path.front() == "users" ? ComputerUser(directory, change).run()
                                   : ComputerGroup(directory, change).run();
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
        status = ComputerPasswords::set(user, password);
        if (!status.isOk() && !before.empty()) {
            // Where this fails too, the first failure says why.
            static_cast<void>(setOwnPassword(user, before, "--encrypted"));
        }
    }
    platform::wipe(before);
    return status;
}
