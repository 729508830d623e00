#include "tools/ComputerUser.h"

#include "directory/AccountRules.h"
#include "platform/netinfo/AccountNumber.h"
#include "platform/posix/OwnedFile.h"
#include "tools/AccountPrograms.h"

#include <algorithm>
#include <cstdio>

#include <shadow.h>

namespace tools {

using platform::Status;
using platform::Store;

namespace {

/// No home folder and no shell, because the account is only for connecting to shares.
constexpr const char* noHome = "/dev/null";
constexpr const char* noShell = "/sbin/nologin";

bool isNoPassword(std::string_view hash) {
    return hash.starts_with('!') || hash.starts_with('*');
}

} // namespace

std::string passwordHashOf(const std::string& user) {
    const platform::OwnedFile file(std::fopen("/etc/shadow", "re"));
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
    : ComputerAccount(directory, change), line_(directory.accounts().findUser(name())) {}

std::optional<unsigned> ComputerUser::number() const {
    return line_ == nullptr ? std::nullopt : std::optional(line_->uid);
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
    // No home folder, no group of its own, no subordinate ids, no entries in the login logs.
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
        const unsigned gid = numberOf(change()).value_or(line_->gid);
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
    if (isNoPassword(passwordHashOf(name()))) {
        return {};
    }
    const Status status = checkOrdinaryUser(*line_, isOurs(), directory().accounts().limits);
    return status.isOk() ? modify("--password", "!") : refused(std::string(status.why()));
}

Status ComputerUser::modify(const char* option, const std::string& value) const {
    return runProgram({accountprogram::usermod, option, value, "--", name()});
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

} // namespace tools
