#include "platform/foundation/NSString.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/host/SambaAccounts.h"
#include "platform/netinfo/Store.h"
#include "tools/DirectoryRules.h"
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

/// The words of one run, taken apart.
struct Request {
    std::string operation;
    std::string pathText;
    RecordPath path;
    std::optional<std::string> property;
    std::vector<std::string> values;
};

/// One change of the directory, as one transaction.
class Change {
  public:
    Change(const DirectoryPlace& place, Request request)
        : request_(std::move(request)), place_(place),
          store_(place.storeFile, Store::Opening::Existing, place.waitSeconds) {}

    void run() {
        if (request_.operation == "-create") {
            create();
        } else if (request_.operation == "-append") {
            append();
        } else {
            remove();
        }
        if (isChanged_ && isAccount(request_.path) && !place_.root.empty()) {
            tellServer();
        }
        store_.commit();
    }

  private:
    static void check(const std::string& brokenRule) {
        if (!brokenRule.empty()) {
            throw Refusal(brokenRule);
        }
    }

    [[nodiscard]] Store::Record record() {
        const auto found = store_.find(request_.path);
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
            check(ruleBrokenByValues(request_.path, *request_.property, request_.values));
            store_.setValues(record(), *request_.property, request_.values);
            isChanged_ = true;
        }
    }

    void createRecord() {
        if (store_.find(request_.path)) {
            return;
        }
        check(ruleBrokenByName(request_.path));
        const auto parent = store_.find(std::span(request_.path).first(request_.path.size() - 1));
        if (!parent) {
            throw Refusal("the record above it does not exist; create that first");
        }
        store_.addRecord(*parent, request_.path.back());
        checkOtherUsers(request_.path.back());
        isChanged_ = true;
    }

    void rename() {
        if (isFixed(request_.path)) {
            throw Refusal("this record cannot be renamed; make another one beside it");
        }
        if (request_.values.size() != 1) {
            throw Refusal("a record has exactly one name; give one value");
        }
        RecordPath renamed = request_.path;
        renamed.back() = request_.values.front();
        check(ruleBrokenByName(renamed));
        const Store::Record renaming = record();
        if (renamed == request_.path) {
            return;
        }
        if (store_.find(renamed)) {
            throw Refusal("there is a record called " + renamed.back() + "; choose another name");
        }
        losesPassword_ = isUser() && !otherUser(request_.path.back());
        store_.rename(renaming, renamed.back());
        checkOtherUsers(renamed.back());
        isChanged_ = true;
    }

    void append() {
        if (*request_.property == "name") {
            throw Refusal("a record has exactly one name; rename it with -create");
        }
        check(ruleBrokenByValues(request_.path, *request_.property, request_.values));
        store_.appendValues(record(), *request_.property, request_.values);
        isChanged_ = true;
    }

    void remove() {
        if (!request_.property) {
            if (isFixed(request_.path)) {
                throw Refusal("this record always exists and cannot be deleted; delete records below it");
            }
            const auto found = store_.find(request_.path);
            if (!found) {
                throw Refusal("there is no such record; nothing was deleted");
            }
            losesPassword_ = isUser() && !otherUser(request_.path.back());
            store_.removeRecord(*found);
            isChanged_ = true;
            return;
        }
        removeProperty();
    }

    void removeProperty() {
        const std::string& property = *request_.property;
        if (property == "name") {
            throw Refusal("a record's name cannot be deleted; rename the record or delete it");
        }
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

    [[nodiscard]] bool isUser() const { return request_.path.size() == 2 && request_.path[0] == "users"; }

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
            failure = accounts.removeUser(request_.path.back());
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

    Request request_;
    const DirectoryPlace& place_;
    Store store_;
    bool isChanged_ = false;
    bool losesPassword_ = false; ///< an entry of the password database has no user any more
};

std::optional<Request> parse(std::span<const std::string> words) {
    constexpr std::size_t leading = 3; // the domain, the operation, the path
    if (words.size() < leading || words[0] != ".") {
        return std::nullopt;
    }
    Request request{words[1], words[2], {}, std::nullopt, {}};
    if (words.size() > leading) {
        request.property = words[leading];
        request.values.assign(words.begin() + leading + 1, words.end());
    }
    const bool isKnown = request.operation == "-create" || request.operation == "-delete";
    const bool isAppend = request.operation == "-append" && !request.values.empty();
    return isKnown || isAppend ? std::optional(request) : std::nullopt;
}

} // namespace

DirectoryPlace DirectoryPlace::ofRoot(const std::string& rootFolder) {
    const platform::EmbeddedRoot root(rootFolder);
    DirectoryPlace place(root.storeFile());
    place.root = root.folder();
    return place;
}

ToolResult runNicl(const DirectoryPlace& place, std::span<const std::string> arguments) {
    auto request = parse(arguments);
    if (!request) {
        return {std::string(usage) + "\n", 1};
    }
    const std::string what = request->operation.substr(1) + " " + request->pathText +
                             (request->property ? " " + *request->property : std::string());
    try {
        const auto path = recordPath(request->pathText);
        if (!path) {
            throw Refusal("a path begins with / and has no empty component; write it as /users/NAME");
        }
        request->path = *path;
        Change(place, std::move(*request)).run();
    } catch (const std::runtime_error& failure) { // a refusal or the store's own
        return {oneLine("nicl: cannot " + what + ": " + failure.what()), 1};
    }
    return {};
}
