#pragma once

#include "directory/ReportLine.h"
#include "platform/foundation/NSString.h"
#include "privileged/NiutilTask.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The directory's records as its reports list them. A report line that lacks a piece which is read raises
// std::out_of_range.

inline constexpr std::int64_t highestSystemUserId = 99;
inline constexpr std::int64_t highestSystemGroupId = 100;

/// Whether a user with that value of "sharedDir" shares the Public folder.
[[nodiscard]] inline bool isPublicFolderShared(std::string_view sharedDir) {
    constexpr std::array<std::string_view, 3> notShared = {"<no entry>", "<no value>", reportNoValue};
    return std::ranges::find(notShared, sharedDir) == notShared.end();
}

/// Returns the short names in a member field.
[[nodiscard]] inline std::vector<std::string> memberNames(const std::string& field) {
    if (field.empty() || field == reportNoValue) {
        return {};
    }
    return componentsSeparatedByString(field, ",");
}

struct ShareRecord {
    explicit ShareRecord(std::string_view line) : ShareRecord(ReportPieces(line)) {}

    explicit ShareRecord(const ReportPieces& pieces)
        : name(pieces.at(0)), folder(pieces.at(1)), afpShared(pieces.at(2)), afpName(pieces.at(3)),
          inheritsPrivileges(pieces.at(4) == "1"), inheritsOwner(pieces.at(5) == "1") {}

    std::string name;
    std::string folder;
    std::string afpShared;
    std::string afpName;
    bool inheritsPrivileges;
    bool inheritsOwner;
};

/// `Text` is std::string, or std::string_view for a record that does not outlive its line.
template <class Text>
struct BasicUserRecord {
    explicit BasicUserRecord(std::string_view line) : BasicUserRecord(ReportPieces(line)) {}

    explicit BasicUserRecord(const ReportPieces& pieces)
        : name(pieces.at(0)), uid(pieces.at(1)), sharesPublicFolder(isShared(pieces)), fullName(pieces.at(3)),
          gid(pieces.at(4)) {}

    Text name;
    Text uid;
    bool sharesPublicFolder;
    Text fullName;
    Text gid; ///< the primary group's id

    /// 0 when there is no number. Ids up to 4294967294 are valid here: with 32 bits, a user in such a group
    /// would be written back with another one.
    [[nodiscard]] std::int64_t id() const { return longLongValue(uid); }

    [[nodiscard]] bool isSystem() const { return id() <= highestSystemUserId; }

  private:
    [[nodiscard]] static bool isShared(const ReportPieces& pieces) {
        constexpr std::size_t wholeReport = 6;
        return pieces.size() == wholeReport && isPublicFolderShared(pieces.at(2));
    }
};

using UserRecord = BasicUserRecord<std::string>;
using UserLine = BasicUserRecord<std::string_view>;

struct GroupRecord {
    explicit GroupRecord(std::string_view line) : GroupRecord(ReportPieces(line)) {}

    explicit GroupRecord(const ReportPieces& pieces)
        : gid(pieces.at(0)), name(pieces.at(1)), memberField(pieces.at(2)) {}

    std::string gid;
    std::string name;
    std::string memberField;

    /// 0 when there is no number; as wide as a user's.
    [[nodiscard]] std::int64_t id() const { return longLongValue(gid); }

    /// Three groups with low ids are meant for users, and so are always listed.
    [[nodiscard]] bool isSystem() const {
        return id() <= highestSystemGroupId && name != "staff" && name != "admin" && name != "guest";
    }

    [[nodiscard]] std::vector<std::string> members() const { return memberNames(memberField); }
};

template <class Record>
[[nodiscard]] std::vector<Record> recordsOfReport(const NiutilTask::Report& lines) {
    std::vector<Record> records;
    records.reserve(lines->size());
    for (const std::string& line : *lines) {
        records.emplace_back(line);
    }
    return records;
}

/// True when the short name is a member of the first group named "admin".
[[nodiscard]] inline bool isAdminUser(const std::vector<GroupRecord>& groups, const std::string& shortName) {
    const auto admin = std::ranges::find(groups, std::string_view("admin"), &GroupRecord::name);
    if (admin == groups.end()) {
        return false;
    }
    const std::vector<std::string> members = admin->members();
    return std::ranges::find(members, shortName) != members.end();
}
