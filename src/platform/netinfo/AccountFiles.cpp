#include "platform/netinfo/AccountFiles.h"

#include "platform/netinfo/AccountNumber.h"
#include "platform/netinfo/RecordContent.h"
#include "platform/netinfo/Sqlite.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <grp.h>
#include <pwd.h>

namespace platform {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, CloseFile>;

/// What the store keeps for accounts, by name.
class StoredAccounts {
  public:
    StoredAccounts(sqlite3* store, std::int64_t directory, int* error) {
        SqliteStatement rows(store, "SELECT name, content FROM record WHERE parent = ?1");
        rows.bind(1, directory);
        while (rows.step()) {
            contents_.emplace(arena_.keep(rows.text(0)), arena_.keep(rows.text(1)));
        }
        *error = rows.error();
    }

    /// Appends the stored properties of the account `name` that `listed` does not hold, if they were written
    /// for `number`, the value of the property `numberName`.
    void append(std::string_view name, std::string_view numberName, std::string_view number,
                std::span<const std::string_view> listed, ContentWriter& content) {
        const auto found = contents_.find(name);
        if (found == contents_.end() || !belongsTo(found->second, numberName, number)) {
            return;
        }
        ContentReader reader(found->second);
        std::string_view property;
        std::size_t count = 0;
        while (reader.nextProperty(&property, &count)) {
            const bool isWanted = std::ranges::find(listed, property) == listed.end();
            if (isWanted) {
                content.property(property, count);
            }
            for (std::string_view value; count > 0 && reader.nextValue(&value); --count) {
                if (isWanted) {
                    content.value(value);
                }
            }
        }
    }

  private:
    static bool belongsTo(std::string_view stored, std::string_view numberName, std::string_view number) {
        ContentReader reader(stored);
        std::string_view property;
        std::size_t count = 0;
        while (reader.nextProperty(&property, &count)) {
            for (std::string_view value; count > 0 && reader.nextValue(&value); --count) {
                if (property == numberName) {
                    return value == number;
                }
            }
        }
        return false;
    }

    TextArena arena_;
    std::unordered_map<std::string_view, std::string_view> contents_;
};

constexpr std::array<std::string_view, 7> userProperties = {"name", "uid",   "gid",   "realname",
                                                            "home", "shell", "passwd"};
constexpr std::array<std::string_view, 4> groupProperties = {"name", "gid", "passwd", "users"};

std::string_view textOf(const char* text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

/// A line that takes its accounts from elsewhere is no account.
bool isAccount(std::string_view name) {
    return !name.empty() && name.front() != '+' && name.front() != '-';
}

/// The first line of a name is the one that counts.
using Names = std::unordered_set<std::string>;

bool isAdministrators(std::string_view name) {
    return name == "sudo" || name == "wheel" || name == administratorsGroup;
}

void addGroup(RecordBlock& block, std::int64_t id, std::string_view name, unsigned gid,
              std::span<const std::string> members, StoredAccounts& stored) {
    ContentWriter content;
    const std::string number = directoryNumber(gid);
    content.single("name", name);
    content.single("gid", number);
    content.single("passwd", "*");
    content.property("users", members.size());
    for (const std::string& member : members) {
        content.value(member);
    }
    stored.append(name, "gid", number, groupProperties, content);
    block.add(id, content.content());
}

} // namespace

RecordBlock userLines(const AccountFiles& files, sqlite3* store, std::int64_t usersDirectory, int* error) {
    RecordBlock block;
    StoredAccounts stored(store, usersDirectory, error);
    const File file(std::fopen(files.passwd.c_str(), "re"));
    if (*error != SQLITE_OK || !file) {
        *error = *error != SQLITE_OK ? *error : SQLITE_CANTOPEN;
        return block;
    }
    Names seen;
    std::int64_t id = firstUserLineId;
    while (const passwd* line = ::fgetpwent(file.get())) {
        const std::string_view name = textOf(line->pw_name);
        if (!isAccount(name) || !seen.emplace(name).second) {
            continue;
        }
        ContentWriter content;
        const std::string_view comment = textOf(line->pw_gecos);
        const std::string number = directoryNumber(line->pw_uid);
        content.single("name", name);
        content.single("uid", number);
        content.single("gid", directoryNumber(line->pw_gid));
        content.single("realname", comment.substr(0, comment.find(',')));
        content.single("home", textOf(line->pw_dir));
        content.single("shell", textOf(line->pw_shell));
        content.single("passwd", "*");
        stored.append(name, "uid", number, userProperties, content);
        block.add(id++, content.content());
    }
    return block;
}

RecordBlock groupLines(const AccountFiles& files, sqlite3* store, std::int64_t groupsDirectory, int* error) {
    RecordBlock block;
    StoredAccounts stored(store, groupsDirectory, error);
    const File file(std::fopen(files.group.c_str(), "re"));
    if (*error != SQLITE_OK || !file) {
        *error = *error != SQLITE_OK ? *error : SQLITE_CANTOPEN;
        return block;
    }
    Names seen;
    std::vector<std::string> administrators;
    std::int64_t id = firstGroupLineId;
    while (const group* line = ::fgetgrent(file.get())) {
        const std::string_view name = textOf(line->gr_name);
        if (!isAccount(name) || !seen.emplace(name).second) {
            continue;
        }
        std::vector<std::string> members;
        for (char** member = line->gr_mem; *member != nullptr; ++member) {
            members.emplace_back(*member);
            if (isAdministrators(name) &&
                std::ranges::find(administrators, *member) == administrators.end()) {
                administrators.emplace_back(*member);
            }
        }
        if (name != administratorsGroup) {
            addGroup(block, id++, name, line->gr_gid, members, stored);
        }
    }
    addGroup(block, id, administratorsGroup, administratorsGroupId, administrators, stored);
    return block;
}

} // namespace platform
