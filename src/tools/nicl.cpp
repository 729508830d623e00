#include "directory/DirectoryRules.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/posix/Status.h"
#include "tools/ComputerTools.h"
#include "tools/DirectorySession.h"
#include "tools/DirectoryTools.h"
#include "tools/StoreChange.h"
#include "tools/ToolText.h"

#include <utility>

namespace tools {

using platform::Status;

namespace {

constexpr const char* usage = "usage: nicl [--root DIR | --system] . -create PATH [PROPERTY [VALUE...]] | "
                              "-append PATH PROPERTY VALUE... | "
                              "-delete PATH [PROPERTY [VALUE...]]";

ToolResult complaintOf(const Status& status) {
    return status.isOk() ? ToolResult() : ToolResult{oneLine("nicl: " + status.text()), 1};
}

} // namespace

DirectoryPlace DirectoryPlace::ofRoot(const std::string& rootFolder) {
    const platform::EmbeddedRoot root(rootFolder);
    DirectoryPlace place(root.storeFile());
    place.root = root.folder();
    return place;
}

DirectoryPlace DirectoryPlace::ofComputer(platform::SystemFiles files, uid_t user) {
    DirectoryPlace place(files.storeFile());
    place.computer = Computer{std::move(files), user};
    return place;
}

ToolResult DirectorySession::nicl(std::span<const std::string> arguments) {
    const auto change = directoryChange(arguments);
    if (!change) {
        return {std::string(usage) + "\n", 1};
    }
    Status status = checkDirectoryChange(*change);
    if (status.isOk()) {
        status = place_.computer ? changeComputer(place_, *change) : changeStore(store(), *change, accounts_);
    }
    return complaintOf(status);
}

ToolResult runNicl(const DirectoryPlace& place, std::span<const std::string> arguments) {
    DirectorySession session(place);
    ToolResult result = session.nicl(arguments);
    if (result.status == 0) {
        const Status status = session.commit();
        result = complaintOf(status.isOk() || session.hasCommitted()
                                 ? status
                                 : refusal(*directoryChange(arguments), status.text()));
    }
    return result;
}

} // namespace tools
