#include "platform/netinfo/AccountFiles.h"

#include "platform/netinfo/AccountLines.h"
#include "platform/netinfo/AccountNumber.h"
#include "platform/netinfo/RecordContent.h"
#include "platform/netinfo/Sqlite.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace platform {

namespace {

/// What the store holds about accounts, by name.
class StoredAccounts {
  public:
    StoredAccounts(sqlite3* store, std::int64_t directory, int* error) {
        SqliteStatement rows(store, "SELECT name, content FROM record WHERE parent = ?1 ORDER BY id");
        rows.bind(1, directory);
        while (rows.step()) {
            records_.emplace_back(arena_.keep(rows.text(0)), arena_.keep(rows.text(1)));
        }
        *error = rows.error();
    }

    /// Appends the stored properties of the account `name` that are not in `listed`, provided that they were
    /// written for an account whose property `numberName` has the value `number`.
    void append(std::string_view name, std::string_view numberName, std::string_view number,
                std::span<const std::string_view> listed, ContentWriter& content) {
        const auto found = find(name);
        if (!found || !belongsTo(*found, numberName, number)) {
            return;
        }
        ContentReader reader(*found);
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
    /// Fast for accounts that are looked up in the order of the store, as they mostly are.
    std::optional<std::string_view> find(std::string_view name) {
        if (next_ < records_.size() && records_[next_].first == name) {
            return records_[next_++].second;
        }
        if (places_.empty()) {
            places_.reserve(records_.size());
            for (std::size_t place = 0; place < records_.size(); ++place) {
                places_.emplace(records_[place].first, place);
            }
        }
        const auto found = places_.find(name);
        if (found == places_.end()) {
            return std::nullopt;
        }
        next_ = found->second + 1;
        return records_[found->second].second;
    }

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
    std::vector<std::pair<std::string_view, std::string_view>> records_; ///< names and contents
    std::unordered_map<std::string_view, std::size_t> places_; ///< index by name, filled when needed
    std::size_t next_ = 0;                                     ///< index of the record that is expected next
};

/// The properties that come from the lines, and the one that only the store's writers see.
constexpr std::array<std::string_view, 8> userProperties = {"name", "uid",   "gid",    "realname",
                                                            "home", "shell", "passwd", accountStateProperty};
constexpr std::array<std::string_view, 5> groupProperties = {"name", "gid", "passwd", "users",
                                                             accountStateProperty};

std::string_view textOf(const char* text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
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
    std::int64_t id = firstUserLineId;
    ContentWriter content;
    const auto add = [&](const passwd& line) {
        const std::string_view name = textOf(line.pw_name);
        content.clear();
        const std::string_view comment = textOf(line.pw_gecos);
        const std::string number = directoryNumber(line.pw_uid);
        content.single("name", name);
        content.single("uid", number);
        content.single("gid", directoryNumber(line.pw_gid));
        content.single("realname", comment.substr(0, comment.find(',')));
        content.single("home", textOf(line.pw_dir));
        content.single("shell", textOf(line.pw_shell));
        content.single("passwd", "*");
        stored.append(name, "uid", number, userProperties, content);
        block.add(id++, content.content());
    };
    if (*error == SQLITE_OK && !forEachUserLine(files, add).isOk()) {
        *error = SQLITE_CANTOPEN;
    }
    return block;
}

RecordBlock groupLines(const AccountFiles& files, sqlite3* store, std::int64_t groupsDirectory, int* error) {
    RecordBlock block;
    StoredAccounts stored(store, groupsDirectory, error);
    std::vector<std::string> administrators;
    std::int64_t id = firstGroupLineId;
    const auto add = [&](const group& line) {
        const std::string_view name = textOf(line.gr_name);
        std::vector<std::string> members;
        for (char** member = line.gr_mem; *member != nullptr; ++member) {
            members.emplace_back(*member);
            if (isGroupOfAdministrators(name) &&
                std::ranges::find(administrators, *member) == administrators.end()) {
                administrators.emplace_back(*member);
            }
        }
        if (name != administratorsGroup) {
            addGroup(block, id++, name, line.gr_gid, members, stored);
        }
    };
    if (*error != SQLITE_OK || !forEachGroupLine(files, add).isOk()) {
        *error = *error != SQLITE_OK ? *error : SQLITE_CANTOPEN;
        return {};
    }
    addGroup(block, id, administratorsGroup, administratorsGroupId, administrators, stored);
    return block;
}

} // namespace platform
