#include "review/HistoryEntry.h"

#include "model/SMBConf.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "review/RunOutcome.h"
#include "review/SettingChanges.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <map>
#include <utility>

namespace review {

namespace {

/// How many records a title names; of the others it gives the number.
constexpr std::size_t namedLimit = 3;

enum class Kind { Created, Changed, Deleted };

/// The titles for changes of records below one folder of the directory.
struct Titles {
    std::string_view folder;
    std::array<const char*, 3> one;     ///< by Kind
    std::array<const char*, 3> several; ///< with the names, or with some names and a number
};

constexpr std::array<Titles, 3> titles = {{
    {"/config/Brindle/",
     {"Share %@ created", "Share %@ changed", "Share %@ deleted"},
     {"Shares %@ created", "Shares %@ changed", "Shares %@ deleted"}},
    {"/users/",
     {"User %@ created", "User %@ changed", "User %@ deleted"},
     {"Users %@ created", "Users %@ changed", "Users %@ deleted"}},
    {"/groups/",
     {"Group %@ created", "Group %@ changed", "Group %@ deleted"},
     {"Groups %@ created", "Groups %@ changed", "Groups %@ deleted"}},
}};

std::string quoted(const std::string& name) {
    return "\"" + name + "\"";
}

/// Names some of the things, and gives the number of the others.
std::string listOf(const std::vector<std::string>& things) {
    std::string list;
    for (std::size_t i = 0; i < things.size() && i < namedLimit; ++i) {
        list += (i == 0 ? "" : ", ") + things[i];
    }
    if (things.size() > namedLimit) {
        list += stringWithFormat(NSLocalizedString(" and %d more"), things.size() - namedLimit);
    }
    return list;
}

Kind kindOf(bool wasThere, bool isThere) {
    return wasThere && isThere ? Kind::Changed : (isThere ? Kind::Created : Kind::Deleted);
}

/// What happened to things of one kind, with their names.
struct Happening {
    std::vector<std::string> names; ///< in quotes
    std::vector<Kind> kinds;

    void add(const std::string& name, Kind kind) {
        names.push_back(quoted(name));
        kinds.push_back(kind);
    }

