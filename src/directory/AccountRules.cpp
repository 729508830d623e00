#include "directory/AccountRules.h"

#include "directory/DirectoryRules.h"
#include "platform/foundation/NSString.h"
#include "platform/netinfo/AccountNumber.h"
#include "platform/posix/LetterCase.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

using platform::GroupLine;
using platform::Status;
using platform::UserLine;

namespace {

/// A change and what the rules need to know about it. Each rule returns an empty string when it is kept,
/// otherwise what is wrong and what to do.
struct Request {
    const ComputerAccounts& accounts;
    const DirectoryChange& change;
    const std::string& name; ///< the account's name
    bool isOurs;

    [[nodiscard]] bool writes() const { return change.operation != "-delete"; }

    [[nodiscard]] bool isRenaming() const { return change.property == "name"; }

    /// The first value to be written; "" when there is none.
    [[nodiscard]] std::string value() const {
        return writes() && !change.values.empty() ? change.values.front() : "";
    }
};

template <class Lines>
auto findNamed(const Lines& lines, const std::string& name) {
    const auto found = std::ranges::find(lines, name, &Lines::value_type::name);
    return found == lines.end() ? nullptr : &*found;
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
    return std::ranges::find(names, name) != names.end();
}

std::string ruleBrokenByTakenName(const std::string& name) {
    return "there is an account called " + name + "; choose another name";
}

constexpr std::size_t longestName = 32;

/// Checks the rules that the computer's programs have for a new name. Some systems have stricter ones; these
/// are kept by all.
std::string ruleBrokenByNewName(const std::string& name) {
    if (name.find(' ') != std::string::npos) {
        return "this computer does not take a name with a blank for an account; leave it out";
    }
    if (name.find_first_of("-+~") == 0) {
        return "this computer does not take a name that begins with -, + or ~ for an account; choose another "
               "one";
    }
    return name.size() > longestName ? "this computer does not take a name of more than 32 bytes for an "
                                       "account; choose a shorter one"
                                     : "";
}

/// Checks that no other account has the number. `own` is null for an account that is about to be made.
template <class Line>
std::string ruleBrokenByTakenNumber(const std::vector<Line>& lines, unsigned Line::*member, unsigned number,
                                    const Line* own) {
    if (own != nullptr && own->*member == number) {
        return {};
    }
    return std::ranges::find(lines, number, member) == lines.end()
               ? ""
               : "another account has this number; choose another one";
}

// Users.

std::string ruleBrokenByUserOfSystem(const UserLine& line, bool isOurs,
                                     const platform::AccountLimits& limits) {
    if (line.uid == 0 || line.uid == platform::nobodyNumber) {
        return line.name + " is an account that the system itself needs; it stays as it is";
    }
    return line.uid < limits.lowestUser && !isOurs
               ? line.name + " is an account of the system: users have numbers from " +
                     std::to_string(limits.lowestUser) + " on; change it with the system's own tools"
               : "";
}

std::string ruleBrokenByNewUser(const Request& request, const std::string& name) {
    const std::string wanted = platform::lowercased(name);
    for (const UserLine& line : request.accounts.users) {
        if (line.name == name) {
            return ruleBrokenByTakenName(name);
        }
        if (line.name != request.name && platform::lowercased(line.name) == wanted) {
            return stringWithFormat(ruleOfOtherUser, line.name);
        }
    }
    return ruleBrokenByNewName(name);
}

std::string ruleBrokenByNumber(const Request& request, const UserLine* line) {
    const auto number = numberOf(request.change);
    if (!number) {
        return "it is a number; give one";
    }
    if (request.change.property == "uid") {
        const bool isNew = line == nullptr || line->uid != *number;
        return *number == 0 && isNew
                   ? "number 0 is the system's administrator; choose another one"
                   : ruleBrokenByTakenNumber(request.accounts.users, &UserLine::uid, *number, line);
    }
    const GroupLine* group = request.accounts.findGroup(*number);
    const bool isNew = line == nullptr || line->gid != *number;
    const bool isPowerful =
        *number == 0 || (group != nullptr && platform::isGroupOfAdministrators(group->name));
    return isPowerful && isNew ? "the users of " + (group == nullptr ? "group 0" : group->name) +
                                     " administer the computer; choose another group"
                               : "";
}

/// Checks whether the user's line can hold the values.
std::string ruleBrokenByUserValues(const Request& request, const UserLine* line) {
    const std::string& property = *request.change.property;
    if (request.change.operation == "-append" || request.change.values.size() > 1) {
        return "an account has one " + property + "; write it with -create and one value";
    }
    if (property == "uid" || property == "gid") {
        return ruleBrokenByNumber(request, line);
    }
    const std::string value = request.value();
    if (property == "passwd") {
        return value.empty() || value == "!" || value == "*"
                   ? ""
                   : "a password is set with dscl; here is only \"!\", which matches none";
    }
    const bool breaksLine = value.find_first_of(property == "realname" ? ",:" : ":") != std::string::npos;
    return breaksLine ? "the system's list of users cannot hold a comma or colon here; leave it out" : "";
}

/// Whether the change leaves the user's line as it is. A password counts as unchanged, because only root
/// could compare it.
bool keepsLine(const Request& request, const UserLine& line) {
    const std::string& property = *request.change.property;
    if (property == "realname") {
        const std::size_t nameEnd = std::min(line.comment.find(','), line.comment.size());
        return line.comment.substr(0, nameEnd) == request.value();
    }
    if (!request.writes() || property == "passwd") {
        return true;
    }
    if (property == "uid" || property == "gid") {
        return numberOf(request.change) == (property == "uid" ? line.uid : line.gid);
    }
    return request.value() == (property == "home" ? line.home : line.shell);
}

std::string ruleBrokenByChangingUser(const Request& request, const UserLine& line) {
    return ruleBrokenByUserOfSystem(line, request.isOurs, request.accounts.limits);
}

std::string ruleBrokenByRemovingUser(const Request& request, const UserLine& line) {
    return line.uid == request.accounts.user
               ? "it is the user who runs Brindle; let another administrator do it"
               : ruleBrokenByChangingUser(request, line);
}

// Groups.

std::string whyAdministratorsStay(const ComputerAccounts& accounts) {
    std::string names;
    for (const GroupLine& line : accounts.groups) {
        if (platform::isGroupOfAdministrators(line.name)) {
            names += (names.empty() ? "" : ",") + line.name;
        }
    }
    return names.empty()
               ? "this computer has no group of administrators; make one with the system's own tools"
               : "it shows who is in " + names +
                     ", which decides who administers this computer; change that with the system's own tools";
}

std::string ruleBrokenByGroupOfSystem(const Request& request, const GroupLine& line) {
    const unsigned lowest = request.accounts.limits.lowestGroup;
    if (line.gid == 0 || line.gid == platform::nobodyNumber || (line.gid < lowest && !request.isOurs)) {
        return line.name + " is a group of the system: other groups have numbers from " +
               std::to_string(lowest) + " on; change it with the system's own tools";
    }
    return platform::isGroupOfAdministrators(line.name)
               ? "its members administer this computer; change it with the system's own tools"
               : "";
}

std::string ruleBrokenByNewGroup(const Request& request, const std::string& name) {
    const bool isTaken = name == platform::administratorsGroup || request.accounts.findGroup(name) != nullptr;
    return isTaken ? ruleBrokenByTakenName(name) : ruleBrokenByNewName(name);
}

/// Checks whether the group's line can hold the values.
std::string ruleBrokenByGroupValues(const Request& request, const GroupLine* line) {
    const std::string& property = *request.change.property;
    if (property == "users") {
        return {};
    }
    if (request.change.operation == "-append" || request.change.values.size() > 1) {
        return "a group has one " + property + "; write it with -create and one value";
    }
    if (property == "passwd") {
        const std::string value = request.value();
        return value.empty() || value == "!" || value == "*"
                   ? ""
                   : "a group has no password; write \"*\", which matches none";
    }
    const auto number = numberOf(request.change);
    if (!number) {
        return "it is a number; give one";
    }
    const bool isNew = line == nullptr || line->gid != *number;
    return *number == 0 && isNew
               ? "number 0 is the administrator's own group; choose another one"
               : ruleBrokenByTakenNumber(request.accounts.groups, &GroupLine::gid, *number, line);
}

bool keepsLine(const Request& request, const GroupLine& line) {
    const std::string& property = *request.change.property;
    if (property == "users") {
        return membersAfter(request.accounts, line, request.change, request.isOurs) == line.members;
    }
    return property == "passwd" || !request.writes() || numberOf(request.change) == line.gid;
}

/// The rules that differ between users and groups.
template <class Line>
struct Rules {
    std::string (*ofNewName)(const Request& request, const std::string& name);
    std::string (*ofValues)(const Request& request, const Line* line);
    /// For a line that is changed, and for one that is removed or renamed.
    std::string (*ofChange)(const Request& request, const Line& line);
    std::string (*ofRemoval)(const Request& request, const Line& line);
};

constexpr Rules<UserLine> userRules{&ruleBrokenByNewUser, &ruleBrokenByUserValues, &ruleBrokenByChangingUser,
                                    &ruleBrokenByRemovingUser};
constexpr Rules<GroupLine> groupRules{&ruleBrokenByNewGroup, &ruleBrokenByGroupValues,
                                      &ruleBrokenByGroupOfSystem, &ruleBrokenByGroupOfSystem};

/// `line` is null when the computer has no such account yet.
template <class Line>
std::string ruleBroken(const Request& request, const Line* line, const Rules<Line>& rules) {
    if (!request.change.property) {
        if (request.writes()) {
            return line == nullptr ? rules.ofNewName(request, request.name) : "";
        }
        return line == nullptr ? "" : rules.ofRemoval(request, *line);
    }
    std::string broken;
    if (request.isRenaming()) {
        const std::string newName = request.value();
        if (newName == request.name) {
            return {};
        }
        broken = line == nullptr ? "" : rules.ofRemoval(request, *line);
        return broken.empty() ? rules.ofNewName(request, newName) : broken;
    }
    broken = request.writes() ? rules.ofValues(request, line) : "";
    return !broken.empty() || line == nullptr || keepsLine(request, *line) ? broken
                                                                           : rules.ofChange(request, *line);
}

std::string ruleBroken(const Request& request, const RecordPath& path) {
    if (path.size() != 2) {
        return "an account has no records below it; name the account alone";
    }
    if (path.front() == "users") {
        return ruleBroken(request, request.accounts.findUser(request.name), userRules);
    }
    return request.name == platform::administratorsGroup
               ? whyAdministratorsStay(request.accounts)
               : ruleBroken(request, request.accounts.findGroup(request.name), groupRules);
}

} // namespace

