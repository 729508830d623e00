#include "tools/DirectorySession.h"

#include "directory/DirectoryRules.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/samba/SambaAccounts.h"

#include <iterator>
#include <utility>

namespace tools {

using platform::Status;
using platform::Store;

DirectorySession::DirectorySession(DirectoryPlace place) : place_(std::move(place)) {}

Store& DirectorySession::store() {
    if (!store_) {
        store_ = std::make_unique<Store>(place_.storeFile, Store::Opening::Existing,
                                         hasWaited_ ? 0 : place_.waitSeconds);
        isOpen_ = store_->status().isOk();
        hasWaited_ = !isOpen_;
    }
    return *store_;
}

Status DirectorySession::commit() {
    std::unique_ptr<Store> store = std::exchange(store_, nullptr);
    AccountChanges accounts = std::exchange(accounts_, {});
    hasCommitted_ = false;
    if (!store || !isOpen_) {
        return {}; // no run has changed anything
    }
    Status status = store->status();
    if (status.isOk()) {
        status = tellServer(*store, accounts);
    }
    const bool toldServer = status.isOk() && accounts.reachLists;
    if (status.isOk()) {
        status = store->commit();
    }
    hasCommitted_ = status.isOk();
    store.reset();
    if (hasCommitted_) {
        return forgetPasswords(accounts.forgotten);
    }
    if (toldServer) {
        Store asBefore(place_.storeFile, Store::Opening::Existing, place_.waitSeconds);
        accounts.forgotten.clear();
        static_cast<void>(tellServer(asBefore, accounts)); // the first failure is the one to report
    }
    return status;
}

Status DirectorySession::tellServer(Store& store, AccountChanges& changes) const {
    if (!changes.reachLists || place_.root.empty()) {
        changes.forgotten.clear();
        return {};
    }
    const platform::SambaAccounts accounts(platform::EmbeddedRoot(place_.root).sambaPaths());
    if (!accounts.exists()) {
        changes.forgotten.clear();
        return {};
    }
    Status status = accounts.writeAccountLists(store);
    if (status.isOk()) {
        status = checkForgotten(accounts, &changes.forgotten);
    }
    if (!status.isOk()) {
        store.undo();
        // One of the lists may have been written. If it cannot be restored, the first failure is the one to
        // report.
        static_cast<void>(accounts.writeAccountLists(store));
    }
    return status;
}

Status DirectorySession::checkForgotten(const platform::SambaAccounts& accounts,
                                        std::set<std::string>* forgotten) {
    for (auto user = forgotten->begin(); user != forgotten->end();) {
        const auto known = accounts.user(*user);
        if (!known.isOk()) {
            return known.status();
        }
        user = known->has_value() ? std::next(user) : forgotten->erase(user);
    }
    return {};
}

/// Called only after a successful commit, because a password that has been removed cannot be restored.
Status DirectorySession::forgetPasswords(const std::set<std::string>& users) const {
    if (users.empty()) {
        return {};
    }
    const platform::SambaAccounts accounts(platform::EmbeddedRoot(place_.root).sambaPaths());
    // Held open so that nobody makes one of these users again meanwhile.
    Store store(place_.storeFile, Store::Opening::Existing, place_.waitSeconds);
    for (const std::string& user : users) {
        const bool isBack = store.find(RecordPath{"users", user}).has_value();
        Status status = store.status();
        if (status.isOk() && !isBack) {
            status = accounts.removeUser(user);
        }
        if (!status.isOk()) {
            return Status::failure("cannot remove the password of", user,
                                   "the user is deleted, but " + status.text());
        }
    }
    return {};
}

} // namespace tools
