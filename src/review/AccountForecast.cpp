#include "review/AccountForecast.h"

#include "platform/foundation/Host.h"
#include "platform/foundation/NSLog.h"
#include "platform/netinfo/AccountNumber.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/MadeAccounts.h"
#include "platform/netinfo/Store.h"
#include "tools/SudoUser.h"

#include <algorithm>
#include <utility>

#include <unistd.h>

namespace review {

namespace {

using platform::Status;

bool isUser(const RecordPath& path) {
    return path.front() == "users";
}

} // namespace

std::optional<AccountForecast> AccountForecast::ofComputer() {
    const platform::LocalDomain& domain = platform::Host::current().localDomain().original();
    const auto files = domain.accountFiles();
    if (!files) {
        return std::nullopt;
    }
    auto users = platform::readUserLines(*files);
    auto groups = platform::readGroupLines(*files);
    const auto made = platform::madeAccounts(domain, platform::Store::waitSeconds);
    for (const Status* status : {&users.status(), &groups.status(), &made.status()}) {
        if (!status->isOk()) {
            NSLog("What the computer's tools will refuse cannot be said beforehand: %@", status->text());
            return std::nullopt;
        }
    }
    AccountForecast forecast;
    forecast.accounts_ = {std::move(*users), std::move(*groups), platform::readAccountLimits(),
                          tools::sudoUser().value_or(::getuid())};
    for (const platform::MadeAccount& account : *made) {
        const auto* user = account.isUser ? forecast.accounts_.findUser(account.name) : nullptr;
        const auto* group = account.isUser ? nullptr : forecast.accounts_.findGroup(account.name);
        if ((user != nullptr && platform::directoryNumber(user->uid) == account.number) ||
            (group != nullptr && platform::directoryNumber(group->gid) == account.number)) {
            forecast.ours_.insert({account.isUser ? "users" : "groups", account.name});
        }
    }
    return forecast;
}

Status AccountForecast::take(const DirectoryChange& change) {
    const RecordPath path = recordPath(change.path).value();
    Status status = checkAccountChange(accounts_, change, ours_.contains(path));
    if (status.isOk()) {
        follow(change, path);
    }
    return status;
}

Status AccountForecast::checkPassword(const std::string& user) const {
    const platform::UserLine* line = accounts_.findUser(user);
    return line == nullptr ? Status()
                           : checkOrdinaryUser(*line, ours_.contains({"users", user}), accounts_.limits);
}

bool AccountForecast::exists(const RecordPath& path) const {
    return isUser(path)
               ? accounts_.findUser(path.back()) != nullptr
               : path.back() == platform::administratorsGroup || accounts_.findGroup(path.back()) != nullptr;
}

void AccountForecast::follow(const DirectoryChange& change, const RecordPath& path) {
    if (!change.property) {
        if (change.operation == "-delete") {
            remove(path);
        }
    } else if (!isPropertyOfLine(path, *change.property)) {
        return; // nothing here depends on it
    } else if (exists(path)) {
        changeLine(change, path);
    } else {
        collect(change, path);
    }
}

void AccountForecast::remove(const RecordPath& path) {
    const std::string& name = path.back();
    if (!isUser(path)) {
        std::erase_if(accounts_.groups, [&](const auto& line) { return line.name == name; });
        return;
    }
    std::erase_if(accounts_.users, [&](const auto& line) { return line.name == name; });
    for (platform::GroupLine& line : accounts_.groups) {
        std::erase(line.members, name);
    }
}

void AccountForecast::changeLine(const DirectoryChange& change, const RecordPath& path) {
    const auto number = numberOf(change);
    if (isUser(path)) {
        const auto line = std::ranges::find(accounts_.users, path.back(), &platform::UserLine::name);
        unsigned& changed = change.property == "uid" ? line->uid : line->gid;
        changed = number && (change.property == "uid" || change.property == "gid") ? *number : changed;
        return;
    }
    const auto line = std::ranges::find(accounts_.groups, path.back(), &platform::GroupLine::name);
    if (change.property == "users") {
        line->members = membersAfter(accounts_, *line, change, ours_.contains(path));
    } else if (change.property == "gid" && number) {
        line->gid = *number;
    }
}

void AccountForecast::collect(const DirectoryChange& change, const RecordPath& path) {
    const auto number = numberOf(change);
    if (!number || (change.property != "gid" && change.property != "uid")) {
        return;
    }
    auto& numbers = collected_[path];
    numbers[*change.property] = *number;
    if (isUser(path) && numbers.size() == 2) {
        accounts_.users.push_back(
            {path.back(), numbers["uid"], numbers["gid"], "", "/dev/null", "/sbin/nologin"});
        ours_.insert(path);
    } else if (!isUser(path)) {
        accounts_.groups.push_back({path.back(), *number, {}});
        ours_.insert(path);
    }
}

} // namespace review
