#include "platform/netinfo/OpenDomain.h"

#include "platform/netinfo/StoreWait.h"

#include <memory>
#include <utility>

namespace platform {

namespace {

/// How many records are read ahead: enough that the query hardly costs time per record, and few enough to
/// stay in the processor's cache.
constexpr std::int64_t readAhead = 256;

/// A record that is found through the index costs about as much as passing this many.
constexpr std::int64_t passedForOneFound = 4;

/// Looks for the record among those that have been read.
FoundRecord findAmongRead(const ni_domain& domain, std::uint32_t id) {
    const bool isLine = id >= firstUserLineId;
    const auto& lines = id >= firstGroupLineId ? domain.groups : domain.users;
    const SharedBlock* block = !isLine ? &domain.block : (lines ? &lines->block : nullptr);
    return {block, block != nullptr && *block ? (*block)->find(id) : nullptr};
}

/// The records of the directory that is being read from one record on. Where most neighbors in the store
/// belong to it, they are read in their order; otherwise the index of parents finds each.
SqliteStatement& nextRecords(ni_domain& domain) {
    return domain.expectedAreDense
               ? domain.prepared(domain.nextNeighbors,
                                 "SELECT id, content FROM record WHERE +parent = ?2 AND "
                                 "id BETWEEN ?1 AND ?4 ORDER BY id LIMIT ?3")
               : domain.prepared(domain.nextRecords,
                                 "SELECT id, content FROM record WHERE parent = ?2 AND id "
                                 ">= ?1 ORDER BY id LIMIT ?3");
}

/// Reads the record, and, if it is the one that is expected next, those after it.
ni_status readRecord(ni_domain& domain, std::uint32_t id, FoundRecord* found) {
    const bool isExpected = domain.expected == id;
    SqliteStatement& rows =
        isExpected ? nextRecords(domain)
                   : domain.prepared(domain.oneRecord, "SELECT id, content FROM record WHERE id = ?1");
    rows.bind(1, std::int64_t{id});
    if (isExpected) {
        rows.bind(2, domain.expectedParent).bind(3, readAhead);
        if (domain.expectedAreDense) {
            rows.bind(4, domain.lastExpected); // what follows it may be as large as what was read
        }
    }
    int error = SQLITE_OK;
    domain.block.reset(); // so that the new block takes its place in memory
    auto block = std::make_shared<RecordBlock>(RecordBlock::of(rows, &error));
    if (error != SQLITE_OK) {
        return statusOf(error);
    }
    const auto* record = block->find(id);
    if (record == nullptr) {
        return NI_BADID;
    }
    if (isExpected) {
        // The last one will be read again together with those after it.
        const bool isFull = std::ssize(block->records()) == readAhead;
        domain.expected = isFull ? block->records().back().id : -1;
    }
    domain.block = std::move(block);
    *found = {&domain.block, record};
    return NI_OK;
}

} // namespace

ni_status statusOf(int sqliteError) {
    switch (sqliteError & 0xff) {
    case SQLITE_OK:
        return NI_OK;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return NI_NORESPONSE;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_NOTADB:
        return NI_CANTOPEN;
    default:
        return NI_SYSTEMERR;
    }
}

std::optional<StoreStamp> stampOf(const ni_domain& domain) {
    return domain.accounts ? std::nullopt : domain.connection.stamp();
}

int beginReading(ni_domain& domain) {
    int error = domain.begin();
    if (error != SQLITE_OK || !domain.accounts || domain.usersDirectory != 0) {
        return error;
    }
    SqliteStatement child(domain.connection.database(),
                          "SELECT id FROM record WHERE parent = 0 AND name = ?1");
    for (auto [name, id] : {std::pair<std::string_view, std::int64_t*>{"users", &domain.usersDirectory},
                            {"groups", &domain.groupsDirectory}}) {
        child.reset();
        if (child.bind(1, name).step()) {
            *id = child.number(0);
        }
        error = child.error() == SQLITE_OK ? error : child.error();
    }
    return error;
}

const RecordLines* linesOf(ni_domain& domain, std::int64_t directory, int* error) {
    *error = SQLITE_OK;
    const bool isUsers = directory == domain.usersDirectory;
    if (!domain.accounts || directory == 0 || (!isUsers && directory != domain.groupsDirectory)) {
        return nullptr;
    }
    std::optional<RecordLines>& known = isUsers ? domain.users : domain.groups;
    if (!known) {
        const auto read = isUsers ? userLines : groupLines;
        auto block = std::make_shared<RecordBlock>(
            read(*domain.accounts, domain.connection.database(), directory, error));
        if (*error != SQLITE_OK) {
            return nullptr;
        }
        RecordLines lines{std::move(block), {}};
        for (const auto& record : lines.block->records()) {
            if (const auto* property = lines.block->property(record, "name")) {
                lines.byName.emplace(lines.block->values(*property).front(), record.id);
            }
        }
        known = std::move(lines);
    }
    return &*known;
}

ni_status findRecord(ni_domain& domain, std::uint32_t id, FoundRecord* found) {
    if (*found = findAmongRead(domain, id); found->record == nullptr || domain.expected == id) {
        if (const int error = beginReading(domain); error != SQLITE_OK) {
            return statusOf(error);
        }
        if (const ni_status status = readRecord(domain, id, found); status != NI_OK) {
            return status;
        }
    }
    return (*found->block)->isWhole(*found->record) ? NI_OK : NI_SYSTEMERR;
}

bool recordExists(ni_domain& domain, std::uint32_t id, int* error) {
    SqliteStatement row(domain.connection.database(), "SELECT 1 FROM record WHERE id = ?1");
    row.bind(1, std::int64_t{id});
    const bool exists = row.step();
    *error = row.error();
    return exists;
}

ni_status addStoredChildren(ni_domain& domain, std::uint32_t parent, ni_idlist* children) {
    SqliteStatement rows(domain.connection.database(), "SELECT id FROM record WHERE parent = ?1 ORDER BY id");
    rows.bind(1, std::int64_t{parent});
    const std::size_t before = children->niil_val.size();
    while (rows.step()) {
        children->niil_val.push_back(static_cast<std::uint32_t>(rows.number(0)));
    }
    int error = rows.error();
    if (error != SQLITE_OK) {
        children->niil_val.resize(before); // a part of the list could be taken for the whole
    } else if (children->niil_val.size() > before) {
        domain.expected = children->niil_val[before];
        domain.lastExpected = children->niil_val.back();
        domain.expectedParent = parent;
        const auto count = static_cast<std::int64_t>(children->niil_val.size() - before);
        domain.expectedAreDense = domain.lastExpected - domain.expected < count * passedForOneFound;
    } else if (!recordExists(domain, parent, &error)) {
        return error == SQLITE_OK ? NI_BADID : statusOf(error);
    }
    return statusOf(error);
}

} // namespace platform

void ni_domain::applyTimeout() {
    if (aborts) {
        connection.waitSeconds = readTimeout;
    } else {
        connection.waitSeconds.reset();
    }
}

int ni_domain::begin() {
    const int error = connection.begin();
    platform::setDirectoryProblem(
        error == SQLITE_OK ? "" : platform::storeProblem(file, error, connection.waitedSeconds()));
    return error;
}
