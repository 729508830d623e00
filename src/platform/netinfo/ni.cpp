#include "platform/netinfo/ni.h"

#include "platform/foundation/Host.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/ReadConnection.h"
#include "platform/netinfo/RecordBlock.h"
#include "platform/netinfo/RecordContent.h"
#include "platform/netinfo/StoreWait.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

#include <unistd.h>

namespace {

using Block = std::shared_ptr<const platform::RecordBlock>;

/// The records of a directory that are the lines of a file.
struct Lines {
    Block block;
    std::unordered_map<std::string_view, std::int64_t> byName; ///< the first of each name
};

/// How many records are read ahead: enough that a query for them costs next to nothing, and few enough to
/// stay in a processor's cache.
constexpr std::int64_t readAhead = 256;

} // namespace

struct ni_domain {
    platform::ReadConnection connection;
    bool aborts = false;
    int readTimeout = 30;
    /// The records that were read last. Whoever was handed texts of others keeps those alive.
    Block block;
    // Children are mostly asked for in their order: the record that is expected next, and whose child it is.
    std::int64_t expected = -1;
    std::int64_t expectedParent = 0;
    std::optional<platform::AccountFiles> accounts;
    // The ids of /users and /groups, where their records are the lines of files; else 0.
    std::int64_t usersDirectory = 0;
    std::int64_t groupsDirectory = 0;
    // Their records, once they have been read.
    std::optional<Lines> users;
    std::optional<Lines> groups;
    std::string file;
    // Prepared once: a report of many records would spend most of its time on it. Gone before the connection.
    std::optional<platform::SqliteStatement> oneRecord;
    std::optional<platform::SqliteStatement> nextRecords;
    std::optional<platform::SqliteStatement> childNamed;

    void applyTimeout();
    [[nodiscard]] int begin();

    /// `statement`, ready for new values.
    [[nodiscard]] platform::SqliteStatement& prepared(std::optional<platform::SqliteStatement>& statement,
                                                      std::string_view sql) {
        if (!statement || statement->error() != SQLITE_OK) {
            statement.emplace(connection.database(), sql);
        }
        statement->reset();
        return *statement;
    }
};

