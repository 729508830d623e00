#include "access/Examiner.h"
#include "access/HiddenSection.h"
#include "platform/foundation/Computer.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/posix/LetterCase.h"
#include "platform/posix/ShellWord.h"
#include "platform/samba/InstalledSamba.h"
#include "platform/samba/SambaAccounts.h"
#include "platform/samba/ServerState.h"
#include "platform/samba/SettingsComplaints.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace accesscheck {

namespace {

using Level = Finding::Level;

/// A line of smb.conf, and the share whose section holds it; none when the section is not a share's.
struct PlacedLine {
    std::string_view text;
    std::optional<std::string_view> share;
};

/// The lines of `text`, which must outlive them, by their numbers from 1.
std::vector<PlacedLine> linesWithShares(std::string_view text) {
    std::vector<PlacedLine> lines(1);
    std::optional<std::string_view> share;
    while (!text.empty()) {
        const std::string_view each = text.substr(0, text.find('\n'));
        const std::size_t begin = each.find('[');
        const std::size_t end = each.find(']');
        if (each.find_first_not_of(" \t") == begin && begin < end && end != std::string_view::npos) {
            const std::string_view name = each.substr(begin + 1, end - begin - 1);
            share = platform::lowercased(name) == "global" ? std::nullopt : std::optional(name);
        }
        lines.push_back({each, share});
        text.remove_prefix(std::min(text.size(), each.size() + 1));
    }
    return lines;
}

bool exists(const std::string& file) {
    return ::access(file.c_str(), F_OK) == 0;
}

} // namespace

void Examiner::examineSettings() {
    if (!conf_.unreadableReason().empty()) {
        find({.code = "unreadable-file",
              .text = stringWithFormat(NSLocalizedString("%@ cannot be read: %@."), smbConfFile_,
                                       NSLocalizedString(conf_.unreadableReason())),
              .where = smbConfFile_,
              .remedy = {}});
        return;
    }
    if (!host_.root && !platform::sambaServer("smbd").empty() && !exists(smbConfFile_)) {
        // The helper's copy of the file from before its last change, or the one that Samba brings.
        const std::string previous = smbConfFile_ + ".previous";
        const std::string source = exists(previous) ? previous : "/usr/share/samba/smb.conf";
        find({.code = "smb-conf",
              .text = stringWithFormat(
                  NSLocalizedString("%@ does not exist: the SMB server does not start without it."),
                  smbConfFile_),
              .where = smbConfFile_,
              .remedy = exists(source) ? "sudo cp -p " + platform::shellWord(source) + " " +
                                             platform::shellWord(smbConfFile_)
                                       : std::string()});
    }
    for (const SMBHiddenSection& hidden : conf_.hiddenSections()) {
        find({.code = "hidden-section",
              .text = sentenceAbout(hidden),
              .where = smbConfFile_ + ":" + std::to_string(hidden.line),
              .remedy = remedyFor(hidden, smbConfFile_, host_.root.has_value()),
              .share = nameOf(hidden)});
    }
    const std::string text = conf_.textOnDisk();
    if (text.empty() || platform::sambaCommand("testparm").empty()) {
        return;
    }
    const auto complaints = platform::settingsComplaints(text);
    if (!complaints.isOk()) {
        found_.notes.push_back(complaints.status().text());
        return;
    }
    const std::vector<PlacedLine> lines = linesWithShares(text);
    for (const platform::SettingsComplaint& each : *complaints) {
        const PlacedLine& line = each.line < lines.size() ? lines[each.line] : lines.front();
        // A root's own server is started with its own folders and security level.
        const bool isOthers = each.line == 0 ? each.text.find(" directory ") != std::string::npos
                                             : platform::isShareSecurity(line.text);
        if (host_.root && isOthers) {
            continue;
        }
        find({.code = "smb-conf",
              .text = stringWithFormat(NSLocalizedString("The SMB server complains: %@"),
                                       NSLocalizedString(each.text)),
              .where = each.line == 0 ? smbConfFile_ : smbConfFile_ + ":" + std::to_string(each.line),
              .remedy = each.line == 0
                            ? NSLocalizedString("Change the SMB server's settings file.")
                            : stringWithFormat(NSLocalizedString("Change or delete the line \"%@\"."),
                                               std::string(line.text)),
              .share = line.share ? std::optional<std::string>(*line.share) : std::nullopt});
    }
}

