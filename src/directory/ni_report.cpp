#include "directory/ni_report.h"

#include "platform/foundation/NSLog.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int timeoutSeconds = 30;

/// Appends the field of one requested property, without the tab after it.
void appendField(ni_domain* domain, ni_id& id, const ni_namelist& names, const std::string& wanted,
                 ni_namelist& values, std::string& line) {
    const auto name = std::ranges::find(names.ninl_val, wanted);
    if (name != names.ninl_val.end()) {
        if (const ni_status status = ni_lookupprop(domain, &id, *name, &values); status != NI_OK) {
            errexit("ni_lookupprop", status);
        }
    }
    if (values.ninl_val.empty()) {
        line += reportNoValue;
        return;
    }
    for (bool first = true; const auto& value : values.ninl_val) {
        if (!first) {
            line += ',';
        }
        first = false;
        line += value;
    }
    ni_namelist_free(&values);
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

int reportAt(ni_domain& domain, const std::string& path, std::span<const std::string> properties,
             std::vector<std::string>& output) {
    ni_id id;
    if (const ni_status status = ni_pathsearch(&domain, &id, path.c_str()); status != NI_OK) {
        NSLog("Error opening %s", path);
        return status;
    }
    return ni_report(&domain, id, properties, output);
}

} // namespace

void errexit(const char* label, ni_status status) {
    NSLog("%s: %s\n", label, ni_error(status));
}

int ni_report_dir(ni_domain* domain, ni_id id, std::span<const std::string> properties,
                  std::vector<std::string>& output) {
    std::string line;
    line.reserve(output.empty() ? 0 : output.back().size()); // most lines are about as long as the one before
    ni_namelist names;
    ni_namelist values;
    if (const ni_status status = ni_listprops(domain, &id, &names); status != NI_OK) {
        errexit("ni_listprops", status);
    }
    for (const auto& property : properties) {
        appendField(domain, id, names, property, values, line);
        line += '\t';
    }
    line += '\n';
    output.push_back(std::move(line));
    ni_namelist_free(&names);
    return NI_OK;
}

int ni_report(ni_domain* domain, ni_id id, std::span<const std::string> properties,
              std::vector<std::string>& output) {
    ni_idlist children;
    if (const ni_status status = ni_children(domain, &id, &children); status != NI_OK) {
        errexit("ni_children", status);
    }
    output.reserve(output.size() + children.niil_val.size()); // so that a long list is not moved as it grows
    for (const std::uint32_t child : children.niil_val) {
        ni_report_dir(domain, {child, 0}, properties, output);
    }
    ni_idlist_free(&children);
    return NI_OK;
}

int ni_report_local(const std::string& path, std::span<const std::string> properties,
                    std::vector<std::string>& output) {
    platform::OwnedDomain domain;
    if (const ni_status status = openLocalDomain(domain); status != NI_OK) {
        return status;
    }
    return reportAt(*domain, path, properties, output);
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
    std::vector<std::string> lines;
    const int status = reportAt(*domain, path, properties, lines);
    if (status == NI_OK) {
        // An empty report may also be one whose records could not be listed, which is worth another try.
        kept = {lines.empty() ? std::nullopt : stamp,
                std::make_shared<const std::vector<std::string>>(std::move(lines))};
    }
    return status;
}
