#include "directory/DirectoryRules.h"
#include "platform/foundation/NSString.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/host/SambaAccounts.h"
#include "platform/netinfo/Store.h"
#include "tools/DirectoryTools.h"
#include "tools/ToolText.h"

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <unordered_set>
#include <utility>

using platform::Store;

namespace {

constexpr const char* usage =
    "usage: nicl [--root DIR] . -create PATH [PROPERTY [VALUE...]] | -append PATH PROPERTY VALUE... | "
    "-delete PATH [PROPERTY [VALUE...]]";

/// Why a request is not carried out; the text follows the name of what was to be done.
class Refusal : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// One change of the directory, as one transaction.
class Change {
  public:
    /// `request` keeps the rules, and so its path is one.
    Change(const DirectoryPlace& place, const DirectoryChange& request)
        : request_(request), path_(recordPath(request.path).value()), place_(place),
          store_(place.storeFile, Store::Opening::Existing, place.waitSeconds) {}

    void run() {
        if (request_.operation == "-create") {
            create();
        } else if (request_.operation == "-append") {
            append();
        } else {
            remove();
        }
        if (isChanged_ && isAccount(path_) && !place_.root.empty()) {
            tellServer();
        }
        store_.commit();
    }

  private:
    [[nodiscard]] Store::Record record() {
        const auto found = store_.find(path_);
        if (!found) {
            throw Refusal("there is no such record; create it first");
        }
        return *found;
    }

    void create() {
        if (!request_.property) {
            createRecord();
        } else if (*request_.property == "name") {
            rename();
        } else {
            store_.setValues(record(), *request_.property, request_.values);
            isChanged_ = true;
        }
    }

    void createRecord() {
        if (store_.find(path_)) {
            return;
        }
        const auto parent = store_.find(std::span(path_).first(path_.size() - 1));
        if (!parent) {
            throw Refusal("the record above it does not exist; create that first");
        }
        store_.addRecord(*parent, path_.back());
        checkOtherUsers(path_.back());
        isChanged_ = true;
    }

    void rename() {
        RecordPath renamed = path_;
        renamed.back() = request_.values.front();
        const Store::Record renaming = record();
        if (renamed == path_) {
            return;
        }
        if (store_.find(renamed)) {
            throw Refusal("there is a record called " + renamed.back() + "; choose another name");
        }
        losesPassword_ = isUser() && !otherUser(path_.back());
        store_.rename(renaming, renamed.back());
        checkOtherUsers(renamed.back());
        isChanged_ = true;
    }

    void append() {
        store_.appendValues(record(), *request_.property, request_.values);
        isChanged_ = true;
    }

    void remove() {
        if (!request_.property) {
            const auto found = store_.find(path_);
            if (!found) {
                throw Refusal("there is no such record; nothing was deleted");
            }
            losesPassword_ = isUser() && !otherUser(path_.back());
            store_.removeRecord(*found);
            isChanged_ = true;
            return;
        }
        removeProperty();
    }

    void removeProperty() {
        const std::string& property = *request_.property;
        const Store::Record changing = record();
        auto kept = store_.values(changing, property);
        if (!kept) {
            throw Refusal("the record has no property " + property + "; nothing was deleted");
        }
        if (request_.values.empty()) {
            store_.removeProperty(changing, property);
        } else {
            takeAway(request_.values, property, &*kept);
            store_.setValues(changing, property, *kept);
        }
        isChanged_ = true;
    }

    /// Sets, because a group of a large organisation may lose thousands of its members at once.
    static void takeAway(const std::vector<std::string>& unwanted, const std::string& property,
                         std::vector<std::string>* kept) {
        const std::unordered_set<std::string_view> present(kept->begin(), kept->end());
        for (const auto& value : unwanted) {
            if (!present.contains(value)) {
                throw Refusal(stringWithFormat("the property %@ has no value %@; nothing was deleted",
                                               property, value));
            }
        }
        const std::unordered_set<std::string_view> leaving(unwanted.begin(), unwanted.end());
        std::erase_if(*kept, [&](const std::string& value) { return leaving.contains(value); });
    }

    [[nodiscard]] bool isUser() const { return path_.size() == 2 && path_[0] == "users"; }

    /// The user who shares an entry of the server's password database with the user of that name, because the
    /// database ignores case.
    [[nodiscard]] std::optional<std::string> otherUser(const std::string& name) {
        const auto users = store_.child(Store::root, "users");
        return users ? store_.childInOtherCase(*users, name) : std::nullopt;
    }

    /// One of two such users would have the other's password, and take it along when it is deleted.
    void checkOtherUsers(const std::string& name) {
        if (const auto other = isUser() ? otherUser(name) : std::nullopt) {
            throw Refusal("there is a user called " + *other +
                          ", and the case of letters does not tell users apart; choose another name");
        }
    }

    /// Done before the commit, so that no other writer comes between. The password comes last: lists can be
    /// written again, a password that is forgotten cannot be brought back.
    void tellServer() {
        const platform::SambaAccounts accounts{platform::EmbeddedRoot(place_.root)};
        if (!accounts.exists() || !reachesLists()) {
            return;
        }
        std::string failure = accounts.writeAccountLists(store_);
        if (failure.empty() && losesPassword_) {
            failure = accounts.removeUser(path_.back());
        }
        if (!failure.empty()) {
            store_.undo();
            // One of the lists may be written; where it cannot be written back, the first failure says why.
            static_cast<void>(accounts.writeAccountLists(store_));
            throw Refusal(failure);
        }
    }

    /// Writing the lists takes as long as there are accounts: a property that they do not hold must not cost
    /// that.
    [[nodiscard]] bool reachesLists() const {
        constexpr std::array listed{"name", "uid", "gid", "realname", "home", "shell", "users"};
        return !request_.property || std::ranges::find(listed, *request_.property) != listed.end();
    }

    const DirectoryChange& request_;
    RecordPath path_;
    const DirectoryPlace& place_;
    Store store_;
    bool isChanged_ = false;
    bool losesPassword_ = false; ///< an entry of the password database has no user any more
};

} // namespace

DirectoryPlace DirectoryPlace::ofRoot(const std::string& rootFolder) {
    const platform::EmbeddedRoot root(rootFolder);
    DirectoryPlace place(root.storeFile());
    place.root = root.folder();
    return place;
}

ToolResult runNicl(const DirectoryPlace& place, std::span<const std::string> arguments) {
    const auto change = directoryChange(arguments);
    if (!change) {
        return {std::string(usage) + "\n", 1};
    }
    platform::Status status = checkDirectoryChange(*change);
    try {
        if (status.isOk()) {
            Change(place, *change).run();
        }
    } catch (const std::runtime_error& failure) { // a refusal or the store's own
        status = refusal(*change, failure.what());
    }
    if (!status.isOk()) {
        return {oneLine("nicl: " + status.text()), 1};
    }
    return {};
}