const UserLine* ComputerAccounts::findUser(const std::string& name) const {
    return findNamed(users, name);
}

const GroupLine* ComputerAccounts::findGroup(const std::string& name) const {
    return findNamed(groups, name);
}

const GroupLine* ComputerAccounts::findGroup(unsigned gid) const {
    const auto found = std::ranges::find(groups, gid, &GroupLine::gid);
    return found == groups.end() ? nullptr : &*found;
}

Status checkAccountChange(const ComputerAccounts& accounts, const DirectoryChange& change, bool isOurs) {
    const RecordPath path = recordPath(change.path).value();
    const Request request{accounts, change, path.back(), isOurs};
    if (change.property == platform::accountStateProperty) {
        return refusal(change, "Brindle keeps this property for itself; choose another name");
    }
    const bool reachesLine =
        !change.property || change.property == "name" || isPropertyOfLine(path, *change.property);
    const bool isAdministrators = path == RecordPath{"groups", platform::administratorsGroup};
    if (!reachesLine && !isAdministrators && path.size() == 2) {
        return {};
    }
    std::string why = ruleBroken(request, path);
    return why.empty() ? Status() : refusal(change, std::move(why));
}

Status checkOrdinaryUser(const UserLine& line, bool isOurs, const platform::AccountLimits& limits) {
    std::string why = ruleBrokenByUserOfSystem(line, isOurs, limits);
    return why.empty() ? Status() : Status::failure("cannot change", line.name, std::move(why));
}

