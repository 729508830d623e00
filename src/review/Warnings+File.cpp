#include "review/TextDifference.h"
#include "review/Warnings.h"

#include "model/SMBInPlace.h"
#include "model/ServerSettings.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "review/ServerReading.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <system_error>
#include <unordered_set>

#include <sys/statvfs.h>
#include <unistd.h>

namespace review {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view white = " \t\r\f\v";
    text.remove_prefix(std::min(text.find_first_not_of(white), text.size()));
    text.remove_suffix(text.size() - std::min(text.find_last_not_of(white) + 1, text.size()));
    return text;
}

/// A line reduced to what matters: without blanks around its parts.
std::string essence(std::string_view line) {
    line = trimmed(line);
    std::string mark;
    if (line.starts_with(';') || line.starts_with('#')) {
        mark = ";";
        line = trimmed(line.substr(1));
    }
    if (line.starts_with('[') && line.ends_with(']')) {
        return mark + "[" + std::string(trimmed(line.substr(1, line.size() - 2))) + "]";
    }
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        return mark + std::string(line);
    }
    return mark + std::string(trimmed(line.substr(0, equals))) + " = " +
           std::string(trimmed(line.substr(equals + 1)));
}

/// The lines of a text that are not blank, in that form.
struct Essence {
    explicit Essence(std::string_view text) {
        const std::vector<std::string_view> lines = linesOf(text);
        for (std::size_t index = 0; index < lines.size(); ++index) {
            if (!trimmed(lines[index]).empty()) {
                essences.push_back(essence(lines[index]));
                numbers.push_back(index + 1);
                written.push_back(trimmed(lines[index]));
            }
        }
        views.assign(essences.begin(), essences.end());
    }

    std::vector<std::string> essences;
    std::vector<std::string_view> views;
    std::vector<std::size_t> numbers;
    std::vector<std::string_view> written;
};

struct NamedLine {
    std::size_t number = 0;
    std::string text;
};

std::string namesOf(const std::vector<NamedLine>& lines) {
    std::vector<std::string> names;
    names.reserve(lines.size());
    for (const NamedLine& line : lines) {
        names.push_back(stringWithFormat(NSLocalizedString("line %d \"%@\""), line.number, line.text));
    }
    return listOf(names);
}

/// The lines of the file that rewriting it loses or moves.
struct Rewriting {
    std::vector<NamedLine> lost;
    std::vector<NamedLine> moved;

    /// `planned` is the file after the action: a line that it does not have goes with its section.
    Rewriting(const std::string& read, const std::string& written, const std::string& planned) {
        const Essence before(read);
        const Essence after(written);
        const Essence kept(planned);
        const std::unordered_set<std::string_view> stays(kept.views.begin(), kept.views.end());
        std::map<std::string, int> comes;
        const std::vector<LineChange> changes = lineChanges(before.views, after.views);
        for (const LineChange& change : changes) {
            comes[change.line] += change.kind == LineChange::Kind::Comes ? 1 : 0;
        }
        for (const LineChange& change : changes) {
            if (change.kind == LineChange::Kind::Comes) {
                continue;
            }
            const bool isMoved = comes[change.line] > 0;
            comes[change.line] -= isMoved ? 1 : 0;
            const std::size_t index = change.number - 1;
            if (!isMoved || stays.contains(before.views[index])) {
                (isMoved ? moved : lost)
                    .push_back({before.numbers[index], std::string(before.written[index])});
            }
        }
    }
};

void addLosses(const SMBConf& model, const std::string& planned, std::vector<Remark>* warnings) {
    const std::string& read = model.textOnDisk();
    const Rewriting rewriting(read, SMBConf::ofText(read)->writtenText(), planned);
    if (!rewriting.lost.empty()) {
        warnings->push_back(remark("lines-lost", "Saving does not keep these lines of smb.conf: %@.",
                                   namesOf(rewriting.lost)));
    }
    if (!rewriting.moved.empty()) {
        warnings->push_back(remark("lines-lost", "Saving moves these lines of smb.conf to another place: %@.",
                                   namesOf(rewriting.moved)));
    }
    std::vector<NamedLine> continued;
    const std::vector<std::string_view> lines = linesOf(read);
    for (const SMBLossNotice& notice : model.lossNotices()) {
        if (notice.loss == SMBLoss::Continuation && notice.line <= lines.size()) {
            continued.push_back({notice.line, std::string(trimmed(lines[notice.line - 1]))});
        }
    }
    if (!continued.empty()) {
        warnings->push_back(remark(
            "lines-lost",
            "These lines of smb.conf end in a backslash and take in the line that is saved after them: %@.",
            namesOf(continued)));
    }
}

/// Whether the action concerns the section: on the SMB page "global" and "homes", in the editor the share's
/// section.
bool concerns(const Situation& situation, const SMBShare& section) {
    const std::string name = section.ShareName();
    if (situation.is("updateSMBProperties:")) {
        return isServerGlobal(name) || isServerHomes(name);
    }
    const BRController& now = situation.before;
    const ServerSetting path = serverSetting(section, "path");
    return name == now.shareName->stringValue() ||
           (path.pair != nullptr && path.pair->Value == now.directory->stringValue());
}