void Examiner::examineServers() {
    const bool isNeeded = sharesOverSMB();
    const auto& computer = platform::Host::current().services().computer;
    if (computer && !computer->whatIsMissing().empty()) {
        find({.level = isNeeded ? Level::Problem : Level::Notice,
              .code = "not-installed",
              .text = computer->whatIsMissing(),
              .where = NSLocalizedString("this computer"),
              .remedy = {}});
    }
    if (platform::sambaServer("smbd").empty()) {
        if (!computer) {
            find({.level = Level::Notice,
                  .code = "not-installed",
                  .text = NSLocalizedString("Samba is not installed (package samba): nothing is served."),
                  .where = NSLocalizedString("this computer"),
                  .remedy = {}});
        }
        return;
    }
    const platform::ServerState state =
        host_.root ? platform::rootServerState(*host_.root) : platform::smbServerState();
    if (state.process == 0) {
        find({.level = isNeeded && !host_.root ? Level::Problem : Level::Notice,
              .code = "server-stopped",
              .text = host_.root ? NSLocalizedString("The root's SMB server is not running: it runs only "
                                                     "while Brindle runs with --serve.")
                                 : NSLocalizedString("The SMB server is not running: nothing is shared."),
              .where = "smbd",
              .remedy = host_.root ? command({"--serve"}) : command({"servers", "start"})});
    } else if (state.listensAt.empty()) {
        find({.code = "server-deaf",
              .text = stringWithFormat(
                  NSLocalizedString(
                      "The SMB server is running (process %@) and is not listening on any address."),
                  std::to_string(state.process)),
              .where = "smbd",
              .remedy = host_.root ? NSLocalizedString("Quit that Brindle and start it again.")
                                   : "systemctl restart smbd"});
    }
}

void Examiner::examineFile(const std::string& path, unsigned forbidden, unsigned owner) {
    struct stat status {};

    if (::lstat(path.c_str(), &status) != 0) {
        return; // a missing file is created with the right owner and mode
    }
    if (status.st_uid != owner) {
        const passwd* entry = ::getpwuid(owner);
        const std::string name = entry != nullptr ? entry->pw_name : std::to_string(owner);
        find({.code = "wrong-owner",
              .text = stringWithFormat(NSLocalizedString("%@ should belong to %@."), path, name),
              .where = path,
              .remedy = "chown " + name + " " + platform::shellWord(path)});
    }
    const unsigned mode = status.st_mode & 07777U;
    if (!S_ISLNK(status.st_mode) && (mode & forbidden) != 0) {
        const bool isSecret = (forbidden & 044U) != 0;
        std::array<char, 8> bits{};
        std::snprintf(bits.data(), bits.size(), "%04o", mode & ~forbidden);
        find({.code = isSecret ? "readable-by-others" : "writable-by-others",
              .text = stringWithFormat(
                  isSecret ? NSLocalizedString("Users other than its owner may use %@, which holds secrets.")
                           : NSLocalizedString("Users other than its owner may change %@."),
                  path),
              .where = path,
              .remedy = "chmod " + std::string(bits.data()) + " " + platform::shellWord(path)});
    }
}

void Examiner::examineOwnFiles() {
    constexpr unsigned othersWrite = 002;
    constexpr unsigned allWrite = 022;
    constexpr unsigned secret = 077;
    const platform::Services& services = platform::Host::current().services();
    const std::filesystem::path store = services.localDomain->storeFile();
    const std::string folder = store.parent_path();
    if (!host_.root) {
        for (const std::string& each : {folder, store.string(), smbConfFile_}) {
            examineFile(each, allWrite, 0);
        }
        examineFile(services.paths->map(platform::systempath::appleFileServer), allWrite, 0);
        for (const char* each : {"unfinished", "smbpasswd"}) {
            examineFile(folder + "/" + each, secret, 0);
        }
        examineFile(services.historyFile, othersWrite, ::geteuid());
        return;
    }

    struct stat status {};

    // The root's owner owns everything in it. Its group may be the user's own group, which may then write.
    const unsigned owner = ::stat(folder.c_str(), &status) == 0 ? status.st_uid : ::geteuid();
    for (const std::string& each :
         {folder, store.string(), smbConfFile_, services.historyFile,
          services.paths->map(platform::systempath::appleFileServer), host_.root->folder}) {
        examineFile(each, othersWrite, owner);
    }
    examineFile(host_.root->folder + "/private", secret, owner);
    examineFile(host_.root->folder + "/private/passdb.tdb", secret, owner);
}

} // namespace accesscheck
