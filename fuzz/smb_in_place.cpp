// smb.conf, changed line by line. The first line of an input determines the changes, the rest is the file.
// The changed file means the same as the changed model, sections without a change keep every byte, and
// without any change the whole file does. Where the server reads more than the model, what was not changed
// means the same to the server, and what was set is what it follows.

#include "Fuzz.h"
#include "SMBServer.h"
#include "model/SMBInPlace.h"
#include "model/SMBLines.h"
#include "model/SMBParser.h"

#include <algorithm>
#include <memory_resource>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace {

struct Model {
    explicit Model(std::string_view text) : parser(text, std::pmr::get_default_resource()) { parser.parse(); }

    SMBParser parser;
    SMBEntries& entries = parser.entries;
};

/// Returns the sections with their kinds and parameters as text.
std::vector<std::string> meaning(const SMBEntries& entries) {
    std::vector<std::string> sections;
    for (const auto& entry : entries) {
        if (entry->Type() == SMBComment) {
            continue;
        }
        std::vector<std::pair<std::string, std::string>> pairs;
        for (const SMBPair& pair : entry->Props()) {
            if (!SMBParser::isComment(pair.Name)) { // a parameter of a commented-out section
                pairs.emplace_back(pair.Name.str(), pair.Value.str());
            }
        }
        // The order only matters among parameters with the same key.
        std::ranges::stable_sort(pairs, {}, &std::pair<std::string, std::string>::first);
        std::string shown = std::to_string(entry->Type()) + "[" + entry->ShareName().str() + "]";
        for (const auto& [key, value] : pairs) {
            shown += key + "=" + value + "\n";
        }
        sections.push_back(shown);
    }
    std::ranges::sort(sections); // a new section may be in another place
    return sections;
}

constexpr std::array<std::string_view, 5> names{"Docs", "homes", "global", "a", "two words"};
constexpr std::array<std::string_view, 5> values{"Yes", "x y", "a;b = [c] d", "/srv/\xc3\xbc", "1"};
constexpr std::array<std::string_view, 3> keys{"path", "guest ok", "added"};

constexpr const char* created = ";Created by Brindle";

/// Makes one change and returns the section's name; empty when nothing changed.
std::string makeChange(SMBEntries& entries, fuzz::Draw& draw) {
    const std::size_t kind = draw.below(6);
    const std::size_t index = draw.below(entries.size());
    SMBShare& entry = *entries[index];
    if (kind == 0) {
        const std::string name(draw.oneOf(names));
        if (std::ranges::any_of(entries, [&](const auto& each) { return each->ShareName() == name; })) {
            return {};
        }
        auto made = std::make_unique<SMBShare>();
        made->setType(draw.below(2) == 0 ? SMBGroup : SMBCommentGroup);
        made->setShareName(name);
        made->setProps({{"path", draw.oneOf(values)}, {"read only", "No"}});
        made->setText(created);
        entries.insert(draw.below(2) == 0 ? entries.begin() : entries.end(), std::move(made));
        return name;
    }
    const std::string name = entry.ShareName();
    if (entry.Type() == SMBComment || entry.isUnnamed()) {
        return {};
    }
    const bool hasPairs = !entry.Props().empty();
    const SMBText drawn = hasPairs ? entry.Props()[draw.below(entry.Props().size())].Name : SMBText();
    if (kind == 1 && entries.size() > 1) {
        entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(index));
    } else if (kind == 2 && hasPairs) {
        entry.setProp(drawn, draw.oneOf(values));
    } else if (kind == 3 && hasPairs) {
        entry.removeProp(drawn);
    } else if (kind == 4 && entry.Text() != created) { // comment a section out in place
        entry.setType(entry.Type() == SMBGroup ? SMBCommentGroup : SMBGroup);
    } else {
        entry.setProp(draw.oneOf(keys), draw.oneOf(values));
    }
    return name;
}

