#include "platform/host/SystemComputer.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/netinfo/AccountLines.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/MadeAccounts.h"
#include "platform/posix/ProcessTable.h"
#include "platform/samba/InstalledSamba.h"
#include "platform/samba/UserShares.h"
#include "platform/security/HelperFile.h"
#include "platform/security/SudoAuthority.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <string_view>
#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace platform {

namespace {

/// Some of the package's programs; where these are installed, so are the others.
constexpr std::array accountTools{"/usr/sbin/useradd", "/usr/sbin/usermod", "/usr/sbin/groupadd"};

/// Groups that people are put into, although their numbers are below those for people.
constexpr std::array<std::string_view, 3> groupsForPeople{"staff", administratorsGroup, "guest"};

bool isProgram(const char* path) {
    return ::access(path, X_OK) == 0;
}

/// Why no change can be made at all; empty when changes are possible.
std::string problemOf(const std::string& helper) {
    if (::geteuid() == 0) {
        return isProgram(helper.c_str()) ? std::string() : checkHelperFile(helper).text();
    }
    if (!isProgram(SudoAuthority::defaultSudo)) {
        return NSLocalizedString("sudo is not installed (package sudo)");
    }
    return checkHelperFile(helper).text();
}

} // namespace

std::string missingText(const ComputersPrograms& programs) {
    std::vector<std::string> sentences;
    if (programs.smbd.empty()) {
        sentences.push_back(NSLocalizedString("Samba is not installed (package samba): shares, accounts and "
                                              "settings can be made, but no passwords and no Public folders, "
                                              "and nothing is served until it is."));
    }
    if (!programs.hasAccountTools) {
        sentences.push_back(NSLocalizedString("The tools for accounts are not installed (package passwd): "
                                              "shares and settings can be changed, but accounts cannot."));
    }
    if (!programs.helperProblem.empty()) {
        sentences.push_back(
            stringWithFormat(NSLocalizedString("%@: everything can be viewed, but nothing can be changed."),
                             programs.helperProblem));
    }
    std::string line;
    for (const std::string& each : sentences) {
        line += (line.empty() ? "" : "  ") + each;
    }
    return line;
}

std::string serverText(const ServerState& state) {
    if (state.process == 0) {
        return NSLocalizedString("The SMB server is not running: nothing is shared.");
    }
    std::string places;
    for (const std::string& place : state.listensAt) {
        places += (places.empty() ? "" : ", ") + place;
    }
    if (state.since == 0) { // not known
        return places.empty()
                   ? NSLocalizedString("The SMB server is running and is not listening on any address.")
                   : stringWithFormat(NSLocalizedString("The SMB server is running and is listening on %@."),
                                      places);
    }
    std::array<char, 64> since{};
    const std::time_t time = state.since;
    std::tm local{};
    if (::localtime_r(&time, &local) != nullptr) {
        std::strftime(since.data(), since.size(), "%Y-%m-%d %H:%M", &local);
    }
    return places.empty()
               ? stringWithFormat(
                     NSLocalizedString(
                         "The SMB server has been running since %@ and is not listening on any address."),
                     std::string(since.data()))
               : stringWithFormat(
                     NSLocalizedString("The SMB server has been running since %@ and is listening on %@."),
                     std::string(since.data()), places);
}

ServerLine SystemComputer::smbServer() const {
    if (sambaServer("smbd").empty()) {
        return {}; // whatIsMissing says so
    }
    const ServerState state = smbServerState();
    return {serverText(state), state.process == 0};
}

std::string SystemComputer::afpServerLine() const {
    const bool runs = std::ranges::any_of(
        processIds(), [](pid_t process) { return programNameOf(process) == "AppleFileServer"; });
    return runs ? NSLocalizedString("The AFP server is running.")
                : NSLocalizedString("No AFP server is running on this computer: AFP settings and shares are "
                                    "kept, but not served.");
}

std::string SystemComputer::whyNoPublicFolder(const std::string& user) const {
    const passwd* entry = ::getpwnam(user.c_str());
    if (entry == nullptr) {
        return {};
    }
    const AccountLimits limits = readAccountLimits();
    const char* reason = platform::whyNoPublicFolder({user, entry->pw_uid, entry->pw_gid, entry->pw_dir},
                                                     limits.lowestUser, limits.highestUser);
    return reason == nullptr ? std::string()
                             : stringWithFormat(NSLocalizedString("The Public folder is not offered: %@."),
                                                stringWithFormat(NSLocalizedString(reason), user));
}

SystemAccounts systemAccountsOf(const LocalDomain& domain, const AccountLimits& limits) {
    // The list only decides what is shown: while somebody else writes the directory, it does not wait.
    constexpr int waitSeconds = 0;
    const auto files = domain.accountFiles();
    const auto made = madeAccounts(domain, waitSeconds);
    if (!files || !made.isOk()) {
        return {};
    }
    const auto isMade = [&made](bool isUser, const std::string& name, unsigned number) {
        return std::ranges::any_of(*made, [&](const MadeAccount& each) {
            return each.isUser == isUser && each.name == name && each.number == std::to_string(number);
        });
    };
    SystemAccounts accounts;
    const Status users = forEachUserLine(*files, [&](const passwd& line) {
        if (line.pw_uid < limits.lowestUser && !isMade(true, line.pw_name, line.pw_uid)) {
            accounts.users.insert(line.pw_name);
        }
    });
    const Status groups = forEachGroupLine(*files, [&](const group& line) {
        const bool isForPeople =
            std::ranges::find(groupsForPeople, std::string_view(line.gr_name)) != groupsForPeople.end();
        if (line.gr_gid < limits.lowestGroup && !isForPeople && !isMade(false, line.gr_name, line.gr_gid)) {
            accounts.groups.insert(line.gr_name);
        }
    });
    return users.isOk() && groups.isOk() ? accounts : SystemAccounts();
}

SystemAccounts SystemComputer::systemAccounts() const {
    return systemAccountsOf(*domain_, readAccountLimits());
}

std::string SystemComputer::whatIsMissing() const {
    return missingText(
        {sambaServer("smbd"), std::ranges::all_of(accountTools, &isProgram), problemOf(helper_)});
}

} // namespace platform
