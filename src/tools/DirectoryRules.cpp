#include "tools/DirectoryRules.h"

#include "platform/foundation/NSString.h"

#include <algorithm>
#include <array>

#include <strings.h>

namespace {

bool hasControlCharacter(const std::string& text) {
    return std::ranges::any_of(text, [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte < 0x20 || byte == 0x7f;
    });
}

/// A share, or a record below one: a share's name with a / in it leads there.
bool isShare(const RecordPath& path) {
    return path.size() >= 3 && path[0] == "config" && path[1] == "Brindle";
}

std::string ruleBrokenByAccountName(const std::string& name) {
    if (name.find_first_of(",:/") != std::string::npos) {
        return "an account's name may hold no comma, no colon and no /; leave them out";
    }
    return {};
}

std::string ruleBrokenByShareName(const std::string& name) {
    if (name.find_first_of("[]") != std::string::npos) {
        return "a share's name may hold no [ and no ]; leave them out";
    }
    if (name.starts_with(' ') || name.ends_with(' ')) {
        return "a share's name may not begin or end with a blank; leave it out";
    }
    return {};
}

/// Such a section of the SMB server's configuration is not a share's: it would be rewritten, or taken away,
/// with the share.
std::string ruleBrokenByReservedName(const std::string& name) {
    constexpr std::array reserved{"global", "homes"};
    const bool isReserved = std::ranges::any_of(
        reserved, [&](const char* each) { return ::strcasecmp(name.c_str(), each) == 0; });
    return isReserved ? "the SMB server takes " + name + " for a section of its own; choose another name"
                      : std::string();
}

/// The folder is a value of the SMB server's configuration, where blanks around it are left out and a
/// backslash takes in the next line: another folder would be served.
std::string ruleBrokenByFolder(const std::string& folder) {
    if (folder.ends_with('\\')) {
        return "a share's folder may not end in a backslash; choose another folder";
    }
    if (folder.starts_with(' ') || folder.ends_with(' ')) {
        return "a share's folder may not begin or end with a blank; choose another folder";
    }
    return {};
}

} // namespace

std::optional<RecordPath> recordPath(const std::string& path) {
    if (!path.starts_with('/')) {
        return std::nullopt;
    }
    if (path == "/") {
        return RecordPath();
    }
    RecordPath components = componentsSeparatedByString(std::string_view(path).substr(1), "/");
    if (std::ranges::any_of(components, &std::string::empty)) {
        return std::nullopt;
    }
    return components;
}

bool isFixed(const RecordPath& path) {
    return path.empty() || path == RecordPath{"users"} || path == RecordPath{"groups"} ||
           path == RecordPath{"config"} || path == RecordPath{"config", "Brindle"};
}

bool isAccount(const RecordPath& path) {
    return path.size() >= 2 && (path[0] == "users" || path[0] == "groups");
}

std::string ruleBrokenByName(const RecordPath& path) {
    const std::string& name = path.back();
    if (name.empty()) {
        return "a record's name may not be empty; give it one";
    }
    if (name.find('/') != std::string::npos) {
        return "a record's name may hold no /; leave it out";
    }
    if (hasControlCharacter(name)) {
        return "a name may hold no control character; leave it out";
    }
    if (path.size() == 2 && isAccount(path)) {
        return ruleBrokenByAccountName(name);
    }
    if (!isShare(path)) {
        return {};
    }
    std::string broken = ruleBrokenByShareName(name);
    return broken.empty() && path.size() == 3 ? ruleBrokenByReservedName(name) : broken;
}

std::string ruleBrokenByValues(const RecordPath& path, const std::string& property,
                               std::span<const std::string> values) {
    if (property.empty()) {
        return "a property's name may not be empty; give it one";
    }
    if (hasControlCharacter(property) || std::ranges::any_of(values, hasControlCharacter)) {
        return "a property may hold no control character; leave it out";
    }
    for (const auto& value : values) {
        if (isShare(path) && property == "directory_path") {
            if (std::string broken = ruleBrokenByFolder(value); !broken.empty()) {
                return broken;
            }
        }
        if (path.size() == 2 && path[0] == "groups" && property == "users") {
            if (std::string broken = ruleBrokenByAccountName(value); !broken.empty()) {
                return broken;
            }
        }
    }
    return {};
}