/// Returns the bytes of the sections with that name, each without trailing blanks.
std::vector<std::string_view> sectionsCalled(std::string_view name, std::string_view text) {
    std::vector<std::string_view> found;
    const SMBLines lines(text);
    for (std::size_t occurrence = 0; const auto* section = lines.section(name, occurrence); ++occurrence) {
        const std::size_t begin = lines.lines()[section->first].begin;
        const std::string_view whole = text.substr(begin, lines.lines()[section->last - 1].end - begin);
        found.push_back(whole.substr(0, whole.find_last_not_of(" \t\n\v\f\r") + 1));
    }
    return found;
}

/// Returns the only section with that name, or null when there is none or another one.
const SMBShare* onlySection(const SMBEntries& entries, const std::string& name) {
    const SMBShare* found = nullptr;
    for (const auto& entry : entries) {
        if (entry->Type() != SMBComment && fuzz::serverName(entry->ShareName()) == name) {
            if (found != nullptr) {
                return nullptr;
            }
            found = entry.get();
        }
    }
    return found;
}

/// Returns the value of the only parameter with that key, or none when there is no such or another one.
std::optional<std::string> onlyValue(const SMBShare& section, std::string_view key) {
    std::optional<std::string> value;
    for (const SMBPair& pair : section.Props()) {
        if (mainSettingName(pair.Name) == mainSettingName(key)) {
            if (value) {
                return std::nullopt;
            }
            value = pair.Value.str();
        }
    }
    return value;
}

/// Requires that the server follows what was set in the section, where nothing else sets it, too.
void requireSettingsFollowed(const SMBShare* read, const SMBShare& now, const fuzz::ServerReading& server,
                             const std::string& text) {
    const auto found = server.find(fuzz::serverName(now.ShareName()));
    fuzz::require(found != server.end(), "the server sees each section", text);
    for (const SMBPair& pair : now.Props()) {
        const auto value = onlyValue(now, pair.Name);
        const bool isSetHere = value && (read == nullptr || onlyValue(*read, pair.Name) != value);
        const bool isNewKey =
            read != nullptr && std::ranges::none_of(read->Props(), [&](const SMBPair& each) {
                return mainSettingName(each.Name) == mainSettingName(pair.Name);
            });
        const bool hadOne = read == nullptr || isNewKey || onlyValue(*read, pair.Name).has_value();
        const bool isPlain = !SMBParser::isComment(pair.Name) && !pair.Name.view().starts_with('[');
        if (isSetHere && hadOne && isPlain) {
            fuzz::require(found->second.valueOf(pair.Name) == *value, "the server follows what was set",
                          now.ShareName().str() + ", " + pair.Name.str() + " in\n" + text);
        }
    }
}

/// Requires that the server finds nothing of what was removed, where it followed that before. Settings before
/// the first header, which the server counts to "global", are not in the model, and stay.
void requireRemovedGone(const SMBShare& read, const SMBShare& now, const fuzz::ServerSection& before,
                        const fuzz::ServerSection& after, const std::string& text) {
    for (const SMBPair& pair : read.Props()) {
        const std::pair written{foldedSettingName(pair.Name), pair.Value.str()};
        const bool wasRead = std::ranges::find(before.settings, written) != before.settings.end();
        const auto isSameKey = [&](std::string_view key) {
            return mainSettingName(key) == mainSettingName(pair.Name);
        };
        const bool isGone =
            std::ranges::none_of(now.Props(), [&](const SMBPair& each) { return isSameKey(each.Name); }) &&
            std::none_of(before.settings.begin(),
                         before.settings.begin() + static_cast<std::ptrdiff_t>(before.strays),
                         [&](const auto& setting) { return isSameKey(setting.first); });
        if (isGone && wasRead && onlyValue(read, pair.Name) && !pair.Name.view().starts_with('[')) {
            fuzz::require(after.valueOf(pair.Name) == "(none)", "what was removed is gone for the server",
                          now.ShareName().str() + ", " + pair.Name.str() + " in\n" + text);
        }
    }
}

