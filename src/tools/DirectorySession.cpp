#include "tools/DirectorySession.h"

#include "platform/host/EmbeddedRoot.h"
#include "platform/samba/SambaAccounts.h"

#include <utility>

using platform::Status;
using platform::Store;

DirectorySession::DirectorySession(DirectoryPlace place) : place_(std::move(place)) {}

Store& DirectorySession::store() {
    if (!store_) {
        store_ = std::make_unique<Store>(place_.storeFile, Store::Opening::Existing,
                                         hasWaited_ ? 0 : place_.waitSeconds);
        isOpen_ = store_->status().isOk();
        hasWaited_ = hasWaited_ || !isOpen_;
    }
    return *store_;
}

Status DirectorySession::commit() {
    const std::unique_ptr<Store> store = std::exchange(store_, nullptr);
    const AccountChanges accounts = std::exchange(accounts_, {});
    if (!store || !isOpen_) {
        return {}; // no run has changed anything
    }
    Status status = store->status();
    if (status.isOk()) {
        status = tellServer(*store, accounts);
    }
    return status.isOk() ? store->commit() : status;
}

Status DirectorySession::tellServer(Store& store, const AccountChanges& changes) const {
    if (!changes.reachLists || place_.root.empty()) {
        return {};
    }
    const platform::SambaAccounts accounts(platform::EmbeddedRoot(place_.root).sambaPaths());
    if (!accounts.exists()) {
        return {};
    }
    Status status = accounts.writeAccountLists(store);
    // The passwords come last: lists can be written again, a password that is forgotten cannot be brought
    // back.
    for (auto user = changes.forgotten.begin(); status.isOk() && user != changes.forgotten.end(); ++user) {
        status = accounts.removeUser(*user);
    }
    if (!status.isOk()) {
        store.undo();
        // One of the lists may be written; where it cannot be written back, the first failure says why.
        static_cast<void>(accounts.writeAccountLists(store));
    }
    return status;
}
