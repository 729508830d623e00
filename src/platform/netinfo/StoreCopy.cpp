#include "platform/netinfo/StoreCopy.h"

#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/ReadConnection.h"
#include "platform/netinfo/Store.h"
#include "platform/netinfo/StoreWait.h"
#include "platform/netinfo/ni.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <vector>

namespace platform {

namespace {

constexpr int allPages = -1; // in one step

int copyAll(sqlite3* from, sqlite3* to) {
    int error =
        sqlite3_exec(to, "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF", nullptr, nullptr, nullptr);
    if (error != SQLITE_OK) {
        return error;
    }
    sqlite3_backup* backup = sqlite3_backup_init(to, "main", from, "main");
    if (backup == nullptr) {
        return sqlite3_errcode(to);
    }
    sqlite3_backup_step(backup, allPages);
    return sqlite3_backup_finish(backup);
}

using Properties = std::vector<StoredProperty>;

constexpr std::array directoriesOfAccounts = {"users", "groups"};

ni_status readRecord(ni_domain* domain, ni_id record, Properties* properties) {
    ni_namelist names;
    ni_status status = ni_listprops(domain, &record, &names);
    for (const std::string_view name : names.ninl_val) {
        ni_namelist values;
        status = status == NI_OK ? ni_lookupprop(domain, &record, name, &values) : status;
        properties->push_back({std::string(name), {values.ninl_val.begin(), values.ninl_val.end()}});
    }
    return status;
}

/// The records below /`directory`, as the domain shows them.
ni_status readRecords(ni_domain* domain, const char* directory, std::vector<Properties>* records) {
    ni_id id;
    ni_idlist children;
    ni_status status = ni_root(domain, &id);
    status = status == NI_OK ? ni_pathsearch(domain, &id, directory) : status;
    status = status == NI_OK ? ni_children(domain, &id, &children) : status;
    for (const std::uint32_t child : children.niil_val) {
        records->emplace_back();
        status = status == NI_OK ? readRecord(domain, {child}, &records->back()) : status;
    }
    return status;
}

/// Makes a store with the records that always exist.
Status makeEmptyStore(const std::string& file) {
    Store store(file, Store::Opening::Create);
    store.addStandingRecords();
    return store.commit();
}

/// Replaces the records below `directory` in the store with these.
void replaceRecords(Store& store, const char* directory, const std::vector<Properties>& records) {
    auto parent = store.child(Store::root, directory);
    if (!parent) {
        parent = store.addRecord(Store::root, directory);
    }
    const RecordBlock before = store.children(*parent);
    for (const RecordBlock::Record& record : before.records()) {
        store.removeRecord(record.id);
    }
    for (const Properties& properties : records) {
        store.addRecord(*parent, properties);
    }
}

} // namespace

Status copyDirectory(const LocalDomain& domain, const std::string& to, int waitSeconds, bool* isUnreadable) {
    std::error_code ignored; // a file that cannot be examined cannot be copied either
    const bool hasStore = std::filesystem::exists(domain.storeFile(), ignored);
    if (!domain.accountFiles()) {
        return hasStore ? copyStore(domain.storeFile(), to, waitSeconds, isUnreadable) : Status();
    }
    if (Status status =
            hasStore ? copyStore(domain.storeFile(), to, waitSeconds, isUnreadable) : makeEmptyStore(to);
        !status.isOk()) {
        return status;
    }
    ni_domain* opened = nullptr;
    ni_status status = ni_opendomain(domain, &opened);
    const OwnedDomain owned(opened);
    std::array<std::vector<Properties>, directoriesOfAccounts.size()> records;
    if (status == NI_OK) {
        ni_setabort(opened, 1);
        ni_setreadtimeout(opened, waitSeconds);
    }
    for (std::size_t i = 0; i < records.size() && status == NI_OK; ++i) {
        status = readRecords(opened, directoriesOfAccounts[i], &records[i]);
    }
    if (status != NI_OK) {
        if (isUnreadable != nullptr) {
            *isUnreadable = true;
        }
        return Status::failure("cannot copy the directory", domain.storeFile(), ni_error(status));
    }
    Store store(to);
    for (std::size_t i = 0; i < records.size(); ++i) {
        replaceRecords(store, directoriesOfAccounts[i], records[i]);
    }
    return store.commit();
}

Status copyStore(const std::string& from, const std::string& to, int waitSeconds, bool* isUnreadable) {
    ReadConnection source;
    source.waitSeconds = waitSeconds;
    int error = source.open(from);
    if (error == SQLITE_OK) {
        error = source.begin();
    }
    const bool isReadable = error == SQLITE_OK;
    if (isReadable) {
        sqlite3* opened = nullptr;
        error = sqlite3_open_v2(to.c_str(), &opened,
                                SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
        const SqliteConnection target(opened);
        if (error == SQLITE_OK) {
            error = copyAll(source.database(), target.get());
        }
    }
    if (error == SQLITE_OK) {
        return {};
    }
    const bool isOfSource = !isReadable || error == SQLITE_CORRUPT || error == SQLITE_NOTADB;
    if (isUnreadable != nullptr) {
        *isUnreadable = isOfSource;
    }
    return isOfSource ? Status::failure("cannot read the directory", shownStore(from),
                                        storeProblem(from, error, source.waitedSeconds()))
                      : Status::failure("cannot copy the directory to", to, storeProblem(to, error, 0));
}

} // namespace platform
