#include "review/Warnings.h"

#include "model/ServerSettings.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <set>

namespace review {

namespace {

constexpr const char* sharesPlace = "/config/Brindle";
constexpr std::array<std::string_view, 6> ownProperties = {
    "name", "directory_path", "afp_shared", "afp_name", "afp_use_parent_privs", "afp_use_parent_owner"};

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text;
}

std::string sharePath(const std::string& name) {
    return std::string(sharesPlace) + "/" + name;
}

/// The parts of a section that Brindle did not write: keys, and the first line of comments.
std::vector<std::string> foreignParts(const SMBShare& section) {
    constexpr std::array<std::string_view, 4> own = {"path", "read only", "inherit permissions", "guest ok"};
    std::vector<std::string> parts;
    for (const SMBPair& pair : section.Props()) {
        if (std::ranges::find(own, pair.Name.view()) == own.end()) {
            parts.push_back("\"" + pair.Name.str() + "\"");
        }
    }
    const std::string_view text = section.Text();
    if (!text.empty() && text != ";Created by Brindle" && text != ";Created by Brindle\n") {
        parts.push_back("\"" + std::string(text.substr(0, text.find('\n'))) + "\"");
    }
    return parts;
}

/// The active sections that are in `before` but not in `after`. Of several with the same name, the first are
/// taken to be removed.
std::vector<const SMBShare*> removedSections(const SMBConf& before, const SMBConf& after) {
    std::map<std::string, int> left;
    for (const auto& entry : before.Entries()) {
        left[entry->ShareName()] += entry->Type() == SMBGroup ? 1 : 0;
    }
    for (const auto& entry : after.Entries()) {
        left[entry->ShareName()] -= entry->Type() == SMBGroup ? 1 : 0;
    }
    std::vector<const SMBShare*> removed;
    for (const auto& entry : before.Entries()) {
        if (entry->Type() == SMBGroup && left[entry->ShareName()]-- > 0) {
            removed.push_back(entry.get());
        }
    }
    return removed;
}

/// The section's folder as it is written; empty when it names none.
std::string folderOf(const SMBShare& section) {
    const ServerSetting path = serverSetting(section, "path");
    return path.pair == nullptr ? std::string() : path.pair->Value.str();
}

class ShareWarnings {
  public:
    ShareWarnings(const Situation& situation, std::vector<Remark>* warnings)
        : situation_(situation), now_(situation.before), name_(now_.shareName->stringValue()),
          folder_(now_.directory->stringValue()), warnings_(*warnings) {
        if (situation.is("deleteShare:")) {
            const int row = now_.normalTableView->selectedRow();
            if (row >= 0 && static_cast<std::size_t>(row) < now_.currentShares().size()) {
                const NormalShare& share = now_.currentShares()[static_cast<std::size_t>(row)];
                name_ = share.ShareName();
                folder_ = share.DirectoryPath();
            }
        }
    }

    void add() {
        const SMBConf* before = now_.smbConfModel();
        const SMBConf* after = situation_.after.smbConfModel();
        if (before != nullptr && after != nullptr) {
            addRemovedSections(*before, *after);
        }
        addRemovedRecords();
        if (!situation_.is("createShare:")) {
            return;
        }
        addNameCase();
        addUntouchedRecord();
        if (before != nullptr && after != nullptr) {
            addSection(before->section(name_), after->section(name_));
        }
    }

  private:
    template <class... Arguments>
    void warn(std::string_view code, const std::string& key, const Arguments&... arguments) {
        warnings_.push_back(remark(code, key, arguments...));
    }

