#include "platform/samba/SambaAccounts.h"

#include "platform/netinfo/Store.h"
#include "platform/posix/InputOutput.h"
#include "platform/posix/Process.h"
#include "platform/posix/ProcessTable.h"
#include "platform/posix/Secret.h"
#include "platform/posix/WholeFile.h"
#include "platform/samba/AccountLists.h"
#include "platform/samba/InstalledSamba.h"
#include "platform/samba/PasswordFile.h"
#include "platform/samba/ServerProcesses.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <system_error>
#include <vector>

#include <unistd.h>

namespace platform {

namespace {

namespace fs = std::filesystem;

/// Samba reads a new password into a buffer of this size, and takes what is longer for the next line.
constexpr std::size_t longestPassword = 254;

constexpr const char* refusedPassword = "Samba did not take the password";

constexpr std::array libraryFolders{"/usr/lib/", "/usr/lib64/", "/usr/local/lib/"};

/// The setting of each of Samba's folders, and the folder's name below the root's samba folder.
constexpr std::array<std::array<const char*, 2>, 7> folders{{{"private dir", "private"},
                                                             {"lock directory", "lock"},
                                                             {"state directory", "state"},
                                                             {"cache directory", "cache"},
                                                             {"ncalrpc dir", "ncalrpc"},
                                                             {"pid directory", "pid"},
                                                             {"binddns dir", "binddns"}}};

/// Programs that Samba would run to change this computer's accounts at a client's request. An smb.conf that
/// was copied from the computer's own may set them.
constexpr std::array accountPrograms{"add user script",          "delete user script",
                                     "rename user script",       "add group script",
                                     "add machine script",       "delete group script",
                                     "add user to group script", "delete user from group script",
                                     "set primary group script"};

/// Writes the file whole, and only if its content changes.
Status replaceFile(const std::string& file, const std::string& text) {
    if (const auto before = readWholeFile(file); before.isOk() && *before == text) {
        return {};
    }
    const Status status = writeWholeFile(file, text);
    return status.isOk()
               ? status
               : Status::failure("cannot write", file,
                                 std::string(status.why()) + "; allow writing to its folder and try again");
}

/// Ok when everything is installed that is needed to change the password database.
Status checkInstallation(const std::string& program) {
    constexpr const char* what = "cannot use the password database";
    if (program.empty()) {
        return Status::failure(what, "", "pdbedit is not installed; install the package samba-common-bin");
    }
    if (SambaAccounts::wrapperLibrary().empty()) {
        return Status::failure(what, "",
                               "libnss_wrapper.so is not installed; install the package libnss-wrapper");
    }
    return {};
}

/// The failure of a run of pdbedit; `what` says what failed.
Status complaint(const char* what, const Result<FinishedProcess>& run, const std::string& logFolder) {
    if (!run.isOk()) {
        return Status::failure(what, "", std::string(run.status().why()));
    }
    const std::string line = lastLineOf(run->output);
    return Status::failure(what, "", (line.empty() ? "no reason given" : line) + "; see " + logFolder);
}

} // namespace

bool SambaAccounts::exists() const {
    std::error_code ignored;
    return fs::is_directory(paths_.folder, ignored);
}

std::string SambaAccounts::configurationFile() const {
    return paths_.folder + "/smbd.conf";
}

std::string SambaAccounts::passwdFile() const {
    return paths_.folder + "/passwd";
}

std::string SambaAccounts::groupFile() const {
    return paths_.folder + "/group";
}

std::string SambaAccounts::publicFoldersFile() const {
    return paths_.folder + "/public.conf";
}

std::string SambaAccounts::logFolder() const {
    return paths_.folder + "/log";
}

std::string SambaAccounts::databaseFile() const {
    return paths_.folder + "/private/passdb.tdb";
}

std::vector<SambaAccounts::Setting> SambaAccounts::ownSettings() const {
    const std::string folder = paths_.folder;
    std::vector<Setting> settings;
    for (const auto& [name, below] : folders) {
        settings.push_back({name, folder + "/" + below});
    }
    settings.push_back({"passdb backend", "tdbsam:" + databaseFile()});
    settings.push_back({"log file", logFolder() + "/tools.log"});
    settings.push_back({"config backend", "file"});
    // A share-level "security" keeps today's Samba from starting. It stays in the root's file, but this hides
    // it from the server.
    settings.push_back({"security", "user"});
    settings.push_back({"interfaces", "127.0.0.1/8"});
    settings.push_back({"bind interfaces only", "yes"});
    // When a client changes a password, it is that of the root's user, never that of the computer's user of
    // the same name.
    for (const char* name : {"unix password sync", "pam password change", "obey pam restrictions"}) {
        settings.push_back({name, "no"});
    }
    for (const char* name : accountPrograms) {
        settings.push_back({name, ""});
    }
    return settings;
}

std::vector<std::string> SambaAccounts::privateOptions() const {
    std::vector<std::string> options;
    for (const Setting& setting : ownSettings()) {
        options.push_back("--option=" + setting.name + "=" + setting.value);
    }
    return options;
}

std::vector<std::string> SambaAccounts::environment() const {
    auto environment = systemEnvironment();
    environment.push_back("LD_PRELOAD=" + wrapperLibrary());
    environment.push_back("NSS_WRAPPER_PASSWD=" + passwdFile());
    environment.push_back("NSS_WRAPPER_GROUP=" + groupFile());
    return environment;
}

std::string SambaAccounts::wrapperLibrary() {
    // The dynamic loader finds a bare name in its own folders on every architecture. The search here only
    // decides whether the library is installed.
    constexpr const char* library = "libnss_wrapper.so";
    std::error_code ignored;
    for (const char* folder : libraryFolders) {
        if (fs::exists(std::string(folder) + library, ignored)) {
            return library;
        }
        for (const auto& entry : fs::directory_iterator(folder, ignored)) {
            if (entry.is_directory(ignored) && fs::exists(entry.path() / library, ignored)) {
                return library;
            }
        }
    }
    return {};
}

std::string SambaAccounts::configuration(bool includesSmbConf) const {
    std::string own = "[global]\n";
    for (const Setting& setting : ownSettings()) {
        own += "  " + setting.name + " = " + setting.value + "\n";
    }
    std::string text =
        "# Written by Brindle for the SMB server of this root alone.  Changes here are lost: "
        "the settings are\n"
        "# those of " +
        paths_.smbConf + ".\n" + own +
        "  workgroup = WORKGROUP\n  netbios name = BRINDLE\n  server role = standalone server\n"
        "  map to guest = Bad User\n  disable netbios = yes\n  load printers = no\n"
        "  disable spoolss = yes\n";
    if (includesSmbConf) {
        // The last setting that is read counts, so the root's own settings come again after the include. The
        // included file may end in a share, so "[global]" does too.
        text += "  include = " + paths_.smbConf + "\n" + own + "  include = " + publicFoldersFile() + "\n";
    }
    return text;
}

Status SambaAccounts::makeFolders() const {
    const fs::path folder = paths_.folder;
    std::error_code error;
    fs::create_directories(logFolder(), error);
    for (const auto& each : folders) {
        if (!error) {
            fs::create_directories(folder / each[1], error);
        }
    }
    if (!error) {
        fs::permissions(folder / "private", fs::perms::owner_all, error);
    }
    if (error) {
        return Status::failure("cannot make", folder,
                               error.message() + "; allow writing to the root and try again");
    }
    const Status status = replaceFile(folder / "accounts.conf", configuration(false));
    return status.isOk() ? replaceFile(configurationFile(), configuration(true)) : status;
}

Status SambaAccounts::make() const {
    Status status = makeFolders();
    if (!status.isOk()) {
        return status;
    }
    Store store(paths_.storeFile);
    return writeAccountLists(store);
}

Status SambaAccounts::writeAccountLists(Store& store) const {
    const auto users = store.child(Store::root, "users");
    const auto groups = store.child(Store::root, "groups");
    const AccountLists lists = accountLists(users ? store.children(*users) : RecordBlock(),
                                            groups ? store.children(*groups) : RecordBlock());
    if (!store.status().isOk()) {
        return store.status();
    }
    Status status = replaceFile(passwdFile(), lists.passwd);
    if (status.isOk()) {
        status = replaceFile(groupFile(), lists.group);
    }
    if (!status.isOk() || readWholeFile(publicFoldersFile()).valueOr("") == lists.publicFolders) {
        return status;
    }
    status = replaceFile(publicFoldersFile(), lists.publicFolders);
    for (const pid_t process : processIds()) {
        if (isServerWith(process, configurationFile())) {
            ::kill(process, SIGHUP); // on its own it looks for changes only once a minute
        }
    }
    return status;
}

Result<FinishedProcess> SambaAccounts::changeDatabase(const std::string& program,
                                                      const std::vector<std::string>& operation,
                                                      std::string_view input) const {
    Command command{
        {program, "-s", paths_.folder + "/accounts.conf"}, ErrorOutput::WithOutput, environment()};
    for (std::string& option : privateOptions()) {
        command.words.push_back(std::move(option));
    }
    command.words.insert(command.words.end(), operation.begin(), operation.end());
    auto run = runProcess(command, input, databaseLimit_);
    if (!run.isOk() && run.status().systemError() == ETIMEDOUT) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(databaseLimit_).count();
        return Status::failure("cannot use", paths_.folder,
                               "the password database did not answer within " + std::to_string(seconds) +
                                   " seconds; try again when nothing else uses it");
    }
    return run;
}