std::string sentenceOf(const SMBConflict& conflict) {
    if (conflict.key.empty() && !conflict.inFile.empty()) {
        return stringWithFormat(
            NSLocalizedString(
                "Somebody else has added [%@] since; it stays, and its settings apply together with yours."),
            conflict.section);
    }
    if (conflict.key.empty()) {
        return stringWithFormat(
            NSLocalizedString("Somebody else has removed [%@] since; this change restores it."),
            conflict.section);
    }
    if (conflict.inFile.empty()) {
        return stringWithFormat(
            NSLocalizedString(
                "Somebody else has removed \"%@\" from [%@] since; this change restores it as \"%@\"."),
            conflict.key, conflict.section, conflict.written);
    }
    if (conflict.written.empty()) {
        return stringWithFormat(
            NSLocalizedString(
                "Somebody else has set \"%@\" in [%@] to \"%@\" since; this change removes it."),
            conflict.key, conflict.section, conflict.inFile);
    }
    return stringWithFormat(
        NSLocalizedString(
            "Somebody else has set \"%@\" in [%@] to \"%@\" since; this change makes it \"%@\"."),
        conflict.key, conflict.section, conflict.inFile, conflict.written);
}

/// Names each setting that the action and somebody else have both changed.
void addConflicts(const Situation& situation, const SMBConf& model, std::vector<Remark>* warnings) {
    const SMBConf* changed = situation.after.smbConfModel();
    if (changed == nullptr) {
        return;
    }
    const auto read = SMBConf::ofText(model.textOnDisk());
    const auto conflicts =
        textWithChanges(situation.plan.smbConfBefore, changesBetween(read->Entries(), changed->Entries()))
            .conflicts;
    for (const SMBConflict& conflict : conflicts) {
        warnings->push_back({"changed-outside", sentenceOf(conflict)});
    }
}

/// The sections and keys that somebody else has changed in the file since it was read, some of them by name;
/// empty when only comments differ.
std::string changedOutside(const SMBConf& model, const std::string& file) {
    const auto read = SMBConf::ofText(model.textOnDisk());
    const auto now = SMBConf::ofText(file);
    std::vector<std::string> things;
    std::unordered_set<std::string> known;
    for (const SMBChange& change : changesBetween(read->Entries(), now->Entries())) {
        std::string thing =
            "[" + change.section + "]" + (change.key.empty() ? "" : " \"" + change.key + "\"");
        if (known.insert(thing).second) {
            things.push_back(std::move(thing));
        }
    }
    return listOf(things);
}

/// What somebody else has done to the file since it was read, and what happens to that. A file that is
/// written whole loses it.
std::string changeOutside(const SMBConf& model, const std::string& file) {
    const platform::Host& host = platform::Host::current();
    const std::string original =
        host.paths().shown(host.paths().map(model.Path())); // the plan's copy was written
    std::error_code ignored; // a file that cannot be looked at has not been deleted
    if (file.empty() && !std::filesystem::exists(original, ignored) && !ignored) {
        return NSLocalizedString(
            "Somebody else deleted smb.conf after Brindle read it: this change creates it again.");
    }
    if (host.services().keepsLayout) {
        return NSLocalizedString("Somebody else changed smb.conf after Brindle read it: your change is made "
                                 "to the file as it is now.");
    }
    const std::string names = changedOutside(model, file);
    return names.empty()
               ? NSLocalizedString(
                     "Somebody else changed smb.conf after Brindle read it: saving undoes that change.")
               : stringWithFormat(NSLocalizedString("Somebody else changed %@ in smb.conf after Brindle read "
                                                    "it: saving undoes that change."),
                                  names);
}

/// Why no file of that size can be written to the folder; 0 if it can.
int errorOfWriting(const std::string& folder, std::size_t size) {
    if (::access(folder.c_str(), W_OK | X_OK) != 0) {
        return errno;
    }

    struct statvfs system {};

    const bool isKnown = ::statvfs(folder.c_str(), &system) == 0 && system.f_blocks != 0;
    return isKnown && system.f_bavail * system.f_frsize < size ? ENOSPC : 0;
}

/// A settings file is first written to the user's home folder, after what the action does before.
void addUnwritableHome(const Situation& situation, std::vector<Remark>* warnings) {
    const bool copies = std::ranges::any_of(
        situation.plan.runs, [](const PlannedRun& run) { return run.tool == platform::systempath::cp; });
    const bool fails = std::ranges::any_of(situation.plan.asks, [](const PlannedAsk& ask) {
        return ask.title == NSLocalizedString("smb.conf Write Unsuccessful") ||
               ask.title == NSLocalizedString("AppleFileServer.plist Write Unsuccessful");
    });
    const std::string home = platform::Host::current().paths().home();
    const int error = copies || fails ? errorOfWriting(home, situation.plan.smbConfAfter.size() + 1) : 0;
    if (error != 0) {
        warnings->push_back(remark("home-unwritable",
                                   "Settings files are prepared in your home folder %@, and nothing can be "
                                   "written there (%@): the change would fail or be left half made.",
                                   home, std::generic_category().message(error)));
    }
}

} // namespace

void addFileWarnings(const Situation& situation, std::vector<Remark>* warnings) {
    addUnwritableHome(situation, warnings);
    const SMBConf* model = situation.before.smbConfModel();
    if (model == nullptr || !situation.writesSMBConf()) {
        return;
    }
    const bool keepsLayout = platform::Host::current().services().keepsLayout;
    if (situation.plan.smbConfBefore != model->textOnDisk()) {
        warnings->push_back({"changed-outside", changeOutside(*model, situation.plan.smbConfBefore)});
    }
    if (!keepsLayout) {
        addLosses(*model, situation.plan.smbConfAfter, warnings);
    } else if (situation.plan.smbConfBefore != model->textOnDisk()) {
        addConflicts(situation, *model, warnings);
    }
    for (const OtherReading& reading : otherReadings(*model)) {
        if (concerns(situation, *reading.section)) {
            warnings->push_back({"server-reads-otherwise", reading.sentence});
        }
    }
}

} // namespace review