/// Compares how the server reads the file before and after.
void requireSameForServer(const SMBEntries& read, const SMBEntries& now, const std::set<std::string>& touched,
                          const std::string& before, const std::string& after) {
    const fuzz::ServerReading serverBefore = fuzz::serverReading(before);
    const fuzz::ServerReading serverAfter = fuzz::serverReading(after);
    for (const auto& [name, section] : serverBefore) {
        if (!touched.contains(name)) {
            const auto found = serverAfter.find(name);
            fuzz::require(found != serverAfter.end() && found->second == section,
                          "what was not changed means the same to the server", name + " in\n" + after);
        }
    }
    for (const auto& entry : now) {
        const std::string name = fuzz::serverName(entry->ShareName());
        const auto found = serverAfter.find(name);
        const bool isOnly =
            onlySection(now, name) != nullptr && found != serverAfter.end() && found->second.headers == 1;
        const bool wasOnly =
            std::ranges::count_if(read, [&](const auto& each) {
                return each->Type() != SMBComment && fuzz::serverName(each->ShareName()) == name;
            }) <= 1;
        if (entry->Type() == SMBGroup && touched.contains(name) && isOnly && wasOnly && !entry->isUnnamed()) {
            const SMBShare* const section = onlySection(read, name);
            requireSettingsFollowed(section, *entry, serverAfter, after);
            if (section != nullptr && section->Type() == SMBGroup && serverBefore.contains(name)) {
                requireRemovedGone(*section, *entry, serverBefore.at(name), found->second, after);
            }
        }
    }
}

/// Whether the model begins a section in a line that the server joins to the one above.
bool joinsHeader(const SMBLines& lines) {
    for (std::size_t index = 1; index < lines.lines().size(); ++index) {
        if (lines.lines()[index].kind == SMBLine::Kind::Header && lines.lines()[index - 1].isContinued) {
            return true;
        }
    }
    return false;
}

/// Whether only the parser takes a carriage return for the end of a line.
bool hasLoneReturn(std::string_view text) {
    for (std::size_t at = 0; (at = text.find('\r', at)) != std::string_view::npos; ++at) {
        if (text.substr(at, 2) != "\r\n") {
            return true;
        }
    }
    return false;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Draw input(fuzz::textOf(data, size));
    const std::string drawn = input.upTo('\n');
    const std::string text(input.rest());
    const Model read(text);
    fuzz::require(textWithChanges(text, changesBetween(read.entries, read.entries)).text == text,
                  "no change leaves every byte");
    Model now(text);
    std::set<std::string> touched;
    for (fuzz::Draw draw(drawn); !draw.isAtEnd();) {
        touched.insert(makeChange(now.entries, draw));
    }
    std::set<std::string> touchedForServer;
    for (const std::string& name : touched) {
        touchedForServer.insert(fuzz::serverName(name));
    }
    const std::vector<SMBChange> changes = changesBetween(read.entries, now.entries);
    const SMBInPlaceText result = textWithChanges(text, changes);
    fuzz::require(result.conflicts.empty(), "nobody else has changed the file");
    for (const auto& entry : read.entries) {
        if (entry->Type() == SMBComment || touched.contains(entry->ShareName())) {
            continue;
        }
        const auto before = sectionsCalled(entry->ShareName(), text);
        const auto after = sectionsCalled(entry->ShareName(), result.text);
        const bool isKept =
            std::ranges::equal(before, after, [](auto one, auto other) { return other.starts_with(one); });
        fuzz::require(isKept, "a section that was not changed stays to the byte", result.text);
    }
    // Lines that the model does not keep, or that the server joins, mean something only to the server. And a
    // parameter in brackets becomes a section's header when it is no longer commented out.
    const SMBLines lines(text);
    // Nobody may set a value that takes in the line below.
    const auto isContinued = [](const SMBChange& change) { return SMBParser::isContinued(change.value); };
    if (!joinsHeader(lines) && !hasLoneReturn(text) && std::ranges::none_of(changes, isContinued)) {
        requireSameForServer(read.entries, now.entries, touchedForServer, text, result.text);
    }
    const auto isPlain = [](const SMBLine& line) { return !line.isContinued && !line.key.starts_with('['); };
    if (read.parser.lossNotices.empty() && std::ranges::all_of(lines.lines(), isPlain)) {
        fuzz::require(meaning(Model(result.text).entries) == meaning(now.entries),
                      "the file means what the model means", result.text);
    }
    return 0;
}