    void addRemovedSections(const SMBConf& before, const SMBConf& after) {
        for (const SMBShare* section : removedSections(before, after)) {
            const std::string name = section->ShareName();
            const std::string sectionFolder = folderOf(*section);
            if (const auto parts = foreignParts(*section); !parts.empty()) {
                warn("section-removed",
                     "The section [%@] of smb.conf is removed, with settings that Brindle did not write: %@.",
                     name, joined(parts));
            }
            if (sectionFolder != folder_) {
                warn("section-removed",
                     "The section [%@] of smb.conf is removed, although it shares another folder than the "
                     "editor shows: \"%@\".",
                     name, sectionFolder);
            } else if (situation_.is("createShare:") && !now_.sharingSMB->isEdited()) {
                warn("section-removed",
                     "The section [%@] of smb.conf is removed and Windows users lose the share, although "
                     "nobody touched that menu.",
                     name);
            }
        }
    }

    void addRemovedRecords() {
        std::set<std::string> seen;
        for (const PlannedRun& run : situation_.plan.runs) {
            const bool deletes = run.tool == platform::systempath::nicl && run.arguments.size() == 3 &&
                                 run.arguments[1] == "-delete" && run.arguments[2].starts_with(sharesPlace);
            if (deletes && seen.insert(run.arguments[2]).second) {
                addRemovedRecord(run.arguments[2]);
            }
        }
    }

    void addRemovedRecord(const std::string& path) {
        const auto before = situation_.directoryBefore.record(path);
        if (!before) {
            return;
        }
        const std::string name = path.substr(sharePath("").size());
        const bool isAsked = situation_.is("deleteShare:") || situation_.is("deleteAllShares:");
        const auto after = situation_.directoryAfter.record(path);
        if (!after && !isAsked) {
            warn("record-removed",
                 "The record of the share \"%@\" is removed, because it cannot be written as it is here.",
                 name);
            return;
        }
        std::vector<std::string> lost;
        for (const DirectoryView::Property& property : *before) {
            const bool isOwn = std::ranges::find(ownProperties, property.name) != ownProperties.end();
            const bool isKept = after && std::ranges::find(*after, property.name,
                                                           &DirectoryView::Property::name) != after->end();
            if (!isOwn && !isKept) {
                lost.push_back("\"" + property.name + "\"");
            }
        }
        if (!lost.empty()) {
            warn("record-removed",
                 "The record of the share \"%@\" is removed, with properties that Brindle did not write: %@.",
                 name, joined(lost));
        }
    }

    void addNameCase() {
        std::vector<std::string> names;
        for (const NormalShare& share : now_.currentShares()) {
            names.push_back(share.ShareName());
        }
        if (const SMBConf* conf = now_.smbConfModel()) {
            for (const auto& entry : conf->Entries()) {
                if (entry->Type() == SMBGroup) {
                    names.push_back(entry->ShareName());
                }
            }
        }
        const auto other = std::ranges::find_if(names, [this](const std::string& each) {
            return each != name_ && isEqualIgnoringCase(each, name_);
        });
        if (other != names.end()) {
            warn("name-case",
                 "The name \"%@\" differs from the share \"%@\" only in the case of letters, which Windows "
                 "does not tell apart.",
                 name_, *other);
        }
    }

    /// Warns if a menu or check box that the user did not touch changes an existing share's record.
    void addUntouchedRecord() {
        const std::array<std::pair<const char*, const NSControl*>, 3> properties{
            {{"afp_shared", now_.sharingAFS},
             {"afp_use_parent_privs", now_.inheritPermissionsButton},
             {"afp_use_parent_owner", now_.inheritOwnerButton}}};
        if (!situation_.directoryBefore.record(sharePath(name_))) {
            return;
        }
        for (const auto& [property, control] : properties) {
            const std::string before = situation_.directoryBefore.value(sharePath(name_), property);
            const std::string after = situation_.directoryAfter.value(sharePath(name_), property);
            if (before != after && !after.empty() && !control->isEdited()) {
                warn("untouched-setting",
                     "\"%@\" of the share \"%@\" changes from \"%@\" to \"%@\", although nobody touched its "
                     "control.",
                     property, name_, before, after);
            }
        }
    }

