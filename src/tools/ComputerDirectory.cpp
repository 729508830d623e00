#include "tools/ComputerDirectory.h"

#include "platform/foundation/NSLog.h"
#include "platform/netinfo/AccountNumber.h"
#include "platform/posix/Secret.h"
#include "platform/samba/ComputerPasswords.h"
#include "tools/AccountPrograms.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace tools {

using platform::ComputerPasswords;
using platform::GroupLine;
using platform::Status;
using platform::Store;
using platform::UserLine;

namespace {

using State = ComputerDirectory::State;

constexpr std::array<std::pair<State, std::string_view>, 3> states = {
    {{State::Collecting, "collecting"}, {State::Made, platform::accountStateMade}, {State::Found, "found"}}};

const char* folderOf(bool isUser) {
    return isUser ? "users" : "groups";
}

const char* numberNameOf(bool isUser) {
    return isUser ? "uid" : "gid";
}

} // namespace

ComputerDirectory::ComputerDirectory(const DirectoryPlace& place) : place_(place) {
    accounts_.limits = platform::readAccountLimits();
    accounts_.user = place_.computer->user;
    lock_ = ComputerLock::take(place_.computer->files, place_.waitSeconds);
    status_ = lock_->status();
    if (status_.isOk()) {
        status_ = readLines();
    }
    if (status_.isOk()) {
        status_ = finishKilledRun();
    }
    if (status_.isOk()) {
        takeAwayGoneAccounts();
        status_ = store().status();
    }
}

Store& ComputerDirectory::store() {
    if (!store_) {
        store_ = std::make_unique<Store>(place_.storeFile, Store::Opening::Existing, place_.waitSeconds);
    }
    return *store_;
}

Status ComputerDirectory::commit() {
    const std::unique_ptr<Store> store = std::exchange(store_, nullptr);
    return store ? store->commit() : Status();
}

std::optional<State> ComputerDirectory::stateOf(Store::Record record) {
    const auto values = store().values(record, platform::accountStateProperty);
    if (!values || values->size() != 1) {
        return std::nullopt;
    }
    const auto* const found =
        std::ranges::find(states, values->front(), &decltype(states)::value_type::second);
    return found == states.end() ? std::nullopt : std::optional(found->first);
}

void ComputerDirectory::setState(Store::Record record, State state) {
    const auto* const found = std::ranges::find(states, state, &decltype(states)::value_type::first);
    store().setValues(record, platform::accountStateProperty, std::vector{std::string(found->second)});
}

bool ComputerDirectory::hasMade(const RecordPath& path) {
    const auto record = store().find(path);
    return record && stateOf(*record) == State::Made;
}

Status ComputerDirectory::readLines() {
    auto users = platform::readUserLines(files_);
    auto groups = platform::readGroupLines(files_);
    for (const Status* status : {&users.status(), &groups.status()}) {
        if (!status->isOk()) {
            return *status;
        }
    }
    accounts_.users = std::move(*users);
    accounts_.groups = std::move(*groups);
    return {};
}

bool ComputerDirectory::exists(bool isUser, const UnfinishedChange::Account& account) const {
    if (isUser) {
        const UserLine* line = accounts_.findUser(account.name);
        return line != nullptr && line->uid == account.number;
    }
    const GroupLine* line = accounts_.findGroup(account.name);
    return line != nullptr && line->gid == account.number;
}

Status ComputerDirectory::finishKilledRun() {
    auto change = UnfinishedChange::read(place_.computer->files.unfinishedChange());
    if (!change.isOk() || !*change) {
        return change.status();
    }
    Status status = settle(**change);
    platform::wipe((*change)->sambaAccount);
    return status;
}

Status ComputerDirectory::carryThrough(UnfinishedChange change, const std::vector<std::string>& program) {
    Status status = commit();
    if (status.isOk() && change.isUser) {
        auto account = ComputerPasswords::accountToRemove(change.before.name);
        status = account.status();
        if (account.isOk()) {
            change.sambaAccount = std::move(*account);
        }
    }
    if (status.isOk()) {
        status = change.write(place_.computer->files.unfinishedChange());
    }
    if (!status.isOk()) {
        return status;
    }
    if (!change.sambaAccount.empty()) {
        // Now, because such a database may not find a user whose account is gone.
        status = ComputerPasswords::remove(change.before.name);
    }
    if (status.isOk()) {
        status = runAccountProgram(program);
    }
    Status settled = readLines();
    if (settled.isOk()) {
        settled = settle(change);
    }
    platform::wipe(change.sambaAccount);
    return status.isOk() ? settled : status;
}

