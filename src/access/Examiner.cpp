#include "access/Examiner.h"

#include "directory/ReportLine.h"
#include "directory/ni_report.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/posix/ShellWord.h"

#include <algorithm>
#include <string_view>

namespace accesscheck {

namespace {

/// Escapes a text so that both halves of sed(1)'s "s" take it literally.
std::string escapedForSed(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        constexpr std::string_view special = "\\/.*[]^$&";
        escaped += (special.find(letter) == std::string_view::npos ? "" : "\\") + std::string(1, letter);
    }
    return escaped;
}

/// Finds a section's header, for sed.
std::string headerOf(const std::string& section) {
    return "/^[[:space:]]*\\[" + escapedForSed(section) + "\\]/";
}

/// Finds the line that names a section's folder, for sed.
constexpr const char* pathLine = "^[[:space:]]*\\(path\\|directory\\)[[:space:]]*=.*";

} // namespace

Examiner::Examiner(const ExaminedHost& host)
    : host_(host), own_(std::in_place), conf_(*own_),
      smbConfFile_(platform::Host::current().paths().map(conf_.Path())) {
    readSections();
    readShares();
}

Examiner::Examiner(const ExaminedHost& host, const SMBConf& conf, std::span<const NormalShare> shares)
    : host_(host), conf_(conf), smbConfFile_(platform::Host::current().paths().map(conf_.Path())) {
    readSections();
    const std::string noFolder = NormalShare().DirectoryPath();
    for (const NormalShare& share : shares) {
        if (share.hasRecord()) {
            const std::string& folder = share.DirectoryPath();
            shares_.push_back(
                {share.ShareName(), folder == noFolder ? std::string() : folder, share.AFPShared()});
        }
    }
}

std::vector<std::vector<std::string>> Examiner::report(const char* path,
                                                       std::initializer_list<const char*> properties) {
    const std::vector<std::string> names(properties.begin(), properties.end());
    std::vector<std::string> lines;
    const int status = ni_report_local(path, names, lines);
    std::vector<std::vector<std::string>> rows;
    if (status != NI_OK && hasDirectory_) {
        hasDirectory_ = false;
        find({.code = "directory-unreadable",
              .text = stringWithFormat(NSLocalizedString("The directory cannot be read: %@."),
                                       std::string(ni_error(static_cast<ni_status>(status)))),
              .where = platform::Host::current().localDomain().storeFile(),
              .remedy = {}});
    }
    for (const std::string& line : lines) {
        const ReportPieces pieces(line);
        if (pieces.size() == names.size() + 1) { // a value that contains a tab cannot be one that is examined
            auto& row = rows.emplace_back();
            for (std::size_t index = 0; index < names.size(); ++index) {
                const std::string_view piece = pieces.at(index);
                row.emplace_back(piece == reportNoValue ? std::string_view() : piece);
            }
        }
    }
    return rows;
}

void Examiner::readShares() {
    for (auto& row : report("/config/Brindle", {"name", "directory_path", "afp_shared"})) {
        shares_.push_back({std::move(row[0]), std::move(row[1]), std::move(row[2])});
    }
}

void Examiner::readAccounts() {
    for (auto& row : report("/users", {"name", "uid", "gid", "home", "shell", "sharedDir"})) {
        users_.push_back({std::move(row[0]), std::move(row[1]), std::move(row[2]), std::move(row[3]),
                          std::move(row[4]), std::move(row[5])});
    }
    for (auto& row : report("/groups", {"name", "gid"})) {
        groups_.push_back({std::move(row[0]), std::move(row[1])});
    }
}

std::string Examiner::command(std::initializer_list<std::string> words) const {
    std::string line = host_.commandPrefix;
    for (const std::string& word : words) {
        line += " " + platform::shellWord(word);
    }
    return line;
}

std::string Examiner::deleteCommand(const std::string& record) const {
    constexpr std::string_view program = "brindle";
    return "nicl" + host_.commandPrefix.substr(std::min(host_.commandPrefix.size(), program.size())) +
           " . -delete " + platform::shellWord(record);
}

std::string Examiner::editCommand(const std::string& script) const {
    return std::string(host_.root ? "" : "sudo ") + "sed -i " + platform::shellWord(script) + " " +
           platform::shellWord(smbConfFile_);
}

std::string Examiner::renameCommand(const std::string& section, const std::string& name) const {
    return editCommand("s/^[[:space:]]*\\[" + escapedForSed(section) + "\\]/[" + escapedForSed(name) + "]/");
}

std::string Examiner::moveCommand(const std::string& section, const std::string& folder) const {
    return editCommand(headerOf(section) + ",/^[[:space:]]*\\[/s/" + pathLine +
                       "/path = " + escapedForSed(folder) + "/I");
}

std::string Examiner::movePattern(const std::string& section) const {
    return editCommand(headerOf(section) + ",/^[[:space:]]*\\[/s," + pathLine + ",path = /FOLDER,I");
}

std::string Examiner::movePatternOfBoth(const std::string& share) const {
    // In this order: the command does not move a share whose section names another folder.
    return movePattern(share) + " && " + command({"shares", "set", share, "--folder", "/FOLDER", "--smb"});
}

std::string Examiner::addPathPattern(const std::string& section) const {
    return editCommand(headerOf(section) + "a path = /FOLDER");
}

std::string Examiner::removeCommand(const std::string& section) const {
    const std::string header = headerOf(section);
    return editCommand(header + ",/^[[:space:]]*\\[/{" + header + "d;/^[[:space:]]*\\[/!d}");
}

std::string Examiner::section(const std::string& name) const {
    return stringWithFormat(NSLocalizedString("[%@] in %@"), name, smbConfFile_);
}

} // namespace accesscheck
