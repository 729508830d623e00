#include "directory/DirectoryRules.h"

#include "platform/foundation/NSString.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

using Values = std::span<const std::string>;

// Each rule below returns an empty string when it is kept, otherwise what is wrong and what to do.

constexpr std::size_t accountDepth = 2; // "/users/NAME"
constexpr std::size_t shareDepth = 3;   // "/config/Brindle/NAME"

bool hasControlCharacter(const std::string& text) {
    return std::ranges::any_of(text, [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte < 0x20 || byte == 0x7f;
    });
}

/// True for a share, and for a record below one.
bool isShare(const RecordPath& path) {
    return path.size() >= shareDepth && path[0] == "config" && path[1] == "Brindle";
}

std::string ruleBrokenByAccountName(const std::string& name) {
    if (name.find_first_of(",:/") != std::string::npos) {
        return "an account's name must not contain a comma, a colon or a /; leave it out";
    }
    return {};
}

/// Compares names of sections as the SMB server does.
bool isSameSection(std::string name, std::string_view section) {
    std::erase(name, ' ');
    return isEqualIgnoringCase(name, section);
}

std::string ruleBrokenByShareName(const std::string& name) {
    if (name.find_first_of("[]") != std::string::npos) {
        return "a share's name must contain neither [ nor ]; leave them out";
    }
    if (name.starts_with(' ') || name.ends_with(' ')) {
        return "a share's name must not begin or end with a blank; leave it out";
    }
    // Such a section applies to other shares too, and would be rewritten or removed with this one.
    constexpr std::array<std::string_view, 4> reserved{"global", "globals", "homes", "printers"};
    if (std::ranges::any_of(reserved, [&](std::string_view each) { return isSameSection(name, each); })) {
        return "the SMB server takes " + name + " for a section of its own; choose another name";
    }
    return {};
}

/// The rules for a record's name. `path` is the record's path, ending in that name.
std::string ruleBrokenByName(const RecordPath& path) {
    const std::string& name = path.back();
    if (name.empty()) {
        return "a record's name must not be empty; give it one";
    }
    if (name.find('/') != std::string::npos) {
        return "a record's name must not contain a /; leave it out";
    }
    if (hasControlCharacter(name)) {
        return "a name must not contain a control character; leave it out";
    }
    if (isAccount(path)) {
        return path.size() > accountDepth ? "an account's name must not contain a /, and there are no "
                                            "records below an account; leave it out"
                                          : ruleBrokenByAccountName(name);
    }
    if (isShare(path)) {
        return path.size() > shareDepth ? "a share's name must not contain a /, and there are no records "
                                          "below a share; leave it out"
                                        : ruleBrokenByShareName(name);
    }
    return {};
}

/// The folder becomes a value in the SMB server's configuration, where blanks around it are dropped and a
/// backslash at its end joins the next line: another folder would be served.
std::string ruleBrokenByFolder(const std::string& folder) {
    if (folder.ends_with('\\')) {
        return "a share's folder must not end in a backslash; choose another folder";
    }
    if (folder.starts_with(' ') || folder.ends_with(' ')) {
        return "a share's folder must not begin or end with a blank; choose another folder";
    }
    return {};
}

/// What is wrong with the first value that breaks the rule.
std::string firstBroken(Values values, std::string (*rule)(const std::string&)) {
    for (const auto& value : values) {
        if (std::string broken = rule(value); !broken.empty()) {
            return broken;
        }
    }
    return {};
}

/// The rules for a property of the record at `path` and values written to it.
std::string ruleBrokenByValues(const RecordPath& path, const std::string& property, Values values) {
    if (property.empty()) {
        return "a property's name must not be empty; give it one";
    }
    if (hasControlCharacter(property) || std::ranges::any_of(values, hasControlCharacter)) {
        return "a property must not contain a control character; leave it out";
    }
    if (isShare(path) && property == "directory_path") {
        return firstBroken(values, ruleBrokenByFolder);
    }
    if (path.size() == accountDepth && path[0] == "groups" && property == "users") {
        return firstBroken(values, ruleBrokenByAccountName);
    }
    return {};
}

std::string ruleBrokenByRenaming(RecordPath path, Values values) {
    if (isFixed(path)) {
        return "this record cannot be renamed; make another one beside it";
    }
    if (values.size() != 1) {
        return "a record has exactly one name; give one value";
    }
    path.back() = values.front();
    return ruleBrokenByName(path);
}

std::string ruleBrokenByDeleting(const RecordPath& path, const DirectoryChange& change) {
    if (!change.property && isFixed(path)) {
        return "this record always exists and cannot be deleted; delete records below it";
    }
    return change.property == "name" ? "a record's name cannot be deleted; rename the record or delete it"
                                     : "";
}

std::string ruleBroken(const DirectoryChange& change) {
    const auto path = recordPath(change.path);
    if (!path) {
        return "a path begins with / and has no empty component; write it as /users/NAME";
    }
    if (change.operation == "-delete") {
        return ruleBrokenByDeleting(*path, change);
    }
    if (!change.property) {
        return isFixed(*path) ? "" : ruleBrokenByName(*path);
    }
    if (change.property != "name") {
        return ruleBrokenByValues(*path, *change.property, change.values);
    }
    return change.operation == "-append" ? "a record has exactly one name; rename it with -create"
                                         : ruleBrokenByRenaming(*path, change.values);
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
    return path.size() >= accountDepth && (path[0] == "users" || path[0] == "groups");
}

std::optional<DirectoryChange> directoryChange(std::span<const std::string> words) {
    constexpr std::size_t leading = 3; // the domain, the operation, the path
    if (words.size() < leading || words[0] != ".") {
        return std::nullopt;
    }
    DirectoryChange change{words[1], words[2], std::nullopt, {}};
    if (words.size() > leading) {
        change.property = words[leading];
        change.values.assign(words.begin() + leading + 1, words.end());
    }
    const bool isKnown = change.operation == "-create" || change.operation == "-delete";
    const bool isAppend = change.operation == "-append" && !change.values.empty();
    return isKnown || isAppend ? std::optional(std::move(change)) : std::nullopt;
}

platform::Status checkDirectoryChange(const DirectoryChange& change) {
    std::string why = ruleBroken(change);
    return why.empty() ? platform::Status() : refusal(change, std::move(why));
}

platform::Status refusal(const DirectoryChange& change, std::string why) {
    return platform::Status::failure("cannot " + change.operation.substr(1),
                                     change.path + (change.property ? " " + *change.property : ""),
                                     std::move(why));
}