Status ComputerDirectory::settle(const UnfinishedChange& change) {
    const bool isDeleted = change.after.name.empty();
    const bool isThere = exists(change.isUser, change.before);
    const bool isDone = isDeleted ? !isThere : exists(change.isUser, change.after);
    if (isDone) {
        if (const Status status = keepOwnGroup(change); !status.isOk()) {
            // Only logged, because the user has been deleted and the rest must go on.
            NSLog("The group %@ went with its user: %@", change.before.name, status.text());
        }
        followInStore(change);
        if (Status status = commit(); !status.isOk()) {
            return status;
        }
    }
    if (change.isUser && (isDone || isThere)) {
        if (Status status = followInSamba(change, isDone ? change.after : change.before); !status.isOk()) {
            return status; // the next run tries again
        }
    }
    return UnfinishedChange::forget(place_.computer->files.unfinishedChange());
}

Status ComputerDirectory::followInSamba(const UnfinishedChange& change,
                                        const UnfinishedChange::Account& account) {
    Status status;
    if (!change.sambaAccount.empty()) {
        status = account.name.empty()
                     ? Status()
                     : ComputerPasswords::putBack(change.sambaAccount, account.name, account.number,
                                                  place_.computer->files.sambaAccount());
    } else if (account.name != change.before.name) {
        status = ComputerPasswords::follow(change.before.name, account.name);
    }
    if (account.name.empty() || account.number != change.before.number) {
        if (const Status forgotten = ComputerPasswords::forgetNumbers(); !forgotten.isOk()) {
            // Only logged, because what is stored is right.
            NSLog("Samba may remember the old number of %@ for a week: %@", change.before.name,
                  forgotten.text());
        }
    }
    return status;
}

Status ComputerDirectory::keepOwnGroup(const UnfinishedChange& change) {
    const unsigned gid = change.after.number;
    if (!change.isUser || !change.after.name.empty() || gid == 0 ||
        accounts_.findGroup(change.before.name) != nullptr) {
        return {};
    }
    // userdel deletes the group too if USERGROUPS_ENAB is on (login.defs(5)).
    Status status =
        runAccountProgram({accountprogram::groupadd, "--gid", std::to_string(gid), "--", change.before.name});
    return status.isOk() ? readLines() : status;
}

void ComputerDirectory::followInStore(const UnfinishedChange& change) {
    const std::string folder = folderOf(change.isUser);
    const auto record = store().find(RecordPath{folder, change.before.name});
    if (!record) {
        return;
    }
    if (change.after.name.empty()) {
        store().removeRecord(*record);
        return;
    }
    if (change.after.name != change.before.name) {
        if (const auto taken = store().find(RecordPath{folder, change.after.name})) {
            store().removeRecord(*taken); // left by an account that was never made
        }
        store().rename(*record, change.after.name);
    }
    store().setValues(*record, numberNameOf(change.isUser),
                      std::vector{platform::directoryNumber(change.after.number)});
}

void ComputerDirectory::takeAwayGoneAccounts() {
    for (const bool isUser : {true, false}) {
        const auto folder = store().find(RecordPath{folderOf(isUser)});
        if (!folder) {
            continue;
        }
        std::unordered_map<std::string_view, unsigned> numbers;
        if (isUser) {
            std::ranges::for_each(accounts_.users,
                                  [&](const UserLine& line) { numbers.emplace(line.name, line.uid); });
        } else {
            std::ranges::for_each(accounts_.groups,
                                  [&](const GroupLine& line) { numbers.emplace(line.name, line.gid); });
        }
        const platform::RecordBlock records = store().children(*folder);
        const auto first = [&](const auto& record, std::string_view property) {
            const auto* const found = records.property(record, property);
            return found == nullptr || records.values(*found).empty() ? std::string_view()
                                                                      : records.values(*found).front();
        };
        for (const auto& record : records.records()) {
            const auto line = numbers.find(first(record, "name"));
            const bool isCollecting = first(record, platform::accountStateProperty) == states.front().second;
            const bool isGone = line == numbers.end()
                                    ? !isCollecting
                                    : isCollecting || first(record, numberNameOf(isUser)) !=
                                                          platform::directoryNumber(line->second);
            if (isGone) {
                store().removeRecord(record.id);
            }
        }
    }
}

} // namespace tools
