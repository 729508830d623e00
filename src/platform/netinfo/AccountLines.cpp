#include "platform/netinfo/AccountLines.h"

#include "platform/netinfo/RecordBlock.h"
#include "platform/posix/InputOutput.h"
#include "platform/posix/OwnedFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace platform {

namespace {

std::string textOf(const char* text) {
    return text == nullptr ? std::string() : std::string(text);
}

/// False for a line that includes accounts from elsewhere ("+" or "-").
bool isAccountName(std::string_view name) {
    return !name.empty() && name.front() != '+' && name.front() != '-';
}

template <class Line, class Read, class NameOf>
Status forEachLine(const std::string& path, Read read, NameOf nameOf,
                   const std::function<void(const Line&)>& use) {
    auto bytes = readWholeFile(path);
    if (!bytes.isOk() || bytes->empty()) {
        return bytes.status();
    }
    // Read from memory, because on a file the library asks for its position at every line.
    const OwnedFile file(::fmemopen(bytes->data(), bytes->size(), "r"));
    if (!file) {
        return Status::ofErrno("cannot read", path, errno);
    }
    TextArena names;
    std::unordered_set<std::string_view> seen;
    seen.reserve(static_cast<std::size_t>(std::ranges::count(*bytes, '\n')));
    while (const Line* line = read(file.get())) {
        const char* text = nameOf(*line);
        const std::string_view name = text == nullptr ? std::string_view() : text;
        if (isAccountName(name) && !seen.contains(name)) {
            seen.insert(names.keep(name));
            use(*line);
        }
    }
    return {};
}

} // namespace

Status forEachUserLine(const AccountFiles& files, const std::function<void(const passwd&)>& use) {
    return forEachLine<passwd>(
        files.passwd, ::fgetpwent, [](const passwd& line) { return line.pw_name; }, use);
}

Status forEachGroupLine(const AccountFiles& files, const std::function<void(const group&)>& use) {
    return forEachLine<group>(
        files.group, ::fgetgrent, [](const group& line) { return line.gr_name; }, use);
}

Result<std::vector<UserLine>> readUserLines(const AccountFiles& files) {
    std::vector<UserLine> lines;
    Status status = forEachUserLine(files, [&](const passwd& line) {
        lines.push_back({textOf(line.pw_name), line.pw_uid, line.pw_gid, textOf(line.pw_gecos),
                         textOf(line.pw_dir), textOf(line.pw_shell)});
    });
    return status.isOk() ? Result(std::move(lines)) : status;
}

Result<std::vector<GroupLine>> readGroupLines(const AccountFiles& files) {
    std::vector<GroupLine> lines;
    Status status = forEachGroupLine(files, [&](const group& line) {
        GroupLine& added = lines.emplace_back(GroupLine{textOf(line.gr_name), line.gr_gid, {}});
        for (char** member = line.gr_mem; *member != nullptr; ++member) {
            added.members.emplace_back(*member);
        }
    });
    return status.isOk() ? Result(std::move(lines)) : status;
}

bool isGroupOfAdministrators(std::string_view name) {
    return name == "sudo" || name == "wheel" || name == administratorsGroup;
}

AccountLimits readAccountLimits(const std::string& file) {
    AccountLimits limits;
    const std::array<std::pair<std::string_view, unsigned*>, 3> known = {{{"UID_MIN", &limits.lowestUser},
                                                                          {"UID_MAX", &limits.highestUser},
                                                                          {"GID_MIN", &limits.lowestGroup}}};
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        std::string name;
        std::string value;
        words >> name >> value;
        for (const auto& [key, number] : known) {
            char* end = nullptr;
            const unsigned long read =
                std::strtoul(value.c_str(), &end, 0); // base 0, as the system's own tools do
            if (name == key && !value.empty() && *end == '\0') {
                *number = static_cast<unsigned>(read);
            }
        }
    }
    return limits;
}

} // namespace platform
