#include "directory/DirectoryRules.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/netinfo/Store.h"
#include "platform/samba/SambaAccounts.h"
#include "tools/ComputerTools.h"
#include "tools/DirectoryTools.h"
#include "tools/ToolText.h"

#include <utility>

namespace tools {

namespace {

constexpr const char* usage = "usage: dscl [--root DIR | --system] . -passwd /Users/NAME PASSWORD";

/// The name in "/Users/NAME"; empty for any other path.
std::string userOfPath(const std::string& path) {
    const auto components = recordPath(path);
    const bool isUser = components && components->size() == 2 &&
                        (components->front() == "Users" || components->front() == "users");
    return isUser ? components->back() : std::string();
}

/// A failure never quotes the password.
platform::Status setPassword(const DirectoryPlace& place, const std::string& path,
                             const std::string& password) {
    const auto refused = [&](std::string why) {
        return platform::Status::failure("cannot set the password of", path, std::move(why));
    };
    const std::string user = userOfPath(path);
    if (user.empty()) {
        return refused("the path of a user is /Users/NAME; write it so");
    }
    if (const auto status = platform::SambaAccounts::checkPassword(password); !status.isOk()) {
        return refused(std::string(status.why()));
    }
    if (place.computer) {
        const platform::Status status = setComputerPassword(place, user, password);
        return status.isOk() ? status : refused(std::string(status.why()));
    }
    const platform::SambaPaths paths = platform::EmbeddedRoot(place.root).sambaPaths();
    const platform::SambaAccounts accounts(paths);
    {
        platform::Store store(place.storeFile, platform::Store::Opening::Existing, place.waitSeconds);
        const bool isUser = store.find(RecordPath{"users", user}).has_value();
        if (!store.status().isOk()) {
            return refused(store.status().text());
        }
        if (!isUser) {
            return refused("there is no such user; create it first");
        }
        if (place.root.empty() && !place.keepsPasswords) {
            return {};
        }
        if (place.root.empty()) {
            return refused("no file server belongs to this directory; give its root with --root DIR");
        }
        if (!accounts.exists()) {
            return refused("this root has no password database (" + paths.folder +
                           " is missing); make that folder, or a new root");
        }
        if (!place.keepsPasswords) {
            const platform::Status status = platform::SambaAccounts::checkPrograms();
            return status.isOk() ? status : refused(status.text());
        }
        platform::Status status = accounts.makeFolders();
        if (status.isOk()) {
            status = accounts.writeAccountLists(store);
        }
        if (!status.isOk()) {
            return refused(status.text());
        }
    } // release the store, because the password database may be slow
    const platform::Status status = accounts.setPassword(user, password);
    return status.isOk() ? status : refused(status.text());
}

} // namespace

ToolResult runDscl(const DirectoryPlace& place, std::span<const std::string> arguments) {
    if (arguments.size() != 4 || arguments[0] != "." || arguments[1] != "-passwd") {
        return {std::string(usage) + "\n", 1};
    }
    const platform::Status status = setPassword(place, arguments[2], arguments[3]);
    return status.isOk() ? ToolResult() : ToolResult{oneLine("dscl: " + status.text()), 1};
}

} // namespace tools
