#pragma once

#include "platform/foundation/NSString.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The directory's reports of users and groups, as the account editor reads them. A line that lacks a piece
// raises std::out_of_range.

/// What a report shows for a property without values.
inline constexpr std::string_view reportNoValue = "#NoValue#";

inline constexpr std::int32_t highestSystemUserId = 99;
inline constexpr std::int32_t highestSystemGroupId = 100;

[[nodiscard]] inline bool isSystemUserId(std::int32_t id) {
    return id <= highestSystemUserId;
}

/// Three groups with low ids are what users are put into: they are always listed.
[[nodiscard]] inline bool isSystemGroup(std::int32_t id, std::string_view name) {
    return id <= highestSystemGroupId && name != "staff" && name != "admin" && name != "guest";
}

struct UserRecord {
    explicit UserRecord(const std::string& line) : UserRecord(componentsSeparatedByString(line, "\t")) {}

    explicit UserRecord(const std::vector<std::string>& pieces)
        : name(pieces.at(0)), id(intValue(pieces.at(1))), gid(pieces.at(4)) {}

    std::string name;
    std::int32_t id;
    std::string gid; ///< the primary group's id as the report has it

    [[nodiscard]] bool isSystem() const { return isSystemUserId(id); }
};

/// The short names of a member field.
[[nodiscard]] inline std::vector<std::string> memberNames(const std::string& field) {
    if (field.empty() || field == reportNoValue) {
        return {};
    }
    return componentsSeparatedByString(field, ",");
}

struct GroupRecord {
    explicit GroupRecord(const std::string& line) : GroupRecord(componentsSeparatedByString(line, "\t")) {}

    explicit GroupRecord(const std::vector<std::string>& pieces)
        : id(intValue(pieces.at(0))), name(pieces.at(1)), memberField(pieces.at(2)) {}

    std::int32_t id;
    std::string name;
    std::string memberField;

    [[nodiscard]] bool isSystem() const { return isSystemGroup(id, name); }

    [[nodiscard]] std::vector<std::string> members() const { return memberNames(memberField); }
};

template <class Record>
[[nodiscard]] std::vector<Record> recordsOfReport(const std::vector<std::string>& lines) {
    std::vector<Record> records;
    records.reserve(lines.size());
    for (const std::string& line : lines) {
        records.emplace_back(line);
    }
    return records;
}

/// True when the short name is a member of the first group named "admin".
[[nodiscard]] inline bool isAdminUser(const std::vector<GroupRecord>& groups, const std::string& shortName) {
    const auto admin = std::ranges::find(groups, std::string_view("admin"), &GroupRecord::name);
    return admin != groups.end() && std::ranges::count(admin->members(), shortName) > 0;
}
