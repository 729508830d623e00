#include "platform/netinfo/ni.h"

#include "platform/foundation/Host.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/ReadConnection.h"
#include "platform/netinfo/RecordBlock.h"
#include "platform/netinfo/StoreWait.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

#include <unistd.h>

struct ni_domain {
    platform::ReadConnection connection;
    bool aborts = false;
    int readTimeout = 30;
    std::deque<platform::RecordBlock>
        blocks;           ///< what was read ahead; views into it were handed out, so all of it stays
    std::size_t last = 0; ///< the block that answered last
    std::optional<platform::AccountFiles> accounts;
    // The ids of /users and /groups, where their records are the lines of files; else 0.
    std::int64_t usersDirectory = 0;
    std::int64_t groupsDirectory = 0;
    // Their blocks among `blocks`, once they have been read.
    const platform::RecordBlock* users = nullptr;
    const platform::RecordBlock* groups = nullptr;
    std::string file;

    void applyTimeout();
    [[nodiscard]] int begin();
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
    const platform::RecordBlock* block = nullptr;
    const platform::RecordBlock::Record* record = nullptr;
};

Found findAmongRead(ni_domain& domain, std::uint32_t id) {
    if (domain.last < domain.blocks.size()) {
        if (const auto* record = domain.blocks[domain.last].find(id)) {
            return {&domain.blocks[domain.last], record};
        }
    }
    for (std::size_t index = 0; index < domain.blocks.size(); ++index) {
        if (const auto* record = domain.blocks[index].find(id)) {
            domain.last = index;
            return {&domain.blocks[index], record};
        }
    }
    return {};
}

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
const platform::RecordBlock* linesOf(ni_domain& domain, std::int64_t directory, int* error) {
    *error = SQLITE_OK;
    const bool isUsers = directory == domain.usersDirectory;
    if (!domain.accounts || directory == 0 || (!isUsers && directory != domain.groupsDirectory)) {
        return nullptr;
    }
    const platform::RecordBlock*& known = isUsers ? domain.users : domain.groups;
    if (known == nullptr) {
        const auto read = isUsers ? platform::userLines : platform::groupLines;
        auto block = read(*domain.accounts, domain.connection.database(), directory, error);
        if (*error != SQLITE_OK) {
            return nullptr;
        }
        domain.blocks.push_back(std::move(block));
        known = &domain.blocks.back();
    }
    return known;
}

std::optional<std::int64_t> lineNamed(const platform::RecordBlock& lines, std::string_view name) {
    for (const auto& record : lines.records()) {
        const auto* property = lines.property(record, "name");
        if (property != nullptr && lines.values(*property).front() == name) {
            return record.id;
        }
    }
    return std::nullopt;
}

ni_status findRecord(ni_domain& domain, std::uint32_t id, Found* found) {
    *found = findAmongRead(domain, id);
    if (found->record != nullptr) {
        return found->block->isWhole(*found->record) ? NI_OK : NI_SYSTEMERR;
    }
    int error = begin(domain);
    if (error != SQLITE_OK) {
        return statusOf(error);
    }
    auto block = platform::RecordBlock::single(domain.connection.database(), id, &error);
    if (error != SQLITE_OK) {
        return statusOf(error);
    }
    if (block.records().empty()) {
        return NI_BADID;
    }
    domain.blocks.push_back(std::move(block));
    domain.last = domain.blocks.size() - 1;
    *found = {&domain.blocks.back(), &domain.blocks.back().records().front()};
    return found->block->isWhole(*found->record) ? NI_OK : NI_SYSTEMERR;
}

bool recordExists(ni_domain& domain, std::uint32_t id, int* error) {
    platform::SqliteStatement row(domain.connection.database(), "SELECT 1 FROM record WHERE id = ?1");
    row.bind(1, std::int64_t{id});
    const bool exists = row.step();
    *error = row.error();
    return exists;
}