bool isPropertyOfLine(const RecordPath& path, const std::string& property) {
    constexpr std::array ofUsers = {"uid", "gid", "realname", "home", "shell", "passwd"};
    constexpr std::array ofGroups = {"gid", "passwd", "users"};
    return path.front() == "users" ? std::ranges::find(ofUsers, property) != ofUsers.end()
                                   : std::ranges::find(ofGroups, property) != ofGroups.end();
}

std::optional<unsigned> numberOf(const DirectoryChange& change) {
    bool isValid = false;
    const unsigned number =
        change.values.size() == 1 ? platform::accountNumber(change.values.front(), &isValid) : 0;
    // The highest number means "none" everywhere in the system.
    return isValid && number != std::numeric_limits<unsigned>::max() ? std::optional(number) : std::nullopt;
}

std::vector<std::string> membersAfter(const ComputerAccounts& accounts, const GroupLine& group,
                                      const DirectoryChange& change, bool isOurs) {
    if (change.operation == "-create") {
        return change.values;
    }
    std::vector<std::string> members = group.members;
    if (change.operation == "-delete") {
        std::erase_if(members, [&](const std::string& member) {
            return change.values.empty() || contains(change.values, member);
        });
        return members;
    }
    const bool isOrdinary = ruleBrokenByGroupOfSystem({accounts, change, group.name, isOurs}, group).empty();
    for (const std::string& user : change.values) {
        const UserLine* line = accounts.findUser(user);
        // A group of the system may be the user's primary group; listing the user in it would change nothing.
        const bool isOwn = !isOrdinary && line != nullptr && line->gid == group.gid;
        if (!isOwn && !contains(members, user)) {
            members.push_back(user);
        }
    }
    return members;
}
