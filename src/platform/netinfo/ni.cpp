#include "platform/netinfo/ni.h"

#include "platform/foundation/Host.h"
#include "platform/netinfo/OpenDomain.h"
#include "platform/netinfo/RecordContent.h"
#include "platform/netinfo/StoreWait.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

#include <unistd.h>

using platform::beginReading;
using platform::findRecord;
using platform::FoundRecord;
using platform::linesOf;
using platform::recordExists;
using platform::RecordLines;
using platform::statusOf;

namespace {

/// The result of opening the directory in `file`; what could not be opened is why the lists are empty.
ni_status openingStatus(const std::string& file, int error) {
    if (error != SQLITE_OK) {
        platform::setDirectoryProblem(platform::storeProblem(file, error, 0));
    }
    return statusOf(error);
}

/// Appends the ids of the children that have `value` among the values of `property`.
void addMatches(const platform::RecordBlock& block, std::string_view property, std::string_view value,
                ni_idlist* children) {
    platform::ContentWriter packed;
    packed.value(value);
    for (const auto& record : block.records()) {
        if (record.content.find(packed.content()) == std::string_view::npos) {
            continue; // true of nearly all records of a large directory, which then need not be unpacked
        }
        const auto* stored = block.property(record, property);
        if (stored != nullptr && std::ranges::count(block.values(*stored), value) > 0) {
            children->niil_val.push_back(static_cast<std::uint32_t>(record.id));
        }
    }
}

ni_status findIn(ni_domain* opened, const std::string& path, ni_id* id) {
    ni_setabort(opened, 1); // without this its calls would wait for ever
    const ni_status status = ni_root(opened, id);
    return status == NI_OK ? ni_pathsearch(opened, id, path.c_str()) : status;
}

} // namespace

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
    // On a computer where nothing has been changed yet there is no store.
    const bool isMissing = ::access(file.c_str(), F_OK) != 0 && errno == ENOENT;
    const int error = isMissing ? opened->connection.openEmpty() : opened->connection.open(file);
    if (error == SQLITE_OK) {
        *domain = opened.release();
    }
    return openingStatus(file, error);
}

ni_status ni_openfile(const std::string& file, ni_domain** domain) {
    platform::Host::settlePendingWrites();
    auto opened = std::make_unique<ni_domain>();
    opened->file = file;
    const int error = opened->connection.open(file);
    if (error == SQLITE_OK) {
        *domain = opened.release();
    }
    return openingStatus(file, error);
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
    const int error = beginReading(*domain);
    if (error == SQLITE_OK) {
        *id = {};
    }
    return statusOf(error);
}

ni_status ni_pathsearch(ni_domain* domain, ni_id* id, const char* path) {
    int error = beginReading(*domain);
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
        if (const RecordLines* lines = linesOf(*domain, place, &error); lines != nullptr) {
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
    *id = {static_cast<std::uint32_t>(place)};
    return NI_OK;
}

ni_status ni_children(ni_domain* domain, ni_id* id, ni_idlist* children) {
    int error = beginReading(*domain);
    if (error != SQLITE_OK) {
        return statusOf(error);
    }
    const RecordLines* lines = linesOf(*domain, id->nii_object, &error);
    if (lines == nullptr) {
        return error == SQLITE_OK ? platform::addStoredChildren(*domain, id->nii_object, children)
                                  : statusOf(error);
    }
    for (const auto& record : lines->block->records()) {
        children->niil_val.push_back(static_cast<std::uint32_t>(record.id));
    }
    return NI_OK;
}

ni_status ni_lookup(ni_domain* domain, ni_id* id, std::string_view property, std::string_view value,
                    ni_idlist* children) {
    int error = beginReading(*domain);
    if (error != SQLITE_OK) {
        return statusOf(error);
    }
    const RecordLines* lines = linesOf(*domain, id->nii_object, &error);
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
    FoundRecord found;
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
    FoundRecord found;
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

namespace platform {

ni_status openRecord(const std::string& file, const std::string& path, OwnedDomain* domain, ni_id* id) {
    ni_domain* opened = nullptr;
    const ni_status status = ni_openfile(file, &opened);
    domain->reset(opened);
    return status == NI_OK ? findIn(opened, path, id) : status;
}

ni_status openLocalRecord(const std::string& path, OwnedDomain* domain, ni_id* id) {
    ni_domain* opened = nullptr;
    const ni_status status = ni_open(nullptr, ".", &opened);
    domain->reset(opened);
    return status == NI_OK ? findIn(opened, path, id) : status;
}

} // namespace platform
