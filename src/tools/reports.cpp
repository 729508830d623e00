#include "directory/ni_report.h"
#include "platform/netinfo/ni.h"
#include "tools/DirectoryTools.h"
#include "tools/ToolText.h"

#include <vector>

namespace tools {

namespace {

ToolResult failed(const std::string& tool, const std::string& path, ni_status status) {
    std::string todo = "check the path";
    if (status == NI_CANTOPEN) {
        todo = "check the root's folder, or start brindle once to have the directory made";
    } else if (status == NI_NORESPONSE) {
        todo = "try again when the program that writes it has ended";
    } else if (status == NI_SYSTEMERR) {
        todo = "check the disk, or restore the directory from a copy";
    }
    return {oneLine(tool + ": cannot read " + path + ": " + ni_error(status) + "; " + todo), 1};
}

/// Appends the record's properties as lines. Returns NI_OK or what failed.
ni_status readRecord(const std::string& path, std::string* lines) {
    platform::OwnedDomain domain;
    ni_id id;
    ni_namelist names;
    ni_status status = platform::openLocalRecord(path, &domain, &id);
    if (status == NI_OK) {
        status = ni_listprops(domain.get(), &id, &names);
    }
    if (status != NI_OK) {
        return status;
    }
    for (const auto name : names.ninl_val) {
        ni_namelist values;
        if (status = ni_lookupprop(domain.get(), &id, name, &values); status != NI_OK) {
            return status;
        }
        lines->append(name).append(":");
        for (const auto value : values.ninl_val) {
            lines->append(" ").append(value);
        }
        lines->append("\n");
    }
    return NI_OK;
}

} // namespace

ToolResult runNireport(std::span<const std::string> arguments) {
    if (arguments.size() < 3 || arguments[0] != ".") {
        return {"usage: nireport [--root DIR | --system] . PATH PROPERTY...\n", 1};
    }
    std::vector<std::string> lines;
    if (const int status = ni_report_local(arguments[1], arguments.subspan(2), lines); status != NI_OK) {
        return failed("nireport", arguments[1], status);
    }
    ToolResult result;
    for (const auto& line : lines) {
        result.output += line;
    }
    return result;
}

ToolResult runNiutil(std::span<const std::string> arguments) {
    if (arguments.size() != 3 || arguments[0] != "-read" || arguments[1] != ".") {
        return {"usage: niutil [--root DIR | --system] -read . PATH\n", 1};
    }
    ToolResult result;
    if (const ni_status status = readRecord(arguments[2], &result.output); status != NI_OK) {
        return failed("niutil", arguments[2], status);
    }
    return result;
}

} // namespace tools
