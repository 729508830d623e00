#include "tools/StoreChange.h"

#include "platform/foundation/NSString.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace tools {

using platform::Status;
using platform::Store;

namespace {

constexpr const char* noRecord = "there is no such record; create it first";

/// One change of the directory, as a step of a transaction.
class Change {
  public:
    /// `request` must pass checkDirectoryChange, so its path is valid.
    Change(Store& store, const DirectoryChange& request)
        : request_(request), path_(recordPath(request.path).value()), store_(store) {}

    Status run(DirectorySession::AccountChanges& accounts) {
        // Any other change makes all its checks before it writes.
        std::optional<Store::Step> step;
        if (!request_.property || request_.property == "name") {
            step.emplace(store_);
        }
        Status status = change();
        if (!status.isOk() && store_.status().isOk()) {
            return status;
        }
        if (step) {
            step->keep();
        }
        if (!store_.status().isOk()) { // in a failed store everything seems to be missing
            return refused(store_.status().text());
        }
        if (isChanged_ && isAccount(path_) && reachesLists()) {
            accounts.reachLists = true;
            if (losesPassword_) {
                accounts.forgotten.insert(path_.back());
            }
        }
        return {};
    }

  private:
    [[nodiscard]] Status refused(std::string why) const { return refusal(request_, std::move(why)); }

    Status change() {
        if (request_.operation == "-delete") {
            return request_.property ? removeFromRecord() : removeRecord();
        }
        if (!request_.property) {
            return createRecord();
        }
        return request_.property == "name" ? rename() : write();
    }

    Status createRecord() {
        if (store_.find(path_)) {
            return {};
        }
        const auto parent = store_.find(std::span(path_).first(path_.size() - 1));
        if (!parent) {
            return refused("the record above it does not exist; create that first");
        }
        store_.addRecord(*parent, path_.back());
        isChanged_ = true;
        return checkOtherUsers(path_.back());
    }

    Status rename() {
        RecordPath renamed = path_;
        renamed.back() = request_.values.front();
        const auto record = store_.find(path_);
        if (!record) {
            return refused(noRecord);
        }
        if (renamed == path_) {
            return {};
        }
        if (store_.find(renamed)) {
            return refused("there is a record called " + renamed.back() + "; choose another name");
        }
        losesPassword_ = isUser() && !otherUser(path_.back());
        store_.rename(*record, renamed.back());
        isChanged_ = true;
        return checkOtherUsers(renamed.back());
    }

    /// Replaces or adds values of a property other than "name".
    Status write() {
        const auto record = store_.find(path_);
        if (!record) {
            return refused(noRecord);
        }
        if (request_.operation == "-append") {
            store_.appendValues(*record, *request_.property, request_.values);
        } else {
            store_.setValues(*record, *request_.property, request_.values);
        }
        isChanged_ = true;
        return {};
    }

    Status removeRecord() {
        const auto record = store_.find(path_);
        if (!record) {
            return refused(std::string(nothingToDelete));
        }
        losesPassword_ = isUser() && !otherUser(path_.back());
        store_.removeRecord(*record);
        isChanged_ = true;
        return {};
    }

    Status removeFromRecord() {
        const std::string& property = *request_.property;
        const auto record = store_.find(path_);
        if (!record) {
            return refused(noRecord);
        }
        auto kept = store_.values(*record, property);
        if (!kept) {
            return refused("the record has no property " + property + "; nothing was deleted");
        }
        isChanged_ = true;
        if (request_.values.empty()) {
            store_.removeProperty(*record, property);
            return {};
        }
        if (const auto missing = takeAway(request_.values, &*kept)) {
            return refused("the property " + property + " has no value " + *missing +
                           "; nothing was deleted");
        }
        store_.setValues(*record, property, *kept);
        return {};
    }

    /// Removes `unwanted` from `kept`. Returns a value that is not there, in which case `kept` is unchanged.
    /// Uses sets, because a large group may lose thousands of members at once.
    static std::optional<std::string> takeAway(const std::vector<std::string>& unwanted,
                                               std::vector<std::string>* kept) {
        const std::unordered_set<std::string_view> present(kept->begin(), kept->end());
        for (const auto& value : unwanted) {
            if (!present.contains(value)) {
                return value;
            }
        }
        const std::unordered_set<std::string_view> leaving(unwanted.begin(), unwanted.end());
        std::erase_if(*kept, [&](const std::string& value) { return leaving.contains(value); });
        return std::nullopt;
    }

    [[nodiscard]] bool isUser() const { return path_.size() == 2 && path_[0] == "users"; }

    /// Another user who would share an entry of the server's password database with this one, because the
    /// database ignores case.
    [[nodiscard]] std::optional<std::string> otherUser(const std::string& name) {
        const auto users = store_.child(Store::root, "users");
        return users ? store_.childInOtherCase(*users, name) : std::nullopt;
    }

    /// Of two such users each would have the other's password, and deleting one would remove it.
    Status checkOtherUsers(const std::string& name) {
        const auto other = isUser() ? otherUser(name) : std::nullopt;
        return other ? refused(stringWithFormat(ruleOfOtherUser, *other)) : Status();
    }

    /// Whether the change affects the account lists. Writing them takes long when there are many accounts, so
    /// it is not done for properties that they do not contain.
    [[nodiscard]] bool reachesLists() const {
        constexpr std::array listed{"name", "uid", "gid", "realname", "home", "shell", "users", "sharedDir"};
        return !request_.property || std::ranges::find(listed, *request_.property) != listed.end();
    }

    const DirectoryChange& request_;
    RecordPath path_;
    Store& store_;
    bool isChanged_ = false;
    bool losesPassword_ = false; ///< the password database has an entry without a user
};

} // namespace

Status changeStore(Store& store, const DirectoryChange& change, DirectorySession::AccountChanges& accounts) {
    return Change(store, change).run(accounts);
}

} // namespace tools