namespace {

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

struct Found {
    const Block* block = nullptr; ///< of the domain's own
    const platform::RecordBlock::Record* record = nullptr;
};

/// Begins to read, and finds the directories whose records are lines of files.
int begin(ni_domain& domain) {
    int error = domain.begin();
    if (error != SQLITE_OK || !domain.accounts || domain.usersDirectory != 0) {
        return error;
    }
    platform::SqliteStatement child(domain.connection.database(),
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

/// The records of a directory that are lines of a file, read when they are first asked for; null when the
/// directory is none of those, or with `*error` set.
const Lines* linesOf(ni_domain& domain, std::int64_t directory, int* error) {
    *error = SQLITE_OK;
    const bool isUsers = directory == domain.usersDirectory;
    if (!domain.accounts || directory == 0 || (!isUsers && directory != domain.groupsDirectory)) {
        return nullptr;
    }
    std::optional<Lines>& known = isUsers ? domain.users : domain.groups;
    if (!known) {
        const auto read = isUsers ? platform::userLines : platform::groupLines;
        auto block = std::make_shared<platform::RecordBlock>(
            read(*domain.accounts, domain.connection.database(), directory, error));
        if (*error != SQLITE_OK) {
            return nullptr;
        }
        Lines lines{std::move(block), {}};
        for (const auto& record : lines.block->records()) {
            if (const auto* property = lines.block->property(record, "name")) {
                lines.byName.emplace(lines.block->values(*property).front(), record.id);
            }
        }
        known = std::move(lines);
    }
    return &*known;
}

/// The record among those that have been read.
Found findAmongRead(const ni_domain& domain, std::uint32_t id) {
    const bool isLine = id >= platform::firstUserLineId;
    const auto& lines = id >= platform::firstGroupLineId ? domain.groups : domain.users;
    const Block* block = !isLine ? &domain.block : (lines ? &lines->block : nullptr);
    return {block, block != nullptr && *block ? (*block)->find(id) : nullptr};
}

/// Reads the record, and those after it where it is the one that is expected next.
ni_status readRecord(ni_domain& domain, std::uint32_t id, Found* found) {
    const bool isExpected = domain.expected == id;
    platform::SqliteStatement& rows =
        isExpected
            ? domain.prepared(domain.nextRecords, "SELECT id, content FROM record WHERE parent = ?2 AND id "
                                                  ">= ?1 ORDER BY id LIMIT ?3")
            : domain.prepared(domain.oneRecord, "SELECT id, content FROM record WHERE id = ?1");
    rows.bind(1, std::int64_t{id});
    if (isExpected) {
        rows.bind(2, domain.expectedParent).bind(3, readAhead);
    }
    int error = SQLITE_OK;
    auto block = std::make_shared<platform::RecordBlock>(platform::RecordBlock::of(rows, &error));
    if (error != SQLITE_OK) {
        return statusOf(error);
    }
    const auto* record = block->find(id);
    if (record == nullptr) {
        return NI_BADID;
    }
    if (isExpected) {
        // The last one is read again with those after it.
        const bool isFull = std::ssize(block->records()) == readAhead;
        domain.expected = isFull ? block->records().back().id : -1;
    }
    domain.block = std::move(block);
    *found = {&domain.block, record};
    return NI_OK;
}

ni_status findRecord(ni_domain& domain, std::uint32_t id, Found* found) {
    if (*found = findAmongRead(domain, id); found->record == nullptr || domain.expected == id) {
        if (const int error = begin(domain); error != SQLITE_OK) {
            return statusOf(error);
        }
        if (const ni_status status = readRecord(domain, id, found); status != NI_OK) {
            return status;
        }
    }
    return (*found->block)->isWhole(*found->record) ? NI_OK : NI_SYSTEMERR;
}

bool recordExists(ni_domain& domain, std::uint32_t id, int* error) {
    platform::SqliteStatement row(domain.connection.database(), "SELECT 1 FROM record WHERE id = ?1");
    row.bind(1, std::int64_t{id});
    const bool exists = row.step();
    *error = row.error();
    return exists;
}

/// Appends the ids of the children that have `value` among the values of `property`.
void addMatches(const platform::RecordBlock& block, std::string_view property, std::string_view value,
                ni_idlist* children) {
    platform::ContentWriter packed;
    packed.value(value);
    for (const auto& record : block.records()) {
        if (record.content.find(packed.content()) == std::string_view::npos) {
            continue; // nearly all of a large directory, which need not be taken apart
        }
        const auto* stored = block.property(record, property);
        if (stored != nullptr && std::ranges::count(block.values(*stored), value) > 0) {
            children->niil_val.push_back(static_cast<std::uint32_t>(record.id));
        }
    }
}

ni_status addStoredChildren(ni_domain& domain, std::uint32_t parent, ni_idlist* children) {
    platform::SqliteStatement rows(domain.connection.database(),
                                   "SELECT id FROM record WHERE parent = ?1 ORDER BY id");
    rows.bind(1, std::int64_t{parent});
    const std::size_t before = children->niil_val.size();
    while (rows.step()) {
        children->niil_val.push_back(static_cast<std::uint32_t>(rows.number(0)));
    }
    int error = rows.error();
    if (error == SQLITE_OK && children->niil_val.size() > before) {
        domain.expected = children->niil_val[before];
        domain.expectedParent = parent;
    } else if (error == SQLITE_OK && !recordExists(domain, parent, &error)) {
        return error == SQLITE_OK ? NI_BADID : statusOf(error);
    }
    return statusOf(error);
}

} // namespace

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

ni_status ni_open(ni_domain* relative, const char* name, ni_domain** domain) {
    if (relative != nullptr || name == nullptr || std::strcmp(name, ".") != 0) {
        return NI_FAILED;
    }
    return ni_opendomain(platform::Host::current().localDomain(), domain);
}

ni_status ni_opendomain(const platform::LocalDomain& local, ni_domain** domain) {
    const std::string file = local.storeFile();
    auto accounts = local.accountFiles();
    if (!accounts) {
        return ni_openfile(file, domain);
    }
    platform::Host::settlePendingWrites();
    auto opened = std::make_unique<ni_domain>();
    opened->file = file;
    opened->accounts = std::move(accounts);
    // Nothing is written on a computer where nothing was changed yet.
    const bool isMissing = ::access(file.c_str(), F_OK) != 0 && errno == ENOENT;
    const int error = isMissing ? opened->connection.openEmpty() : opened->connection.open(file);
    if (error == SQLITE_OK) {
        *domain = opened.release();
    }
    return statusOf(error);
}

ni_status ni_openfile(const std::string& file, ni_domain** domain) {
    platform::Host::settlePendingWrites();
    auto opened = std::make_unique<ni_domain>();
    opened->file = file;
    const int error = opened->connection.open(file);
    if (error == SQLITE_OK) {
        *domain = opened.release();
    }
    return statusOf(error);
}

void ni_setabort(ni_domain* domain, int abort) {
    domain->aborts = abort != 0;
    domain->applyTimeout();
}

void ni_setreadtimeout(ni_domain* domain, int seconds) {
    domain->readTimeout = seconds;
    domain->applyTimeout();
}

void ni_setwritetimeout(ni_domain* /*domain*/, int /*seconds*/) {}

ni_status ni_root(ni_domain* domain, ni_id* id) {
    const int error = begin(*domain);
    if (error == SQLITE_OK) {
        *id = {};
    }
    return statusOf(error);
}

ni_status ni_pathsearch(ni_domain* domain, ni_id* id, const char* path) {
    int error = begin(*domain);
    if (error != SQLITE_OK) {
        return statusOf(error);
    }
    if (id->nii_object < platform::firstUserLineId && !recordExists(*domain, id->nii_object, &error)) {
        return error == SQLITE_OK ? NI_BADID : statusOf(error);
    }
    std::int64_t place = id->nii_object;
    std::string_view rest = path;
    while (!rest.empty()) {
        const std::string_view name = rest.substr(0, rest.find('/'));
        rest.remove_prefix(std::min(rest.size(), name.size() + 1));
        if (name.empty()) {
            continue;
        }
        if (const Lines* lines = linesOf(*domain, place, &error); lines != nullptr) {
            const auto line = lines->byName.find(name);
            if (line == lines->byName.end()) {
                return NI_NODIR;
            }
            place = line->second;
            continue;
        }
        if (error != SQLITE_OK) {
            return statusOf(error);
        }
        platform::SqliteStatement& child =
            domain->prepared(domain->childNamed, "SELECT id FROM record WHERE parent = ?1 AND name = ?2");
        if (!child.bind(1, place).bind(2, name).step()) {
            return child.error() == SQLITE_OK ? NI_NODIR : statusOf(child.error());
        }
        place = child.number(0);
    }
    *id = {static_cast<std::uint32_t>(place), 0};
    return NI_OK;
}

ni_status ni_children(ni_domain* domain, ni_id* id, ni_idlist* children) {
    int error = begin(*domain);
    if (error != SQLITE_OK) {
        return statusOf(error);
    }
    const Lines* lines = linesOf(*domain, id->nii_object, &error);
    if (lines == nullptr) {
        return error == SQLITE_OK ? addStoredChildren(*domain, id->nii_object, children) : statusOf(error);
    }
    for (const auto& record : lines->block->records()) {
        children->niil_val.push_back(static_cast<std::uint32_t>(record.id));
    }
    return NI_OK;
}

ni_status ni_lookup(ni_domain* domain, ni_id* id, std::string_view property, std::string_view value,
                    ni_idlist* children) {
    int error = begin(*domain);
    if (error != SQLITE_OK) {
        return statusOf(error);
    }
    const Lines* lines = linesOf(*domain, id->nii_object, &error);
    if (lines != nullptr || error != SQLITE_OK) {
        if (lines != nullptr) {
            addMatches(*lines->block, property, value, children);
        }
        return statusOf(error);
    }
    const auto block = platform::RecordBlock::children(domain->connection.database(), id->nii_object, &error);
    if (error == SQLITE_OK && block.records().empty() && !recordExists(*domain, id->nii_object, &error)) {
        return error == SQLITE_OK ? NI_BADID : statusOf(error);
    }
    addMatches(block, property, value, children);
    return statusOf(error);
}

ni_status ni_listprops(ni_domain* domain, ni_id* id, ni_namelist* properties) {
    Found found;
    if (const ni_status status = findRecord(*domain, id->nii_object, &found); status != NI_OK) {
        return status;
    }
    const auto all = (*found.block)->properties(*found.record);
    properties->ninl_val.reserve(properties->ninl_val.size() + all.size());
    for (const auto& property : all) {
        properties->ninl_val.push_back(property.name);
    }
    properties->texts_.push_back(*found.block);
    return NI_OK;
}

ni_status ni_lookupprop(ni_domain* domain, ni_id* id, std::string_view property, ni_namelist* values) {
    Found found;
    if (const ni_status status = findRecord(*domain, id->nii_object, &found); status != NI_OK) {
        return status;
    }
    const auto* stored = (*found.block)->property(*found.record, property);
    if (stored == nullptr) {
        return NI_NOPROP;
    }
    const auto all = (*found.block)->values(*stored);
    values->ninl_val.insert(values->ninl_val.end(), all.begin(), all.end());
    values->texts_.push_back(*found.block);
    return NI_OK;
}

void ni_namelist_free(ni_namelist* list) {
    list->ninl_val.clear();
    list->texts_.clear();
}

void ni_idlist_free(ni_idlist* list) {
    list->niil_val.clear();
}

void ni_free(ni_domain* domain) {
    std::unique_ptr<ni_domain>(domain).reset();
}

const char* ni_error(ni_status status) {
    constexpr std::array texts{
        std::pair{NI_OK, "Operation succeeded"},
        std::pair{NI_BADID, "No such record"},
        std::pair{NI_NODIR, "No such directory"},
        std::pair{NI_NOPROP, "No such property"},
        std::pair{NI_SYSTEMERR, "The directory cannot be read"},
        std::pair{NI_NORESPONSE, "No response from the directory"},
        std::pair{NI_CANTOPEN, "The directory cannot be opened"},
        std::pair{NI_FAILED, "Not a request that the directory can answer"},
    };
    for (const auto& [code, text] : texts) {
        if (code == status) {
            return text;
        }
    }
    return "Unknown error";
}
