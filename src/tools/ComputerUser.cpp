#include "tools/ComputerUser.h"

#include "platform/netinfo/AccountNumber.h"
#include "platform/posix/LetterCase.h"
#include "tools/AccountPrograms.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <utility>

#include <shadow.h>

using platform::Status;
using platform::Store;
using platform::UserLine;

namespace {

/// Neither a home folder nor a shell: the account connects to shares, and nothing else.
constexpr const char* noHome = "/dev/null";
constexpr const char* noShell = "/sbin/nologin";

constexpr unsigned nobody = 65534;

bool isNoPassword(std::string_view hash) {
    return hash.starts_with('!') || hash.starts_with('*');
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

} // namespace

Status checkOrdinaryUser(const UserLine& line, bool hasMade, const platform::AccountLimits& limits) {
    constexpr const char* what = "cannot change";
    if (line.uid == 0 || line.uid == nobody) {
        return Status::failure(what, line.name,
                               line.name + " is an account that the system itself needs; it stays as it is");
    }
    if (line.uid < limits.lowestUser && !hasMade) {
        return Status::failure(what, line.name,
                               line.name + " is an account of the system: users have numbers from " +
                                   std::to_string(limits.lowestUser) +
                                   " on; change it with the system's own tools");
    }
    return {};
}

std::string passwordHashOf(const std::string& user) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen("/etc/shadow", "re"));
    while (file) {
        const spwd* line = ::fgetspent(file.get());
        if (line == nullptr) {
            break;
        }
        if (user == line->sp_namp) {
            return line->sp_pwdp;
        }
    }
    return {};
}

ComputerUser::ComputerUser(ComputerDirectory& directory, const DirectoryChange& change)
    : ComputerAccount(directory, change), line_(directory.findUser(name())) {}

std::optional<unsigned> ComputerUser::number() const {
    return line_ == nullptr ? std::nullopt : std::optional(line_->uid);
}

std::optional<std::string> ComputerUser::otherInCase(const std::string& name) const {
    const std::string wanted = platform::lowercased(name);
    for (const UserLine& line : directory().users()) {
        const bool isSelf = line_ != nullptr && line.name == line_->name;
        if (!isSelf && line.name != name && platform::lowercased(line.name) == wanted) {
            return line.name;
        }
    }
    return std::nullopt;
}

bool ComputerUser::isTaken(const std::string& name) const {
    return directory().findUser(name) != nullptr;
}

bool ComputerUser::isPropertyOfLine(const std::string& property) const {
    constexpr std::array names = {"uid", "gid", "realname", "home", "shell", "passwd"};
    return std::ranges::find(names, property) != names.end();
}

Status ComputerUser::checkValues() const {
    const std::string& property = *change().property;
    const std::vector<std::string>& values = change().values;
    if (change().operation == "-append" || values.size() > 1) {
        return refused("an account has one " + property + "; write it with -create and one value");
    }
    const std::string value = values.empty() ? "" : values.front();
    if (property == "uid" || property == "gid") {
        const auto number = numberOfValues();
        if (!number) {
            return refused("it is a number; give one");
        }
        const bool isSame = line_ != nullptr && line_->uid == *number;
        if (property == "uid" && *number == 0 && !isSame) {
            return refused("number 0 is the system's administrator; choose another one");
        }
        return property == "gid" ? checkPrimaryGroup() : Status();
    }
    if (property == "passwd") {
        return values.empty() || value == "!" || value == "*"
                   ? Status()
                   : refused("a password is set with dscl; here is only \"!\", which matches none");
    }
    const bool breaksLine = value.find_first_of(property == "realname" ? ",:" : ":") != std::string::npos;
    return breaksLine ? refused("the system's list of users cannot hold a comma or colon here; leave it out")
                      : Status();
}

Status ComputerUser::checkPrimaryGroup() const {
    const unsigned gid = numberOfValues().value_or(0);
    const platform::GroupLine* group = directory().findGroup(gid);
    const bool isSame = line_ != nullptr && line_->gid == gid;
    const bool isPowerful = gid == 0 || (group != nullptr && platform::isGroupOfAdministrators(group->name));
    return isPowerful && !isSame ? refused("the users of " + (group == nullptr ? "group 0" : group->name) +
                                           " administer the computer; choose another group")
                                 : Status();
}

Status ComputerUser::checkAccount() const {
    const Status status = checkOrdinaryUser(*line_, isOurs(), directory().limits());
    return status.isOk() ? Status() : refused(std::string(status.why()));
}

Status ComputerUser::checkRemoval() const {
    return line_->uid == directory().user()
               ? refused("it is the user who runs Brindle; let another administrator do it")
               : checkAccount();
}

std::optional<std::vector<std::string>> ComputerUser::programThatMakes(Store::Record collected) {
    const auto numberOf = [&](const char* property) {
        bool isValid = false;
        const unsigned number = platform::accountNumber(collectedValue(collected, property, ""), &isValid);
        return isValid ? std::optional(std::to_string(number)) : std::nullopt;
    };
    const auto uid = numberOf("uid");
    const auto gid = numberOf("gid");
    if (!uid || !gid) {
        return std::nullopt;
    }
    // No home folder, no group of its own, no numbers for containers, no record of past logins.
    return std::vector<std::string>{accountprogram::useradd,
                                    "--no-create-home",
                                    "--no-user-group",
                                    "--no-log-init",
                                    "--key",
                                    "SUB_UID_COUNT=0",
                                    "--key",
                                    "SUB_GID_COUNT=0",
                                    "--home-dir",
                                    collectedValue(collected, "home", noHome),
                                    "--shell",
                                    collectedValue(collected, "shell", noShell),
                                    "--uid",
                                    *uid,
                                    "--gid",
                                    *gid,
                                    "--comment",
                                    collectedValue(collected, "realname", ""),
                                    "--",
                                    name()};
}

Status ComputerUser::writeLine() {
    const std::string& property = *change().property;
    if (change().operation == "-delete" && property != "realname") {
        return refused("an account always has it; write another value with -create");
    }
    const std::string value =
        change().operation == "-delete" || change().values.empty() ? "" : change().values.front();
    if (property == "passwd") {
        return lockPassword();
    }
    if (property == "gid") {
        const unsigned gid = numberOfValues().value_or(line_->gid);
        return gid == line_->gid ? Status() : modify("--gid", std::to_string(gid));
    }
    if (property == "realname") {
        const std::size_t nameEnd = std::min(line_->comment.find(','), line_->comment.size());
        const std::string comment = value + line_->comment.substr(nameEnd);
        return comment == line_->comment ? Status() : modify("--comment", comment);
    }
    const bool isHome = property == "home";
    return value == (isHome ? line_->home : line_->shell) ? Status()
                                                          : modify(isHome ? "--home" : "--shell", value);
}

Status ComputerUser::lockPassword() const {
    return isNoPassword(passwordHashOf(name())) ? Status() : modify("--password", "!");
}

Status ComputerUser::modify(const char* option, const std::string& value) const {
    Status status = checkAccount();
    return status.isOk() ? runProgram({accountprogram::usermod, option, value, "--", name()}) : status;
}

std::vector<std::string> ComputerUser::programThatRenames(const std::string& newName) const {
    return {accountprogram::usermod, "--login", newName, "--", name()};
}

std::vector<std::string> ComputerUser::programThatRenumbers(unsigned newNumber) const {
    return {accountprogram::usermod, "--uid", std::to_string(newNumber), "--", name()};
}

std::vector<std::string> ComputerUser::programThatDeletes() const {
    return {accountprogram::userdel, "--", name()};
}
