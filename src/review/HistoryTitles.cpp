#include "review/HistoryEntry.h"

#include "model/SMBConf.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <map>

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

Kind kindOf(bool wasThere, bool isThere) {
    return wasThere && isThere ? Kind::Changed : (isThere ? Kind::Created : Kind::Deleted);
}

/// What happened to things of one kind, with their names.
struct Happening {
    std::vector<std::string> names;
    std::vector<Kind> kinds;

    void add(std::string name, Kind kind) {
        names.push_back(std::move(name));
        kinds.push_back(kind);
    }

    [[nodiscard]] std::string title(const Titles& texts) const {
        const bool isOfOneKind = std::ranges::count(kinds, kinds.front()) == std::ssize(kinds);
        const auto kind = static_cast<std::size_t>(isOfOneKind ? kinds.front() : Kind::Changed);
        std::string list;
        for (std::size_t i = 0; i < names.size() && i < namedLimit; ++i) {
            list += (i == 0 ? "" : ", ") + quoted(names[i]);
        }
        if (names.size() > namedLimit) {
            list += stringWithFormat(NSLocalizedString(" and %d more"), names.size() - namedLimit);
        }
        return stringWithFormat(NSLocalizedString((names.size() == 1 ? texts.one : texts.several).at(kind)),
                                list);
    }
};

/// The settings of each section of smb.conf, independent of how the file is laid out.
std::map<std::string, std::string> sectionsOf(const std::optional<std::string>& text) {
    std::map<std::string, std::string> sections;
    const auto model = SMBConf::ofText(text.value_or(""));
    for (const auto& entry : model->Entries()) {
        if (entry->Type() == SMBGroup) {
            for (const SMBPair& pair : entry->Props()) {
                sections[entry->ShareName()]
                    .append(pair.Name.str())
                    .append("=")
                    .append(pair.Value.str())
                    .push_back('\n');
            }
        }
    }
    return sections;
}

/// None where the file says what it said before: its lines stand elsewhere.
std::optional<std::string> smbConfTitle(const FileChange& file) {
    const auto before = sectionsOf(file.before);
    const auto after = sectionsOf(file.after);
    if (before == after) {
        return std::nullopt;
    }
    Happening shares;
    const auto isShare = [](const std::string& name) { return name != "global" && name != "homes"; };
    for (const auto& [name, lines] : after) {
        const auto old = before.find(name);
        if (isShare(name) && (old == before.end() || old->second != lines)) {
            shares.add(name, kindOf(old != before.end(), true));
        }
    }
    for (const auto& [name, lines] : before) {
        if (isShare(name) && !after.contains(name)) {
            shares.add(name, Kind::Deleted);
        }
    }
    return shares.names.empty() ? NSLocalizedString("SMB settings changed") : shares.title(titles.front());
}

std::string changeTitle(const HistoryEntry& entry) {
    for (const Titles& texts : titles) {
        Happening happening;
        for (const RecordChange& record : entry.records) {
            if (record.path.starts_with(texts.folder)) {
                happening.add(record.path.substr(texts.folder.size()),
                              kindOf(record.before.has_value(), record.after.has_value()));
            }
        }
        if (!happening.names.empty()) {
            return happening.title(texts);
        }
    }
    const bool isOfSMB = !entry.files.empty() && entry.files.front().path == platform::systempath::smbConf;
    if (const auto title = isOfSMB ? smbConfTitle(entry.files.front()) : std::nullopt) {
        return *title;
    }
    if (!entry.files.empty() && !isOfSMB) {
        return NSLocalizedString("AFP settings changed");
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
    return NSLocalizedString(isOfSMB ? "SMB settings changed" : "Nothing changed");
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

const char* outcomeOf(const HistoryEntry& entry) {
    return entry.isUndone ? "undone" : (entry.hasFailed || entry.isDamaged ? "failed" : "done");
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
    return changeTitle(entry);
}

} // namespace review