Status SambaAccounts::checkPassword(std::string_view password) {
    const auto isControl = [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
    };
    if (std::ranges::any_of(password, isControl)) {
        return Status::failure(refusedPassword, "",
                               "a password must not contain a control character; choose another one");
    }
    static_assert(longestPassword == 254); // as the sentence says, which is translated
    if (password.size() > longestPassword) {
        return Status::failure(refusedPassword, "", "it is longer than 254 bytes; choose a shorter one");
    }
    return {};
}

Status SambaAccounts::checkPrograms() {
    return checkInstallation(sambaCommand("pdbedit"));
}

Status SambaAccounts::setPassword(const std::string& user, std::string_view password) const {
    const std::string program = sambaCommand("pdbedit");
    if (Status status = checkInstallation(program); !status.isOk()) {
        return status;
    }
    if (Status status = checkPassword(password); !status.isOk()) {
        return status;
    }
    std::string input;
    input.reserve(2 * password.size() + 2); // so that growing leaves no copy of it in memory
    input.append(password).append("\n").append(password).append("\n");
    const auto run = changeDatabase(program, {"-t", "-a", "--user=" + user}, input);
    wipe(input);
    return run.isOk() && run->status == 0 ? Status() : complaint(refusedPassword, run, logFolder());
}

Status SambaAccounts::removeUser(const std::string& user) const {
    std::error_code ignored;
    if (!fs::exists(databaseFile(), ignored)) {
        return {};
    }
    const std::string program = sambaCommand("pdbedit");
    if (Status status = checkInstallation(program); !status.isOk()) {
        return status;
    }
    const auto run = changeDatabase(program, {"-x", "--user=" + user}, {});
    const auto says = [&](const char* text) { return run->output.find(text) != std::string::npos; };
    // pdbedit says the same of a database that it could not open.
    if (run.isOk() &&
        (run->status == 0 || (says("does not exist in the passdb") && !says("ailed to open")))) {
        return {};
    }
    return complaint("Samba did not forget the password", run, logFolder());
}

Result<std::optional<SambaUser>> SambaAccounts::user(const std::string& user) const {
    std::error_code ignored;
    if (!fs::exists(databaseFile(), ignored)) {
        return std::optional<SambaUser>();
    }
    if (auto known = userInPasswordFile(databaseFile(), user)) {
        return std::move(*known);
    }
    const std::string program = sambaCommand("pdbedit");
    if (Status status = checkInstallation(program); !status.isOk()) {
        return status;
    }
    auto run = changeDatabase(program, sambaUserWords(user), {});
    return run.isOk() ? sambaUserOf(*run) : Result<std::optional<SambaUser>>(run.status());
}

Result<std::vector<SambaUser>> SambaAccounts::users() const {
    std::error_code ignored;
    if (!fs::exists(databaseFile(), ignored)) {
        return std::vector<SambaUser>();
    }
    const std::string program = sambaCommand("pdbedit");
    if (Status status = checkInstallation(program); !status.isOk()) {
        return status;
    }
    auto run = changeDatabase(program, allSambaUsersWords(), {});
    return run.isOk() ? sambaUsersOf(*run) : Result<std::vector<SambaUser>>(run.status());
}

} // namespace platform
