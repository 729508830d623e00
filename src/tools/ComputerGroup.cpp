#include "tools/ComputerGroup.h"

#include "platform/netinfo/AccountNumber.h"
#include "tools/AccountPrograms.h"

#include <algorithm>
#include <utility>

using platform::GroupLine;
using platform::Status;
using platform::Store;

namespace {

constexpr unsigned nogroup = 65534;

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ",") + name;
    }
    return text;
}

} // namespace

std::string whyAdministratorsStay(const ComputerDirectory& directory) {
    std::vector<std::string> names;
    for (const GroupLine& line : directory.groups()) {
        if (platform::isGroupOfAdministrators(line.name)) {
            names.push_back(line.name);
        }
    }
    return names.empty()
               ? "this computer has no group of administrators; make one with the system's own tools"
               : "it shows who is in " + joined(names) +
                     ", which decides who administers this computer; change that with the system's "
                     "own tools";
}

ComputerGroup::ComputerGroup(ComputerDirectory& directory, const DirectoryChange& change)
    : ComputerAccount(directory, change), line_(directory.findGroup(name())) {}

std::optional<unsigned> ComputerGroup::number() const {
    return line_ == nullptr ? std::nullopt : std::optional(line_->gid);
}

std::optional<std::string> ComputerGroup::otherInCase(const std::string& /*name*/) const {
    return std::nullopt; // nothing mixes up two groups
}

bool ComputerGroup::isTaken(const std::string& name) const {
    return name == platform::administratorsGroup || directory().findGroup(name) != nullptr;
}

bool ComputerGroup::isPropertyOfLine(const std::string& property) const {
    return property == "gid" || property == "passwd" || property == "users";
}

Status ComputerGroup::checkValues() const {
    const std::string& property = *change().property;
    if (property == "users") {
        return {};
    }
    if (change().operation == "-append" || change().values.size() > 1) {
        return refused("a group has one " + property + "; write it with -create and one value");
    }
    if (property == "passwd") {
        const bool isNone =
            change().values.empty() || change().values.front() == "!" || change().values.front() == "*";
        return isNone ? Status() : refused("a group has no password; write \"*\", which matches none");
    }
    const auto number = numberOfValues();
    if (!number) {
        return refused("it is a number; give one");
    }
    const bool isSame = line_ != nullptr && line_->gid == *number;
    return *number == 0 && !isSame ? refused("number 0 is the administrator's own group; choose another one")
                                   : Status();
}

Status ComputerGroup::checkAccount() const {
    const unsigned lowest = directory().limits().lowestGroup;
    if (line_->gid == 0 || line_->gid == nogroup || (line_->gid < lowest && !isOurs())) {
        return refused(name() + " is a group of the system: other groups have numbers from " +
                       std::to_string(lowest) + " on; change it with the system's own tools");
    }
    return platform::isGroupOfAdministrators(name())
               ? refused("its members administer this computer; change it with the system's own tools")
               : Status();
}

std::optional<std::vector<std::string>> ComputerGroup::programThatMakes(Store::Record collected) {
    bool isValid = false;
    const unsigned gid = platform::accountNumber(collectedValue(collected, "gid", ""), &isValid);
    if (!isValid) {
        return std::nullopt;
    }
    std::vector<std::string> words = {accountprogram::groupadd, "--gid", std::to_string(gid)};
    if (const auto members = collectedValues(collected, "users"); !members.empty()) {
        words.insert(words.end(), {"--users", joined(members)});
    }
    words.insert(words.end(), {"--", name()});
    return words;
}

Status ComputerGroup::writeLine() {
    if (change().property == "passwd") {
        return {}; // "*" is all that it can be
    }
    if (change().property != "users") {
        return refused("a group always has it; write another value with -create");
    }
    if (change().operation == "-create") {
        return setMembers(change().values);
    }
    return change().operation == "-append" ? addMembers() : removeMembers();
}

bool ComputerGroup::isMember(const std::string& user) const {
    return std::ranges::find(line_->members, user) != line_->members.end();
}

bool ComputerGroup::isPrimaryGroupOf(const std::string& user) const {
    const platform::UserLine* line = directory().findUser(user);
    return line != nullptr && line->gid == line_->gid;
}

Status ComputerGroup::addMembers() const {
    std::vector<std::string> members = line_->members;
    const bool isOrdinary = checkAccount().isOk();
    for (const std::string& user : change().values) {
        // A group of the system may be a user's own group; nothing more comes of listing the user in it.
        const bool isThere =
            std::ranges::find(members, user) != members.end() || (!isOrdinary && isPrimaryGroupOf(user));
        if (!isThere) {
            members.push_back(user);
        }
    }
    if (members.size() == line_->members.size() + 1) {
        return edit({"--add", members.back()});
    }
    return setMembers(members);
}

Status ComputerGroup::removeMembers() const {
    std::vector<std::string> members = line_->members;
    for (const std::string& user : change().values) {
        // Whoever is deleted has left all groups already.
        if (std::erase(members, user) == 0 && directory().findUser(user) != nullptr) {
            return refused("the property users has no value " + user + "; nothing was deleted");
        }
    }
    if (change().values.empty()) {
        members.clear();
    }
    if (change().values.size() == 1 && isMember(change().values.front())) {
        return edit({"--delete", change().values.front()});
    }
    return setMembers(members);
}

Status ComputerGroup::setMembers(const std::vector<std::string>& members) const {
    return members == line_->members ? Status() : edit({"--members", joined(members)});
}

Status ComputerGroup::edit(const std::vector<std::string>& options) const {
    if (Status status = checkAccount(); !status.isOk()) {
        return status;
    }
    std::vector<std::string> words = {accountprogram::gpasswd};
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), {"--", name()});
    return runProgram(words);
}

std::vector<std::string> ComputerGroup::programThatRenames(const std::string& newName) const {
    return {accountprogram::groupmod, "--new-name", newName, "--", name()};
}

std::vector<std::string> ComputerGroup::programThatRenumbers(unsigned newNumber) const {
    return {accountprogram::groupmod, "--gid", std::to_string(newNumber), "--", name()};
}

std::vector<std::string> ComputerGroup::programThatDeletes() const {
    return {accountprogram::groupdel, "--", name()};
}
