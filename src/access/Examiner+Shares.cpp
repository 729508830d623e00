#include "access/Examiner.h"
#include "access/FolderPath.h"
#include "model/ServerSettings.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/posix/LetterCase.h"
#include "platform/posix/ShellWord.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <set>

#include <sys/stat.h>
#include <unistd.h>

namespace accesscheck {

namespace {

namespace fs = std::filesystem;

std::string settingOf(const SMBShare& section, std::string_view key) {
    const ServerSetting setting = serverSetting(section, key);
    return setting.pair == nullptr ? std::string() : setting.pair->Value.str();
}

/// True for a section that offers printers, not a folder.
bool isForPrinters(const SMBShare& section) {
    return platform::lowercased(section.ShareName()) == "printers" || serverFlag(section, "printable", false);
}

} // namespace

void Examiner::readSections() {
    for (const auto& entry : conf_.Entries()) {
        const std::string name = entry->ShareName();
        if (entry->Type() == SMBGroup && !entry->isUnnamed() && !isServerGlobal(name) &&
            !isServerHomes(name) && !isForPrinters(*entry)) {
            sections_.push_back({name, settingOf(*entry, "path"), serverFlag(*entry, "available", true)});
        }
    }
}

bool Examiner::sharesOverSMB() const {
    return std::ranges::any_of(sections_, &Section::isOffered);
}

void Examiner::examineShares() {
    Known known;
    for (const Section& each : sections_) {
        known.whole.emplace(each.name, each.path);
        known.byName.emplace(each.name, &each); // the first section of a name wins
        known.byFolder.emplace(each.path, &each);
    }
    for (const Share& share : shares_) {
        known.shares.insert(platform::lowercased(share.name));
    }
    for (const Share& share : shares_) {
        examineRecord(share, known);
    }
    examineSections();
    examineNames();
}

void Examiner::examineFolder(const std::string& share, const std::string& folder, const std::string& where,
                             const std::string& remedy) {
    const std::string path(withoutQuotes(folder));
    if (folder.find('%') != std::string::npos && !isTakenLiterally(path)) {
        return; // the path is different for each user
    }
    if (!path.starts_with('/')) {
        find({.code = "relative-folder",
              .text = stringWithFormat(
                  NSLocalizedString("The folder \"%@\" of the share \"%@\" is not an absolute path."), path,
                  share),
              .where = where,
              .remedy = remedy,
              .share = share});
        return;
    }

    struct stat status {};

    if (::stat(path.c_str(), &status) == 0) {
        if (!S_ISDIR(status.st_mode)) {
            find({.code = "no-folder",
                  .text = stringWithFormat(
                      NSLocalizedString("%@, which is shared as \"%@\", is not a folder."), path, share),
                  .where = where,
                  .remedy = remedy,
                  .share = share});
        }
    } else if (errno == EACCES) {
        found_.notes.push_back(
            stringWithFormat(NSLocalizedString("%@ could not be examined: %@ has no permission."), path,
                             platform::Host::current().accountNames().userName(::geteuid()).value_or("")));
    } else {
        FolderWalk walk(path);
        std::string missing = path;
        while (const auto parent = walk.next()) {
            if (::stat(parent->c_str(), &status) != 0) {
                missing = *parent;
                break;
            }
        }
        find({.code = "folder-gone",
              .text = missing == path
                          ? stringWithFormat(
                                NSLocalizedString("The folder %@ of the share \"%@\" does not exist."), path,
                                share)
                          : stringWithFormat(
                                NSLocalizedString(
                                    "The folder %@ of the share \"%@\" does not exist, because %@ does not."),
                                path, share, missing),
              .where = where,
              .remedy = "mkdir -p " + platform::shellWord(path),
              .share = share});
    }
}

void Examiner::examineRecord(const Share& share, const Known& known) {
    const std::string where = "/config/Brindle/" + share.name;
    if (share.folder.empty()) {
        find({.code = "half-made-share",
              .text = stringWithFormat(
                  NSLocalizedString("The record of the share \"%@\" names no folder: it was only half made."),
                  share.name),
              .where = where,
              .remedy = command({"shares", "remove", share.name}),
              .share = share.name});
        return;
    }
    // An update leaves a section's path, and without --smb would remove a section of another folder.
    examineFolder(share.name, share.folder, where,
                  known.byName.contains(share.name)
                      ? movePatternOfBoth(share.name)
                      : command({"shares", "set", share.name, "--folder", "/FOLDER"}));
    if (known.whole.contains({share.name, share.folder})) {
        return;
    }
    const auto sectionIn = [](const auto& sections, const std::string& key) {
        const auto found = sections.find(key);
        return found == sections.end() ? nullptr : found->second;
    };
    const Section* sameName = sectionIn(known.byName, share.name);
    const Section* sameFolder = sectionIn(known.byFolder, share.folder);
    const auto isOthers = [&](const Section& each) { // it belongs to another share
        return known.shares.contains(platform::lowercased(each.name));
    };
    if (sameName != nullptr) {
        find({.code = "folders-differ",
              .text = stringWithFormat(
                  NSLocalizedString("The share \"%@\" is the folder %@ in its record, and %@ over SMB."),
                  share.name, share.folder, sameName->path),
              .where = section(share.name),
              .remedy = moveCommand(share.name, share.folder),
              .share = share.name});
    } else if (sameFolder != nullptr && !isOthers(*sameFolder)) {
        find({.code = "names-differ",
              .text = stringWithFormat(
                  NSLocalizedString("The share \"%@\" is called \"%@\" over SMB: its section has that name."),
                  share.name, sameFolder->name),
              .where = section(sameFolder->name),
              .remedy = renameCommand(sameFolder->name, share.name),
              .share = share.name});
    } else if (sameFolder == nullptr && share.afpShared != "1") {
        find({.level = Finding::Level::Notice,
              .code = "published-nowhere",
              .text = stringWithFormat(
                  NSLocalizedString("The share \"%@\" is published neither over SMB nor over AFP."),
                  share.name),
              .where = where,
              .remedy = command({"shares", "set", share.name, "--smb"}),
              .share = share.name});
    }
}

void Examiner::examineSections() {
    std::set<std::string, std::less<>> recorded;
    for (const Share& share : shares_) {
        recorded.insert(share.folder);
    }
    std::error_code error;
    std::set<std::string> complete; // the server merges sections of the same name
    for (const Section& each : sections_) {
        if (!each.path.empty()) {
            complete.insert(platform::lowercased(each.name));
        }
    }
    for (const auto& [name, path, isOffered] : sections_) {
        const std::string folder(withoutQuotes(path));
        if (isOffered && !isTakenLiterally(folder) && fs::is_directory(folder, error)) {
            find({.code = "unreachable",
                  .text = stringWithFormat(NSLocalizedString(folderNotFound), folder),
                  .where = section(name),
                  .remedy = recorded.contains(path) ? movePatternOfBoth(name) : movePattern(name),
                  .share = name});
        } else if (isOffered && !canBeReached(name)) {
            find({.code = "unreachable",
                  .text = stringWithFormat(NSLocalizedString(nameNotReached), name),
                  .where = section(name),
                  .remedy = {},
                  .share = name});
        }
        if (path.empty() && complete.contains(platform::lowercased(name))) {
            continue;
        }
        if (path.empty()) {
            find({.code = "no-path",
                  .text = stringWithFormat(
                      NSLocalizedString(
                          "The section [%@] names no folder, and the SMB server offers no such share."),
                      name),
                  .where = section(name),
                  .remedy = addPathPattern(name),
                  .share = name});
        } else if (!recorded.contains(path)) {
            // A section with a record was examined with the record.
            examineFolder(name, path, section(name), movePattern(name));
        }
    }
}

void Examiner::examineOwnSections() {
    std::set<std::string> known;
    for (const auto& entry : conf_.Entries()) {
        const std::string name = entry->ShareName();
        const bool isGlobal = isServerGlobal(name);
        if (entry->Type() != SMBGroup || entry->isUnnamed() || (!isGlobal && !isServerHomes(name))) {
            continue;
        }
        const std::string meaning = isGlobal ? "global" : "homes";
        if (name != meaning) {
            find({.code = "name-case",
                  .text = stringWithFormat(
                      NSLocalizedString(
                          "The SMB server takes the section [%@] for its [%@], and Brindle shows "
                          "it as a share."),
                      name, meaning),
                  .where = section(name),
                  .remedy = renameCommand(name, meaning)});
        } else if (!known.insert(meaning).second) {
            find({.code = "name-case",
                  .text = stringWithFormat(
                      NSLocalizedString(
                          "There are two sections [%@]: the SMB server follows both, and Brindle "
                          "shows one of them."),
                      name),
                  .where = section(name),
                  .remedy = NSLocalizedString("Delete one of the two.")});
        }
    }
}

void Examiner::examineNames() {
    const auto tell = [&](const std::string& text, const std::string& first, const std::string& second,
                          const std::string& where, const std::string& remedy) {
        find({.code = "name-case",
              .text = stringWithFormat(text, first, second),
              .where = where,
              .remedy = remedy,
              .share = second});
    };
    std::map<std::string, std::string> known;
    for (const Section& each : sections_) {
        const std::string& name = each.name;
        const auto [before, isNew] = known.emplace(platform::lowercased(name), name);
        if (!isNew) {
            tell(before->second == name
                     ? NSLocalizedString(
                           "There are two sections [%@]: the SMB server takes \"%@\" for one share.")
                     : NSLocalizedString("The sections [%@] and [%@] differ only in case: the SMB server "
                                         "takes them for one share."),
                 before->second, name, section(name),
                 before->second == name ? NSLocalizedString("Delete one of the two.") : removeCommand(name));
        }
    }
    examineOwnSections();
    std::map<std::string, std::string> records;
    for (const Share& share : shares_) {
        const auto [before, isNew] = records.emplace(platform::lowercased(share.name), share.name);
        const auto published = known.find(platform::lowercased(share.name));
        if (!isNew) {
            tell(NSLocalizedString("The shares \"%@\" and \"%@\" differ only in case."), before->second,
                 share.name, "/config/Brindle/" + share.name, command({"shares", "remove", share.name}));
        } else if (published != known.end() && published->second != share.name) {
            tell(NSLocalizedString("The section [%@] and the share \"%@\" differ in case."),
                 published->second, share.name, section(published->second),
                 renameCommand(published->second, share.name));
        }
    }
}

} // namespace accesscheck
