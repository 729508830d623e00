#include "review/UndoAccounts.h"

#include "directory/DirectoryRules.h"
#include "platform/foundation/Host.h"
#include "platform/netinfo/AccountNumber.h"

#include <algorithm>
#include <utility>

namespace review {

namespace {

constexpr std::string_view users = "/users";
constexpr std::string_view groups = "/groups";

bool isBelow(const std::string& path, std::string_view folder) {
    return path.starts_with(std::string(folder) + "/");
}

std::string numberProperty(std::string_view folder) {
    return folder == users ? "uid" : "gid";
}

} // namespace

std::string UndoAccounts::nameFor(const std::optional<std::string>& name, std::string_view folder,
                                  unsigned number) const {
    if (!name) {
        return {};
    }
    // chown looks names up in the directory first, where it may be the name of another account.
    const std::string now = directory_.value(std::string(folder) + "/" + *name, numberProperty(folder));
    bool isNumber = false;
    return now.empty() || platform::accountNumber(now, &isNumber) == number ? *name : "";
}

std::string UndoAccounts::ownerName(uid_t number) const {
    return nameFor(platform::Host::current().accountNames().userName(number), users, number);
}

std::string UndoAccounts::groupName(gid_t number) const {
    return nameFor(platform::Host::current().accountNames().groupName(number), groups, number);
}

std::string UndoAccounts::numberOf(const std::string& path, const RecordChange::State& state) {
    for (const std::string_view folder : {users, groups}) {
        if (state && isBelow(path, folder)) {
            return firstValueOf(*state, numberProperty(folder));
        }
    }
    return {};
}

std::vector<std::string> UndoAccounts::withNumber(const std::string& path, const std::string& number) {
    const std::string_view folder = isBelow(path, users) ? users : groups;
    const Index& byNumber = index(folder, numberProperty(folder));
    const auto found = byNumber.find(number);
    return found == byNumber.end() ? std::vector<std::string>() : found->second;
}

std::vector<std::string> UndoAccounts::groupsOf(const std::string& user) {
    const Index& byMember = index(groups, "users");
    const auto found = byMember.find(user);
    return found == byMember.end() ? std::vector<std::string>() : found->second;
}

const UndoAccounts::Index& UndoAccounts::index(std::string_view folder, const std::string& property) {
    const auto [place, isNew] = indices_.try_emplace(std::string(folder) + " " + property);
    if (isNew) {
        for (const DirectoryView::Record& record : directory_.records(std::string(folder))) {
            for (const std::string& value : valuesOf(record, property)) {
                place->second[value].push_back(std::string(folder) + "/" + firstValueOf(record, "name"));
            }
        }
    }
    return place->second;
}

bool UndoAccounts::losesMembers(const RecordChange& change) {
    if (!isBelow(change.path, groups) || !change.before || !change.after) {
        return false;
    }
    const auto before = valuesOf(*change.before, "users");
    const auto isBefore = [&before](const std::string& member) {
        return std::ranges::find(before, member) != before.end();
    };
    if (before.empty() || !std::ranges::all_of(valuesOf(*change.after, "users"), isBefore)) {
        return false;
    }
    if (!std::exchange(hasReadRules_, true)) {
        rules_ = AccountForecast::ofComputer();
    }
    const DirectoryChange restores{"-create", change.path, "users", {before.begin(), before.end()}};
    return rules_ && checkDirectoryChange(restores).isOk() && !rules_->take(restores).isOk();
}

} // namespace review
