#include "tools/Helper.h"

#include "platform/foundation/SystemPaths.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/host/SystemHost.h"
#include "platform/samba/SambaAccounts.h"
#include "platform/security/HelperProtocol.h"
#include "tools/HelperComplaint.h"
#include "tools/HelperCopy.h"
#include "tools/HelperFolders.h"
#include "tools/HelperService.h"
#include "tools/HelperSessions.h"
#include "tools/HelperSignal.h"
#include "tools/SmbConfCheck.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tools {

using platform::Status;

namespace {

namespace systempath = platform::systempath;

using Arguments = std::span<const std::string>;

HelperResult said(const std::string& tool, const Status& status) {
    return {complaint(tool, status), "", status.isOk() ? 0 : 1};
}

HelperResult wrongArguments(const std::string& tool, const char* usage) {
    return said(tool, Status::failure("wrong arguments", {}, std::string("use ") + usage));
}

DirectoryPlace directoryOf(const HelperPlace& place) {
    return place.root.empty()
               ? DirectoryPlace::ofComputer(platform::SystemFiles(place.systemPrefix), place.user)
               : DirectoryPlace::ofRoot(place.root);
}

HelperResult nicl(const HelperPlace& place, Arguments arguments) {
    ToolResult result = runNicl(directoryOf(place), arguments);
    return {std::move(result.output), "", result.status};
}

HelperResult dscl(const HelperPlace& place, Arguments arguments) {
    ToolResult result = runDscl(directoryOf(place), arguments);
    return {std::move(result.output), "", result.status};
}

HelperResult cp(const HelperPlace& place, Arguments arguments) {
    if (arguments.size() != 2) {
        return wrongArguments("cp", "cp SOURCE TARGET");
    }
    constexpr std::array targets = {systempath::smbConf, systempath::appleFileServer};
    if (std::ranges::find(targets, arguments[1]) == targets.end()) {
        return said("cp", Status::failure("cannot replace", arguments[1],
                                          "is not one of the settings files; only those are replaced"));
    }
    if (!place.root.empty()) {
        const std::string target = platform::EmbeddedRoot(place.root).map(arguments[1]);
        return said("cp", copyIntoPlace(arguments[0], target, place.user));
    }
    const platform::SystemFiles files(place.systemPrefix);
    const std::string target = platform::systemFileFor(arguments[1], files);
    if (arguments[1] == systempath::smbConf) {
        return said("cp", copyIntoPlace(arguments[0], target, place.user, &checkSmbConf));
    }
    // Nothing may have been kept in that folder before.
    std::error_code error;
    std::filesystem::create_directories(files.folder(), error);
    const Status status = error ? Status::failure("cannot make", files.folder(), error.message()) : Status();
    return said("cp", status.isOk() ? copyIntoPlace(arguments[0], target, place.user) : status);
}

FolderHost hostOf(const HelperPlace& place) {
    return place.root.empty() ? FolderHost::Computer : FolderHost::Embedded;
}

HelperResult chown(const HelperPlace& place, Arguments arguments) {
    if (arguments.size() != 2) {
        return wrongArguments("chown", "chown OWNER:GROUP FOLDER");
    }
    const std::string storeFile = place.root.empty() ? "" : platform::EmbeddedRoot(place.root).storeFile();
    return said("chown", changeOwner(arguments[0], arguments[1], platform::DirectoryAccounts(storeFile),
                                     hostOf(place)));
}

HelperResult chmod(const HelperPlace& place, Arguments arguments) {
    return arguments.size() == 2 ? said("chmod", changeMode(arguments[0], arguments[1], hostOf(place)))
                                 : wrongArguments("chmod", "chmod MODE FOLDER");
}

/// Writes errors to standard error, because the administrator need not be told that a server has ended
/// meanwhile.
HelperResult kill(const HelperPlace& place, Arguments arguments) {
    HelperResult result = arguments.size() == 2 && arguments[0] == "-1"
                              ? said("kill", hangUpServer(arguments[1], place.root))
                              : wrongArguments("kill", "kill -1 PROCESS");
    std::swap(result.output, result.errors);
    return result;
}

HelperResult service(const HelperPlace& place, Arguments arguments) {
    return said("service", place.root.empty()
                               ? controlService(arguments)
                               : Status::failure("cannot start", "the SMB server",
                                                 "it is not this root's; start Brindle with --serve"));
}

std::optional<platform::SambaAccounts> serverOf(const HelperPlace& place) {
    return place.root.empty()
               ? std::nullopt
               : std::optional(platform::SambaAccounts(platform::EmbeddedRoot(place.root).sambaPaths()));
}

/// The only tool whose output is its result.
HelperResult smbstatus(const HelperPlace& place, Arguments arguments) {
    auto listing = listSessions(serverOf(place), arguments);
    return listing.isOk() ? HelperResult{std::move(*listing), "", 0} : said("smbstatus", listing.status());
}

HelperResult smbcontrol(const HelperPlace& place, Arguments arguments) {
    return said("smbcontrol", endSessions(serverOf(place), arguments));
}

struct Tool {
    std::string_view path;
    HelperResult (*run)(const HelperPlace& place, Arguments arguments);
};

constexpr std::array<Tool, 9> helperTools = {{{systempath::nicl, nicl},
                                              {systempath::dscl, dscl},
                                              {systempath::cp, cp},
                                              {systempath::chown, chown},
                                              {systempath::chmod, chmod},
                                              {systempath::kill, kill},
                                              {systempath::smbstatus, smbstatus},
                                              {systempath::smbcontrol, smbcontrol},
                                              {systempath::service, service}}};

const Tool* findTool(const std::string& path) {
    const auto* const found = std::ranges::find(helperTools, path, &Tool::path);
    return found == helperTools.end() ? nullptr : found;
}

} // namespace

std::optional<HelperRequest> parseHelperRequest(std::string_view bytes) {
    if (bytes.empty() || bytes.back() != '\0') {
        return std::nullopt;
    }
    HelperRequest request;
    const std::size_t toolEnd = bytes.find('\0');
    request.tool = bytes.substr(0, toolEnd);
    bytes.remove_prefix(toolEnd + 1);
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\0');
        request.arguments.emplace_back(bytes.substr(0, end));
        bytes.remove_prefix(end + 1);
    }
    return request;
}

bool isHelperTool(const std::string& tool) {
    return findTool(tool) != nullptr;
}

HelperTools::HelperTools(HelperPlace place) : place_(std::move(place)) {
    if (!place_.root.empty()) {
        directory_.emplace(DirectoryPlace::ofRoot(place_.root));
    }
}

HelperResult HelperTools::run(const HelperRequest& request) {
    if (directory_ && platform::waitsForCommit(request.tool)) {
        ToolResult result = directory_->nicl(request.arguments);
        return {std::move(result.output), "", result.status};
    }
    HelperResult committed = settle();
    return committed.status == 0 ? runHelperTool(place_, request) : committed;
}

HelperResult HelperTools::settle() {
    return said("brindle-helper", directory_ ? directory_->commit() : Status());
}

HelperResult runHelperTool(const HelperPlace& place, const HelperRequest& request) {
    const Tool* tool = findTool(request.tool);
    return tool != nullptr ? tool->run(place, request.arguments)
                           : said("brindle-helper",
                                  Status::failure("cannot run", request.tool, "is not on the list of tools"));
}

} // namespace tools
