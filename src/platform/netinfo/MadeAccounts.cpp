#include "platform/netinfo/MadeAccounts.h"

#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/ReadConnection.h"
#include "platform/netinfo/RecordContent.h"
#include "platform/netinfo/StoreWait.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace platform {

namespace {

/// The first value of the property; empty when there is none.
std::string valueOf(const std::vector<StoredProperty>& properties, std::string_view name) {
    const auto found = std::ranges::find(properties, name, &StoredProperty::name);
    return found == properties.end() || found->values.empty() ? "" : found->values.front();
}

int readMade(sqlite3* database, bool isUser, std::vector<MadeAccount>* made) {
    SqliteStatement rows(database, "SELECT account.name, account.content FROM record AS account JOIN record "
                                   "AS folder ON account.parent = folder.id WHERE folder.parent = 0 AND "
                                   "folder.name = ?1 ORDER BY account.id");
    rows.bind(1, isUser ? "users" : "groups");
    while (rows.step()) {
        std::vector<StoredProperty> properties;
        if (unpackContent(rows.text(1), &properties) &&
            valueOf(properties, accountStateProperty) == accountStateMade) {
            made->push_back({isUser, std::string(rows.text(0)), valueOf(properties, isUser ? "uid" : "gid")});
        }
    }
    return rows.error();
}

} // namespace

Result<std::vector<MadeAccount>> madeAccounts(const LocalDomain& domain, int waitSeconds) {
    std::vector<MadeAccount> made;
    std::error_code ignored; // a file that cannot be examined cannot be opened either
    if (!domain.accountFiles() || !std::filesystem::exists(domain.storeFile(), ignored)) {
        return made;
    }
    ReadConnection store;
    store.waitSeconds = waitSeconds;
    int error = store.open(domain.storeFile());
    error = error == SQLITE_OK ? store.begin() : error;
    for (const bool isUser : {true, false}) {
        error = error == SQLITE_OK ? readMade(store.database(), isUser, &made) : error;
    }
    if (error != SQLITE_OK) {
        return Status::failure("cannot read the directory", domain.storeFile(),
                               storeProblem(domain.storeFile(), error, store.waitedSeconds()));
    }
    return made;
}

} // namespace platform
