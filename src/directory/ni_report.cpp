#include "directory/ni_report.h"

#include "platform/foundation/NSLog.h"

#include <algorithm>

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
    ni_domain* opened = nullptr;
    if (const ni_status status = ni_open(nullptr, ".", &opened); status != NI_OK) {
        NSLog("Can't connect to local NetInfo server\n");
        return status;
    }
    const platform::OwnedDomain domain(opened);
    ni_setabort(domain.get(), 1);
    ni_setreadtimeout(domain.get(), timeoutSeconds);
    ni_setwritetimeout(domain.get(), timeoutSeconds);
    ni_id id;
    if (const ni_status status = ni_root(domain.get(), &id); status != NI_OK) {
        NSLog("Can't connect to local NetInfo server\n");
        return status;
    }
    if (const ni_status status = ni_pathsearch(domain.get(), &id, path.c_str()); status != NI_OK) {
        NSLog("Error opening %s", path);
        return status;
    }
    return ni_report(domain.get(), id, properties, output);
}