    [[nodiscard]] std::string title(const Titles& texts) const {
        const bool isOfOneKind = std::ranges::count(kinds, kinds.front()) == std::ssize(kinds);
        const auto kind = static_cast<std::size_t>(isOfOneKind ? kinds.front() : Kind::Changed);
        return stringWithFormat(NSLocalizedString((names.size() == 1 ? texts.one : texts.several).at(kind)),
                                listOf(names));
    }
};

using Settings = std::vector<std::pair<std::string, std::string>>;

/// The settings of each section of smb.conf, independent of how the file is laid out.
std::map<std::string, Settings> sectionsOf(const std::optional<std::string>& text) {
    std::map<std::string, Settings> sections;
    const auto model = SMBConf::ofText(text.value_or(""));
    for (const auto& entry : model->Entries()) {
        if (entry->Type() == SMBGroup) {
            for (const SMBPair& pair : entry->Props()) {
                sections[entry->ShareName()].emplace_back(pair.Name.str(), pair.Value.str());
            }
        }
    }
    return sections;
}

bool isShare(const std::string& section) {
    return section != "global" && section != "homes";
}

/// The keys of a section that have another value, come or go; with the section, unless it is [global].
std::vector<std::string> changedKeys(const std::string& section, const Settings& before,
                                     const Settings& after) {
    std::vector<std::string> keys;
    const auto addOthers = [&](const Settings& settings, const Settings& others) {
        for (const auto& setting : settings) {
            std::string key = (section == "global" ? "" : "[" + section + "] ") + quoted(setting.first);
            if (std::ranges::find(others, setting) == others.end() &&
                std::ranges::find(keys, key) == keys.end()) {
                keys.push_back(std::move(key));
            }
        }
    };
    addOthers(after, before);
    addOthers(before, after);
    return keys;
}

std::optional<std::string> settingsTitle(const std::map<std::string, Settings>& before,
                                         const std::map<std::string, Settings>& after) {
    std::vector<std::string> changed;
    for (const char* section : {"global", "homes"}) {
        const auto old = before.find(section);
        const auto now = after.find(section);
        if (old != before.end() && now != after.end()) {
            const auto keys = changedKeys(section, old->second, now->second);
            changed.insert(changed.end(), keys.begin(), keys.end());
        } else if (old != before.end() || now != after.end()) {
            changed.push_back("[" + std::string(section) + "]");
        }
    }
    return changed.empty() ? std::nullopt
                           : std::optional(stringWithFormat(NSLocalizedString("SMB settings changed: %@"),
                                                            listOf(changed)));
}

/// None where the file says what it said before: its lines stand elsewhere.
std::optional<std::string> smbConfTitle(const FileChange& file) {
    const auto before = sectionsOf(file.before);
    const auto after = sectionsOf(file.after);
    Happening shares;
    for (const auto& [name, settings] : after) {
        const auto old = before.find(name);
        if (isShare(name) && (old == before.end() || old->second != settings)) {
            shares.add(name, kindOf(old != before.end(), true));
        }
    }
    for (const auto& [name, settings] : before) {
        if (isShare(name) && !after.contains(name)) {
            shares.add(name, Kind::Deleted);
        }
    }
    return shares.names.empty() ? settingsTitle(before, after) : shares.title(titles.front());
}

/// None where the file says what it said before.
std::optional<std::string> afpTitle(const FileChange& file) {
    std::vector<std::string> keys;
    for (const SettingChange& change : settingChanges(file.before.value_or(""), file.after.value_or(""))) {
        keys.push_back(quoted(change.key));
    }
    return keys.empty()
               ? std::nullopt
               : std::optional(stringWithFormat(NSLocalizedString("AFP settings changed: %@"), listOf(keys)));
}

/// The sections of smb.conf before an action that has made a share's record: a share that was written by hand
/// is there before it has one.
std::map<std::string, Settings> sectionsBefore(const HistoryEntry& entry) {
    const bool makesShare = std::ranges::any_of(entry.records, [](const RecordChange& record) {
        return !record.before && record.path.starts_with(titles.front().folder);
    });
    const auto file = std::ranges::find(entry.files, platform::systempath::smbConf, &FileChange::path);
    return makesShare && file != entry.files.end() ? sectionsOf(file->before)
                                                   : std::map<std::string, Settings>();
}

} // namespace

bool isSameRecord(const RecordChange::State& one, const RecordChange::State& other) {
    if (!one || !other) {
        return !one && !other;
    }
    return std::ranges::equal(*one, *other, [](const auto& left, const auto& right) {
        return left.name == right.name && left.values == right.values;
    });
}

bool hasGoneWrong(const HistoryEntry& entry) {
    const auto isFailure = [](const PastRun& run) {
        return run.hasFailed && (run.output.empty() || meansFailure(run.tool, run.arguments, run.output));
    };
    return entry.hasFailed && (entry.undoes != 0 || std::ranges::any_of(entry.runs, isFailure));
}

const char* outcomeOf(const HistoryEntry& entry, bool hasFailed) {
    return entry.isUndone ? "undone" : (hasFailed || entry.isDamaged ? "failed" : "done");
}

std::string timeOf(const HistoryEntry& entry) {
    const std::time_t time = entry.time;
    std::tm parts{};
    ::gmtime_r(&time, &parts);
    std::array<char, 32> text{};
    const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
    return {text.data(), size};
}

std::string titleOf(const HistoryEntry& entry) {
    const auto sections = sectionsBefore(entry);
    for (const Titles& texts : titles) {
        const bool areShares = &texts == &titles.front();
        Happening happening;
        for (const RecordChange& record : entry.records) {
            if (record.path.starts_with(texts.folder)) {
                const std::string name = record.path.substr(texts.folder.size());
                const bool wasThere = record.before || (areShares && sections.contains(name));
                happening.add(name, kindOf(wasThere, record.after.has_value()));
            }
        }
        if (!happening.names.empty()) {
            return happening.title(texts);
        }
    }
    if (!entry.files.empty()) {
        const FileChange& file = entry.files.front();
        const auto title = file.path == platform::systempath::smbConf ? smbConfTitle(file) : afpTitle(file);
        if (title) {
            return *title;
        }
    }
    if (!entry.folders.empty()) {
        return stringWithFormat(NSLocalizedString("Owner or privileges of %@ changed"),
                                quoted(entry.folders.front().path));
    }
    for (const PastRun& run : entry.runs) {
        if (run.tool == platform::systempath::dscl && run.arguments.size() > 2) {
            const std::string& path = run.arguments[2];
            return stringWithFormat(NSLocalizedString("Password of %@ set"),
                                    quoted(path.substr(path.rfind('/') + 1)));
        }
    }
    if (entry.files.empty()) {
        return NSLocalizedString("Nothing changed");
    }
    const platform::Paths& paths = platform::Host::current().paths();
    return stringWithFormat(NSLocalizedString("%@ rewritten"),
                            quoted(paths.shown(paths.map(entry.files.front().path))));
}

} // namespace review