ni_status readChildren(ni_domain& domain, std::uint32_t parent, const platform::RecordBlock** children) {
    int error = begin(domain);
    if (error != SQLITE_OK) {
        return statusOf(error);
    }
    *children = linesOf(domain, parent, &error);
    if (*children != nullptr || error != SQLITE_OK) {
        return statusOf(error);
    }
    auto block = platform::RecordBlock::children(domain.connection.database(), parent, &error);
    if (error != SQLITE_OK) {
        return statusOf(error);
    }
    if (block.records().empty() && !recordExists(domain, parent, &error)) {
        return error == SQLITE_OK ? NI_BADID : statusOf(error);
    }
    domain.blocks.push_back(std::move(block));
    domain.last = domain.blocks.size() - 1;
    *children = &domain.blocks.back();
    return NI_OK;
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
    platform::SqliteStatement child(domain->connection.database(),
                                    "SELECT id FROM record WHERE parent = ?1 AND name = ?2");
    std::int64_t place = id->nii_object;
    std::string_view rest = path;
    while (!rest.empty()) {
        const std::string_view name = rest.substr(0, rest.find('/'));
        rest.remove_prefix(std::min(rest.size(), name.size() + 1));
        if (name.empty()) {
            continue;
        }
        if (const auto* lines = linesOf(*domain, place, &error); lines != nullptr || error != SQLITE_OK) {
            const auto line = lines == nullptr ? std::nullopt : lineNamed(*lines, name);
            if (!line) {
                return error == SQLITE_OK ? NI_NODIR : statusOf(error);
            }
            place = *line;
            continue;
        }
        child.reset();
        if (!child.bind(1, place).bind(2, name).step()) {
            return child.error() == SQLITE_OK ? NI_NODIR : statusOf(child.error());
        }
        place = child.number(0);
    }
    *id = {static_cast<std::uint32_t>(place), 0};
    return NI_OK;
}

ni_status ni_children(ni_domain* domain, ni_id* id, ni_idlist* children) {
    const platform::RecordBlock* block = nullptr;
    if (const ni_status status = readChildren(*domain, id->nii_object, &block); status != NI_OK) {
        return status;
    }
    children->niil_val.reserve(children->niil_val.size() + block->records().size());
    for (const auto& record : block->records()) {
        children->niil_val.push_back(static_cast<std::uint32_t>(record.id));
    }
    return NI_OK;
}

ni_status ni_lookup(ni_domain* domain, ni_id* id, std::string_view property, std::string_view value,
                    ni_idlist* children) {
    const platform::RecordBlock* block = nullptr;
    if (const ni_status status = readChildren(*domain, id->nii_object, &block); status != NI_OK) {
        return status;
    }
    for (const auto& record : block->records()) {
        const auto* stored = block->property(record, property);
        if (stored != nullptr && std::ranges::count(block->values(*stored), value) > 0) {
            children->niil_val.push_back(static_cast<std::uint32_t>(record.id));
        }
    }
    return NI_OK;
}

ni_status ni_listprops(ni_domain* domain, ni_id* id, ni_namelist* properties) {
    Found found;
    if (const ni_status status = findRecord(*domain, id->nii_object, &found); status != NI_OK) {
        return status;
    }
    const auto all = found.block->properties(*found.record);
    properties->ninl_val.reserve(properties->ninl_val.size() + all.size());
    for (const auto& property : all) {
        properties->ninl_val.push_back(property.name);
    }
    return NI_OK;
}

ni_status ni_lookupprop(ni_domain* domain, ni_id* id, std::string_view property, ni_namelist* values) {
    Found found;
    if (const ni_status status = findRecord(*domain, id->nii_object, &found); status != NI_OK) {
        return status;
    }
    const auto* stored = found.block->property(*found.record, property);
    if (stored == nullptr) {
        return NI_NOPROP;
    }
    const auto all = found.block->values(*stored);
    values->ninl_val.insert(values->ninl_val.end(), all.begin(), all.end());
    return NI_OK;
}

void ni_namelist_free(ni_namelist* list) {
    list->ninl_val.clear();
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
