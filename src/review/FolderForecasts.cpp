#include "review/FolderForecasts.h"

namespace review {

namespace {

constexpr mode_t modeBits = 07777;

std::string accounts(const platform::AccountNames& names, uid_t owner, gid_t group) {
    return names.userName(owner).value_or(std::to_string(owner)) + ":" +
           names.groupName(group).value_or(std::to_string(group));
}

} // namespace

void FolderForecasts::apply(struct stat& status) const {
    if (outer_) {
        outer_->apply(status);
    }
    const auto found = forecasts_.find({status.st_dev, status.st_ino});
    if (found == forecasts_.end()) {
        return;
    }
    const Forecast& forecast = found->second;
    status.st_uid = forecast.owner.value_or(status.st_uid);
    status.st_gid = forecast.group.value_or(status.st_gid);
    status.st_mode = forecast.mode ? (status.st_mode & ~modeBits) | *forecast.mode : status.st_mode;
}

void FolderForecasts::add(const std::string& path, const tools::FolderOrder& order) {
    const Identity identity{order.status.st_dev, order.status.st_ino};
    const auto [place, isNew] = forecasts_.try_emplace(identity);
    Forecast& forecast = place->second;
    if (isNew) {
        forecast.path = path;
        forecast.before = order.status;
        if (outer_) {
            outer_->apply(forecast.before);
        }
        order_.push_back(identity);
    }
    forecast.owner = order.owner ? order.owner : forecast.owner;
    forecast.group = order.group ? order.group : forecast.group;
    forecast.mode = order.mode ? order.mode : forecast.mode;
}

std::vector<FolderChange> FolderForecasts::changes(const platform::AccountNames& names) const {
    std::vector<FolderChange> all;
    for (const Identity& identity : order_) {
        const Forecast& forecast = forecasts_.at(identity);
        FolderChange change;
        change.path = forecast.path;
        change.ownerBefore = forecast.before.st_uid;
        change.ownerAfter = forecast.owner.value_or(change.ownerBefore);
        change.groupBefore = forecast.before.st_gid;
        change.groupAfter = forecast.group.value_or(change.groupBefore);
        change.modeBefore = forecast.before.st_mode & modeBits;
        change.modeAfter = forecast.mode.value_or(change.modeBefore);
        change.accountsBefore = accounts(names, change.ownerBefore, change.groupBefore);
        change.accountsAfter = accounts(names, change.ownerAfter, change.groupAfter);
        all.push_back(std::move(change));
    }
    return all;
}

} // namespace review