    void addSection(const SMBShare* before, const SMBShare* after) {
        if (after == nullptr) {
            return;
        }
        if (before != nullptr) {
            addUntouchedFlag(*before, *after, "inherit permissions", *now_.inheritPermissionsButton);
            addUntouchedFlag(*before, *after, "guest ok", *now_.guestAccessButton);
            addKeptFolder(*after);
        }
        addUselessRights(*after);
        if (!canBeReached(name_)) {
            warn("unreachable", nameNotReached, name_);
        }
        // Whoever writes a variable on purpose has no folder of that name.
        std::error_code error;
        if (!isTakenLiterally(folder_) && std::filesystem::is_directory(folder_, error)) {
            warn("unreachable", folderNotFound, folder_);
        }
        if (guestsWrite(after) && !guestsWrite(before)) {
            warn("guests-write",
                 "Anybody on the network may change the files of the share \"%@\" without a password.",
                 name_);
        }
    }

    /// Warns if people get the right to write to the folder, and the server does not let them use it.
    void addUselessRights(const SMBShare& section) {
        constexpr mode_t writing = 0222;
        const bool adds = std::ranges::any_of(situation_.plan.folders, [](const FolderChange& folder) {
            return (folder.modeAfter & ~folder.modeBefore & writing) != 0;
        });
        const bool letsSomeWrite =
            serverSetting(section, "write list").pair != nullptr || !serverFlag(section, "read only", true);
        if (adds && !letsSomeWrite) {
            warn("read-only-section",
                 "Nobody may write to the share \"%@\" over SMB all the same: its section of smb.conf does "
                 "not say \"read only = no\".",
                 name_);
        }
    }

    /// Warns if the section stays another folder's, because an update never writes its path.
    void addKeptFolder(const SMBShare& section) {
        const std::string kept = folderOf(section);
        if (kept == folder_) {
            return;
        }
        const std::string statement =
            kept.empty()
                ? stringWithFormat(NSLocalizedString("The section [%@] of smb.conf names no folder, and an "
                                                     "update adds none: SMB does not offer the share."),
                                   name_)
                : stringWithFormat(NSLocalizedString("SMB keeps offering the folder \"%@\" as \"%@\", "
                                                     "because an update leaves the path in smb.conf."),
                                   kept, name_);
        // Where record and section differ already, SMB is off in the editor.
        const std::string recorded = situation_.directoryBefore.value(sharePath(name_), "directory_path");
        const bool differs = !recorded.empty() && kept != recorded;
        const std::string advice = NSLocalizedString(
            differs ? "To change that, delete the share and make it again; guest access and settings written "
                      "by hand are lost."
                    : "To change that, choose \"Not Shared\" for SMB in this update, and \"Shared\" in "
                      "another one after it; guest access and settings written by hand are lost.");
        warnings_.push_back({"section-keeps-folder", statement + " " + advice});
    }

    void addUntouchedFlag(const SMBShare& before, const SMBShare& after, const char* key,
                          const NSControl& box) {
        const bool is = serverFlag(before, key, false);
        const bool willBe = serverFlag(after, key, false);
        if (is != willBe && !box.isEdited()) {
            warnings_.push_back(
                untouchedSetting(name_, key, serverSetting(before, key), serverSetting(after, key)));
        }
    }

    static bool guestsWrite(const SMBShare* section) {
        // "valid users" lets only those in whom it names.
        return section != nullptr && serverFlag(*section, "guest ok", false) &&
               !serverFlag(*section, "read only", true) &&
               serverSetting(*section, "valid users").pair == nullptr;
    }

    const Situation& situation_;
    const BRController& now_;
    std::string name_;
    std::string folder_;
    std::vector<Remark>& warnings_;
};

} // namespace

void addShareWarnings(const Situation& situation, std::vector<Remark>* warnings) {
    for (const char* operation :
         {"createShare:", "deleteShare:", "deleteAllShares:", "updateSharesFor10pt2:"}) {
        if (situation.is(operation)) {
            ShareWarnings(situation, warnings).add();
        }
    }
}

} // namespace review
