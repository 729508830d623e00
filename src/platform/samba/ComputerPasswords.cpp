#include "platform/samba/ComputerPasswords.h"

#include "platform/posix/InputOutput.h"
#include "platform/posix/LetterCase.h"
#include "platform/posix/Process.h"
#include "platform/posix/Secret.h"
#include "platform/posix/WholeFile.h"
#include "platform/samba/InstalledSamba.h"
#include "platform/samba/PasswordFile.h"
#include "platform/samba/SettingsComplaints.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <sstream>
#include <vector>

#include <unistd.h>

namespace platform {

namespace {

constexpr auto patience = std::chrono::seconds(10);
constexpr const char* databaseProgram = "pdbedit";
constexpr const char* notInstalled = "pdbedit is not installed; install the package samba-common-bin";
constexpr const char* passwordProgram = "smbpasswd";
constexpr const char* cacheProgram = "net";
constexpr const char* settingsProgram = "testparm";
constexpr const char* unknown = "does not exist in the passdb";
constexpr const char* notOpened = "ailed to open"; // pdbedit then says that a user does not exist, too

bool isInstalled(const char* program) {
    return !sambaCommand(program).empty();
}

/// Runs one of Samba's programs in the C locale, because its messages are compared. The first word is the
/// program's name.
Result<FinishedProcess> run(std::vector<std::string> words, std::string_view input = {}) {
    words.front() = sambaCommand(words.front());
    Command command{std::move(words), ErrorOutput::WithOutput};
    std::erase_if(command.environment, [](const std::string& each) {
        return each.starts_with("LC_") || each.starts_with("LANG");
    });
    command.environment.emplace_back("LC_ALL=C");
    auto finished = runProcess(command, input, patience);
    return finished.isOk() || finished.status().systemError() != ETIMEDOUT
               ? std::move(finished)
               : Status::failure("cannot use", "Samba's password database",
                                 "it did not answer within ten seconds; try again when nothing else uses it");
}

Status failure(const char* what, const Result<FinishedProcess>& finished) {
    if (!finished.isOk()) {
        return finished.status();
    }
    const std::string line = lastLineOf(finished->output);
    return Status::failure(what, "", line.empty() ? "no reason given; see Samba's log" : line);
}

/// The default place of Samba's database.
std::string ownFile() {
    return sambaBuild().privateFolder + "/passdb.tdb";
}

bool isOwnFileUsed() {
    return usesDefaultPasswordDatabase(readWholeFile(sambaBuild().configFile).valueOr(""));
}

bool ownFileExists() {
    return ::access(ownFile().c_str(), F_OK) == 0;
}

/// What Samba makes of one of its settings; empty when it does not say.
std::string setting(const std::string& name) {
    if (!isInstalled(settingsProgram)) {
        return {};
    }
    const Command command{{sambaCommand(settingsProgram), "-s", "--parameter-name=" + name},
                          ErrorOutput::Discarded,
                          systemEnvironment()};
    const auto finished = runProcess(command, {}, patience);
    return finished.isOk() ? lastLineOf(finished->output) : std::string();
}

/// The file that holds the entries; empty when it is of another kind than tdbsam, or unknown.
std::string entryFile() {
    constexpr std::string_view kind = "tdbsam";
    if (isOwnFileUsed()) {
        return ownFile();
    }
    const std::string backend = setting("passdb backend");
    if (backend == kind) {
        const std::string folder = setting("private dir");
        return folder.empty() ? folder : folder + "/passdb.tdb";
    }
    return backend.starts_with(std::string(kind) + ":") ? backend.substr(kind.size() + 1) : std::string();
}

bool says(const Result<FinishedProcess>& finished, std::string_view text) {
    return finished.isOk() && finished->output.find(text) != std::string::npos;
}

} // namespace

bool usesDefaultPasswordDatabase(std::string_view smbConf) {
    constexpr std::array<std::string_view, 6> elsewhere = {
        "passdbbackend", "privatedir", "privatedirectory", // these name another place or kind
        "include",       "configfile", "configbackend"};   // and these other settings, which may do so
    std::istringstream settings{std::string(smbConf)};
    for (std::string line; std::getline(settings, line);) {
        if (std::ranges::find(elsewhere, settingKeyOf(line)) != elsewhere.end()) {
            return false;
        }
    }
    return true;
}

Status ComputerPasswords::set(const std::string& user, std::string_view password) {
    if (!isInstalled(passwordProgram)) {
        return Status::failure("cannot use", "Samba's password database",
                               "smbpasswd is not installed; install the package samba-common-bin");
    }
    std::string input;
    input.reserve(2 * password.size() + 2); // so that growing leaves no copy of it in memory
    input.append(password).append("\n").append(password).append("\n");
    const auto finished = run({passwordProgram, "-s", "-a", "--", user}, input);
    wipe(input);
    return finished.isOk() && finished->status == 0 ? Status()
                                                    : failure("Samba did not take the password", finished);
}

bool ComputerPasswords::exists() {
    return !isOwnFileUsed() || ownFileExists(); // elsewhere only Samba finds it
}

Result<std::optional<SambaUser>> ComputerPasswords::user(const std::string& user) {
    if (isOwnFileUsed()) {
        if (!ownFileExists()) {
            return std::optional<SambaUser>();
        }
        if (auto known = userInPasswordFile(ownFile(), user)) {
            return std::move(*known);
        }
    }
    if (!isInstalled(databaseProgram)) {
        return Status::failure("cannot use", "Samba's password database", notInstalled);
    }
    std::vector<std::string> words = sambaUserWords(user);
    words.insert(words.begin(), databaseProgram);
    auto finished = run(std::move(words));
    return finished.isOk() ? sambaUserOf(*finished) : Result<std::optional<SambaUser>>(finished.status());
}

Result<std::vector<SambaUser>> ComputerPasswords::users() {
    if (!isInstalled(databaseProgram)) {
        return Status::failure("cannot use", "Samba's password database", notInstalled);
    }
    if (!exists()) {
        return std::vector<SambaUser>();
    }
    std::vector<std::string> words = allSambaUsersWords();
    words.insert(words.begin(), databaseProgram);
    auto finished = run(std::move(words));
    return finished.isOk() ? sambaUsersOf(*finished) : Result<std::vector<SambaUser>>(finished.status());
}

Result<std::string> ComputerPasswords::accountToRemove(const std::string& user) {
    const std::string file = entryFile();
    const auto canMove = file.empty() ? Result(false) : awaitPasswordFile(file, user, patience);
    if (!canMove.isOk()) {
        return canMove.status();
    }
    if (*canMove || !isInstalled(databaseProgram)) {
        return std::string();
    }
    auto finished = run({databaseProgram, "-L", "-w", "--user=" + user});
    if (says(finished, "Username not found") && !says(finished, notOpened)) {
        return std::string();
    }
    if (!finished.isOk() || finished->status != 0) {
        return failure("Samba does not tell what it keeps of an account", finished);
    }
    std::string line = lastLineOf(finished->output);
    wipe(finished->output);
    return line;
}

Status ComputerPasswords::follow(const std::string& user, const std::string& newName) {
    const std::string file = entryFile();
    return file.empty() ? Status() : moveInPasswordFile(file, user, newName, patience);
}

Status ComputerPasswords::forgetNumbers() {
    if (!isInstalled(cacheProgram)) {
        return {};
    }
    const auto finished = run({cacheProgram, "cache", "flush"});
    return finished.isOk() && finished->status == 0 ? Status()
                                                    : failure("Samba did not empty its cache", finished);
}

Status ComputerPasswords::remove(const std::string& user) {
    if (!isInstalled(databaseProgram)) {
        return {};
    }
    const auto finished = run({databaseProgram, "-x", "--user=" + user});
    return (finished.isOk() && finished->status == 0) ||
                   (says(finished, unknown) && !says(finished, notOpened))
               ? Status()
               : failure("Samba did not forget the password", finished);
}

Status ComputerPasswords::putBack(std::string_view account, const std::string& user, unsigned uid,
                                  const std::string& file) {
    const std::size_t nameEnd = account.find(':');
    const std::size_t numberEnd = account.find(':', nameEnd + 1);
    if (nameEnd == std::string_view::npos || numberEnd == std::string_view::npos) {
        return Status::failure("cannot keep the password of", user, "what Samba said of it cannot be read");
    }
    const std::string start = user + ":" + std::to_string(uid);
    std::string line;
    line.reserve(start.size() + account.size() + 1);
    line.append(start).append(account.substr(numberEnd)).append("\n");
    Status status = writeWholeFile(file, line, {.mode = 0600});
    wipe(line);
    if (!status.isOk()) {
        return status;
    }
    const auto finished = run({databaseProgram, "-i", "smbpasswd:" + file});
    ::unlink(file.c_str()); // if this fails, the next call replaces the file
    return finished.isOk() && finished->status == 0 && says(finished, "...ok")
               ? Status()
               : failure("Samba did not take the password back", finished);
}

} // namespace platform
