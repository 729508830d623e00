#include "tools/ComputerGroup.h"

#include "directory/AccountRules.h"
#include "platform/netinfo/AccountNumber.h"
#include "tools/AccountPrograms.h"

#include <algorithm>

namespace tools {

using platform::Status;
using platform::Store;

namespace {

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ",") + name;
    }
    return text;
}

} // namespace

ComputerGroup::ComputerGroup(ComputerDirectory& directory, const DirectoryChange& change)
    : ComputerAccount(directory, change), line_(directory.accounts().findGroup(name())) {}

std::optional<unsigned> ComputerGroup::number() const {
    return line_ == nullptr ? std::nullopt : std::optional(line_->gid);
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
        return {}; // it can only be "*"
    }
    if (change().property != "users") {
        return refused("a group always has it; write another value with -create");
    }
    return changeMembers();
}

Status ComputerGroup::changeMembers() const {
    const std::vector<std::string>& users = change().values;
    if (change().operation == "-delete") {
        for (const std::string& user : users) {
            const bool isMember = std::ranges::find(line_->members, user) != line_->members.end();
            // A user who has been deleted has already left all groups.
            if (!isMember && directory().accounts().findUser(user) != nullptr) {
                return refused("the property users has no value " + user + "; nothing was deleted");
            }
        }
    }
    const std::vector<std::string> members = membersAfter(directory().accounts(), *line_, change(), isOurs());
    if (members == line_->members) {
        return {};
    }
    if (change().operation == "-append" && members.size() == line_->members.size() + 1) {
        return edit({"--add", members.back()});
    }
    if (change().operation == "-delete" && users.size() == 1) {
        return edit({"--delete", users.front()});
    }
    return edit({"--members", joined(members)});
}

Status ComputerGroup::edit(const std::vector<std::string>& options) const {
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

} // namespace tools
