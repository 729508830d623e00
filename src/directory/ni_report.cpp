#include "directory/ni_report.h"

#include "platform/foundation/NSLog.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int timeoutSeconds = 30;

/// Logs a failure. Returns whether there was none.
bool succeeded(const char* label, ni_status status) {
    if (status != NI_OK) {
        errexit(label, status);
    }
    return status == NI_OK;
}

/// What a report reads of each record, kept so that a long report does not ask for memory again and again.
struct RecordLists {
    ni_namelist names;
    ni_namelist values;
};

/// Appends the field of one requested property, without the tab after it. Returns whether it could be read.
bool appendField(ni_domain* domain, ni_id& id, RecordLists& lists, const std::string& wanted,
                 std::string& line) {
    const auto& names = lists.names.ninl_val;
    auto& values = lists.values.ninl_val;
    const auto name = std::ranges::find(names, wanted);
    const bool isRead =
        name == names.end() || succeeded("ni_lookupprop", ni_lookupprop(domain, &id, *name, &lists.values));
    if (values.empty()) {
        line += reportNoValue;
        return isRead;
    }
    for (bool first = true; const auto& value : values) {
        if (!first) {
            line += ',';
        }
        first = false;
        line += value;
    }
    ni_namelist_free(&lists.values);
    return isRead;
}

/// Appends the line of the record `id`. Returns whether all of it could be read.
bool appendLine(ni_domain* domain, ni_id id, std::span<const std::string> properties, RecordLists& lists,
                std::vector<std::string>& output) {
    std::string line;
    line.reserve(output.empty() ? 0 : output.back().size()); // most lines are about as long as the one before
    bool isRead = succeeded("ni_listprops", ni_listprops(domain, &id, &lists.names));
    for (const auto& property : properties) {
        isRead = appendField(domain, id, lists, property, line) && isRead;
        line += '\t';
    }
    line += '\n';
    output.push_back(std::move(line));
    ni_namelist_free(&lists.names);
    return isRead;
}

/// Appends the lines of the children of the directory `id`. Returns whether all of them could be read.
bool appendLines(ni_domain* domain, ni_id id, std::span<const std::string> properties,
                 std::vector<std::string>& output) {
    ni_idlist children;
    bool isRead = succeeded("ni_children", ni_children(domain, &id, &children));
    output.reserve(output.size() + children.niil_val.size()); // so that a long list is not moved as it grows
    RecordLists lists;
    for (const std::uint32_t child : children.niil_val) {
        isRead = appendLine(domain, {child}, properties, lists, output) && isRead;
    }
    ni_idlist_free(&children);
    return isRead;
}

/// Opens the local domain and begins to read it. Logs why not.
ni_status openLocalDomain(platform::OwnedDomain& domain) {
    ni_domain* opened = nullptr;
    ni_status status = ni_open(nullptr, ".", &opened);
    if (status == NI_OK) {
        domain.reset(opened);
        ni_setabort(opened, 1);
        ni_setreadtimeout(opened, timeoutSeconds);
        ni_setwritetimeout(opened, timeoutSeconds);
        ni_id root;
        status = ni_root(opened, &root);
    }
    if (status != NI_OK) {
        NSLog("Can't connect to local NetInfo server\n");
    }
    return status;
}

/// Finds the directory at `path`. Logs why not.
ni_status findDirectory(ni_domain& domain, const std::string& path, ni_id* id) {
    const ni_status status = ni_pathsearch(&domain, id, path.c_str());
    if (status != NI_OK) {
        NSLog("Error opening %s", path);
    }
    return status;
}

} // namespace

void errexit(const char* label, ni_status status) {
    NSLog("%s: %s\n", label, ni_error(status));
}

int ni_report_dir(ni_domain* domain, ni_id id, std::span<const std::string> properties,
                  std::vector<std::string>& output) {
    RecordLists lists;
    static_cast<void>(
        appendLine(domain, id, properties, lists, output)); // what cannot be read has been logged
    return NI_OK;
}

int ni_report(ni_domain* domain, ni_id id, std::span<const std::string> properties,
              std::vector<std::string>& output) {
    static_cast<void>(appendLines(domain, id, properties, output)); // as above
    return NI_OK;
}

int ni_report_local(const std::string& path, std::span<const std::string> properties,
                    std::vector<std::string>& output) {
    platform::OwnedDomain domain;
    ni_status status = openLocalDomain(domain);
    ni_id id;
    if (status == NI_OK) {
        status = findDirectory(*domain, path, &id);
    }
    return status == NI_OK ? ni_report(domain.get(), id, properties, output) : status;
}

int ni_report_local(const std::string& path, std::span<const std::string> properties, KeptReport& kept) {
    KeptReport last = std::exchange(kept, {});
    platform::OwnedDomain domain;
    if (const ni_status status = openLocalDomain(domain); status != NI_OK) {
        return status;
    }
    const auto stamp = platform::stampOf(*domain);
    if (last.lines != nullptr && stamp && stamp == last.stamp) {
        kept = std::move(last);
        return NI_OK;
    }
    ni_id id;
    if (const ni_status status = findDirectory(*domain, path, &id); status != NI_OK) {
        return status;
    }
    std::vector<std::string> lines;
    const bool isRead = appendLines(domain.get(), id, properties, lines);
    // What could not be read is worth another try.
    kept = {isRead ? stamp : std::nullopt,
            std::make_shared<const std::vector<std::string>>(std::move(lines))};
    return NI_OK;
}
