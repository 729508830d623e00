#include "directory/DirectoryRules.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/host/SambaAccounts.h"
#include "platform/netinfo/Store.h"
#include "tools/DirectoryTools.h"
#include "tools/ToolText.h"

#include <algorithm>

namespace {

constexpr const char* usage = "usage: dscl [--root DIR] . -passwd /Users/NAME PASSWORD";

/// The name in "/Users/NAME"; empty when `path` is another.
std::string userOfPath(const std::string& path) {
    const auto components = recordPath(path);
    const bool isUser = components && components->size() == 2 &&
                        (components->front() == "Users" || components->front() == "users");
    return isUser ? components->back() : std::string();
}

/// Nothing, or what failed and what to do. Never quotes the password.
std::string setPassword(const DirectoryPlace& place, const std::string& user, const std::string& password) {
    const bool hasControl = std::ranges::any_of(password, [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
    });
    if (hasControl) {
        return "a password may hold no control character; choose another one";
    }
    platform::Store store(place.storeFile, platform::Store::Opening::Existing, place.waitSeconds);
    const RecordPath path{"users", user};
    if (!store.find(path)) {
        return "there is no such user; create it first";
    }
    if (place.root.empty()) {
        return "no file server belongs to this directory; give its root with --root DIR";
    }
    const platform::SambaAccounts accounts{platform::EmbeddedRoot(place.root)};
    if (!accounts.exists()) {
        return "this root has no password database (" + platform::EmbeddedRoot(place.root).sambaFolder() +
               " is missing); make that folder, or a new root";
    }
    return accounts.setPassword(store, user, password);
}

} // namespace

ToolResult runDscl(const DirectoryPlace& place, std::span<const std::string> arguments) {
    if (arguments.size() != 4 || arguments[0] != "." || arguments[1] != "-passwd") {
        return {std::string(usage) + "\n", 1};
    }
    const std::string user = userOfPath(arguments[2]);
    std::string failure = "the path of a user is /Users/NAME; write it so";
    if (!user.empty()) {
        try {
            failure = setPassword(place, user, arguments[3]);
        } catch (const platform::StoreError& error) {
            failure = error.what();
        }
    }
    if (failure.empty()) {
        return {};
    }
    return {oneLine("dscl: cannot set the password of " + arguments[2] + ": " + failure), 1};
}
