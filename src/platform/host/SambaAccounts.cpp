#include "platform/host/SambaAccounts.h"

#include "platform/foundation/NSFileManager.h"
#include "platform/host/AccountLists.h"
#include "platform/netinfo/Store.h"
#include "platform/posix/CapturedRun.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <vector>

#include <unistd.h>

namespace platform {

namespace {

namespace fs = std::filesystem;

/// Samba reads a new password into so many bytes, and what is longer into the next line.
constexpr std::size_t longestPassword = 254;

constexpr std::array programFolders{"/usr/bin/", "/usr/local/bin/", "/usr/local/samba/bin/"};
constexpr std::array libraryFolders{"/usr/lib/", "/usr/lib64/", "/usr/local/lib/"};

/// Each of Samba's folders: its setting, and its name below the root's samba folder.
constexpr std::array<std::array<const char*, 2>, 7> folders{{{"private dir", "private"},
                                                             {"lock directory", "lock"},
                                                             {"state directory", "state"},
                                                             {"cache directory", "cache"},
                                                             {"ncalrpc dir", "ncalrpc"},
                                                             {"pid directory", "pid"},
                                                             {"binddns dir", "binddns"}}};

/// What Samba would run to change this computer's accounts when a client asks it to. An smb.conf that was
/// copied from the computer's own may name such programs.
constexpr std::array accountPrograms{"add user script",          "delete user script",
                                     "rename user script",       "add group script",
                                     "add machine script",       "delete group script",
                                     "add user to group script", "delete user from group script",
                                     "set primary group script"};

std::string databaseProgram() {
    for (const char* folder : programFolders) {
        if (::access((std::string(folder) + "pdbedit").c_str(), X_OK) == 0) {
            return std::string(folder) + "pdbedit";
        }
    }
    return {};
}

std::string contents(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// Readers never meet half a list, and a list that stays as it is costs no write.
std::string replaceFile(const std::string& file, const std::string& text) {
    if (contents(file) == text || writeToFileAtomically(file, text, 0644)) {
        return {};
    }
    return "cannot write " + file + ": " + std::strerror(errno) +
           "; allow writing to its folder and try again";
}

std::string missingPart(const std::string& program) {
    if (program.empty()) {
        return "Samba's pdbedit is not installed; install the package samba-common-bin and try again";
    }
    if (SambaAccounts::wrapperLibrary().empty()) {
        return "libnss_wrapper.so is not installed; install the package libnss-wrapper and try again";
    }
    return {};
}

std::string complaint(const CapturedRun& run) {
    const std::string line = lastLineOf(run.output);
    return line.empty() ? "no reason given" : line;
}

CapturedRun runDatabaseProgram(const std::string& program, const SambaAccounts& accounts,
                               const std::string& folder, const std::vector<std::string>& operation,
                               std::string_view input) {
    std::vector<std::string> arguments{program, "-s", folder + "/accounts.conf"};
    for (std::string& option : accounts.privateOptions()) {
        arguments.push_back(std::move(option));
    }
    arguments.insert(arguments.end(), operation.begin(), operation.end());
    std::vector<std::string> environment = accounts.environment();
    environment.emplace_back("LC_ALL=C");
    return runCaptured(std::move(arguments), std::move(environment), input);
}

} // namespace

bool SambaAccounts::exists() const {
    std::error_code ignored;
    return fs::is_directory(root_.sambaFolder(), ignored);
}

std::string SambaAccounts::configurationFile() const {
    return root_.sambaFolder() + "/smbd.conf";
}

std::string SambaAccounts::passwdFile() const {
    return root_.sambaFolder() + "/passwd";
}

std::string SambaAccounts::groupFile() const {
    return root_.sambaFolder() + "/group";
}

std::string SambaAccounts::logFolder() const {
    return root_.sambaFolder() + "/log";
}

std::string SambaAccounts::databaseFile() const {
    return root_.sambaFolder() + "/private/passdb.tdb";
}

std::vector<SambaAccounts::Setting> SambaAccounts::ownSettings() const {
    const std::string folder = root_.sambaFolder();
    std::vector<Setting> settings;
    for (const auto& [name, below] : folders) {
        settings.push_back({name, folder + "/" + below});
    }
    settings.push_back({"passdb backend", "tdbsam:" + databaseFile()});
    settings.push_back({"log file", logFolder() + "/tools.log"});
    settings.push_back({"config backend", "file"});
    // A share-level "security" makes this Samba refuse to start; the root's file keeps it, the server does
    // not see it.
    settings.push_back({"security", "user"});
    settings.push_back({"interfaces", "127.0.0.1/8"});
    settings.push_back({"bind interfaces only", "yes"});
    // A password that a client changes is that of the root's user, never of the computer's user of that name.
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
    return {"PATH=/usr/sbin:/usr/bin:/sbin:/bin", "LD_PRELOAD=" + wrapperLibrary(),
            "NSS_WRAPPER_PASSWD=" + passwdFile(), "NSS_WRAPPER_GROUP=" + groupFile()};
}

std::string SambaAccounts::wrapperLibrary() {
    // The loader takes a bare name from its own folders, on every architecture; where it is found decides
    // only whether it is there.
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
    const std::string smbConf = root_.map("/etc/smb.conf");
    std::string text =
        "# Written by Brindle for the SMB server of this root alone.  Changes here are lost: "
        "the settings are\n"
        "# those of " +
        smbConf + ".\n" + own +
        "  workgroup = WORKGROUP\n  netbios name = BRINDLE\n  server role = standalone server\n"
        "  map to guest = Bad User\n  disable netbios = yes\n  load printers = no\n"
        "  disable spoolss = yes\n";
    if (includesSmbConf) {
        // The setting that is read last counts. The included file may end in a share.
        text += "  include = " + smbConf + "\n" + own;
    }
    return text;
}

std::string SambaAccounts::makeFolders() const {
    const fs::path folder = root_.sambaFolder();
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
        return "cannot make " + folder.string() + ": " + error.message() +
               "; allow writing to the root and try again";
    }
    std::string failure = replaceFile(folder / "accounts.conf", configuration(false));
    return failure.empty() ? replaceFile(configurationFile(), configuration(true)) : failure;
}

std::string SambaAccounts::make() const {
    std::string failure = makeFolders();
    if (!failure.empty()) {
        return failure;
    }
    try {
        Store store(root_.storeFile());
        return writeAccountLists(store);
    } catch (const StoreError& error) {
        return error.what();
    }
}

std::string SambaAccounts::writeAccountLists(Store& store) const {
    const auto users = store.child(Store::root, "users");
    const auto groups = store.child(Store::root, "groups");
    const AccountLists lists = accountLists(users ? store.children(*users) : RecordBlock(),
                                            groups ? store.children(*groups) : RecordBlock());
    std::string failure = replaceFile(passwdFile(), lists.passwd);
    return failure.empty() ? replaceFile(groupFile(), lists.group) : failure;
}

std::string SambaAccounts::setPassword(Store& store, const std::string& user,
                                       std::string_view password) const {
    const std::string program = databaseProgram();
    std::string failure = missingPart(program);
    if (failure.empty()) {
        failure = makeFolders();
    }
    if (failure.empty()) {
        failure = writeAccountLists(store);
    }
    if (!failure.empty()) {
        return failure;
    }
    if (password.size() > longestPassword) {
        return "the password is longer than " + std::to_string(longestPassword) +
               " bytes; choose a shorter one";
    }
    std::string input;
    input.reserve(2 * password.size() + 2); // so that no copy of it is left behind by growing
    input.append(password).append("\n").append(password).append("\n");
    const CapturedRun run =
        runDatabaseProgram(program, *this, root_.sambaFolder(), {"-t", "-a", "--user=" + user}, input);
    ::explicit_bzero(input.data(), input.size());
    if (!run.started || run.status != 0) {
        return "Samba did not take the password: " + complaint(run) + "; see " + logFolder();
    }
    return {};
}

std::string SambaAccounts::removeUser(const std::string& user) const {
    std::error_code ignored;
    if (!fs::exists(databaseFile(), ignored)) {
        return {};
    }
    const std::string program = databaseProgram();
    if (std::string missing = missingPart(program); !missing.empty()) {
        return missing;
    }
    const CapturedRun run =
        runDatabaseProgram(program, *this, root_.sambaFolder(), {"-x", "--user=" + user}, {});
    const auto says = [&](const char* text) { return run.output.find(text) != std::string::npos; };
    // Nobody is in a database that cannot be opened either.
    const bool wasMissing = says("does not exist in the passdb") && !says("ailed to open");
    if (!run.started || (run.status != 0 && !wasMissing)) {
        return "Samba did not forget the password: " + complaint(run) + "; see " + logFolder();
    }
    return {};
}

} // namespace platform
