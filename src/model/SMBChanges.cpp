#include "model/SMBChanges.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <optional>

namespace {

using Sections = std::vector<const SMBShare*>;

/// The sections of each name, in order.
std::map<std::string_view, Sections> sectionsByName(const SMBEntries& entries) {
    std::map<std::string_view, Sections> byName;
    for (const auto& entry : entries) {
        if (entry->isSection()) {
            byName[entry->ShareName()].push_back(entry.get());
        }
    }
    return byName;
}

/// For each element of `now` the index of the element of `read` that it comes from, if any. If there are
/// fewer now, those that no longer occur are taken to be gone.
template <class Element, class IsSame>
std::vector<std::optional<std::size_t>> matched(const std::vector<Element>& read,
                                                const std::vector<Element>& now, IsSame isSame) {
    std::vector<std::optional<std::size_t>> matches(now.size());
    std::size_t next = 0;
    for (std::size_t index = 0; index < now.size() && next < read.size(); ++index) {
        std::size_t found = next;
        if (now.size() - index < read.size() - next) {
            while (found < read.size() && !isSame(read[found], now[index])) {
                ++found;
            }
            found = found == read.size() ? next : found;
        }
        matches[index] = found;
        next = found + 1;
    }
    return matches;
}

/// A parameter whose key begins with a bracket is left out: for the server it is the header of a section, and
/// it still stands where it was read.
std::string sectionText(const SMBShare& section) {
    SMBShare own = section;
    std::erase_if(own.Props(), [](const SMBPair& pair) { return pair.Name.view().starts_with('['); });
    std::string text;
    own.appendTo(text);
    return text;
}

using Values = std::vector<std::string_view>;

std::map<std::string_view, Values> valuesByKey(const SMBPairs& pairs) {
    std::map<std::string_view, Values> values;
    for (const SMBPair& pair : pairs) {
        values[pair.Name.view()].push_back(pair.Value.view());
    }
    return values;
}

/// The parameters of one key, before and after.
struct KeyValues {
    Values read;
    /// For each current parameter its index in `read`, if any.
    std::vector<std::optional<std::size_t>> matches;
    std::size_t next = 0; ///< the first current parameter not looked at yet
    std::size_t added = 0;
};

/// Appends the changes within one section. `place` has the section's fields set.
void appendPairChanges(const SMBPairs& read, const SMBPairs& now, const SMBChange& place,
                       std::vector<SMBChange>& changes) {
    std::map<std::string_view, KeyValues> keys;
    for (auto& [key, values] : valuesByKey(read)) {
        keys[key].read = std::move(values);
    }
    for (const auto& [key, values] : valuesByKey(now)) {
        keys[key].matches = matched(keys[key].read, values, std::equal_to<>());
    }
    for (const SMBPair& pair : now) {
        KeyValues& key = keys[pair.Name.view()];
        const auto match = key.matches[key.next++];
        SMBChange change = place;
        change.key = pair.Name.view();
        change.value = pair.Value.view();
        if (!match) {
            change.kind = SMBChange::Kind::AddPair;
            change.occurrence = key.read.size() + key.added++;
            changes.push_back(std::move(change));
        } else if (key.read[*match] != pair.Value.view()) {
            change.occurrence = *match;
            change.before = key.read[*match];
            changes.push_back(std::move(change));
        }
    }
    for (const auto& [name, key] : keys) {
        std::size_t next = 0; // in the matches, which ascend
        for (std::size_t occurrence = 0; occurrence < key.read.size(); ++occurrence) {
            if (next < key.matches.size() && key.matches[next] == occurrence) {
                ++next;
            } else {
                SMBChange change = place;
                change.kind = SMBChange::Kind::RemovePair;
                change.key = name;
                change.occurrence = occurrence;
                change.before = key.read[occurrence];
                changes.push_back(std::move(change));
            }
        }
    }
}

SMBChange changeOf(SMBChange::Kind kind, const SMBShare& section, std::size_t occurrence) {
    SMBChange change;
    change.kind = kind;
    change.section = section.ShareName();
    change.sectionOccurrence = occurrence;
    return change;
}

/// A current section's counterpart when the file was read.
struct Origin {
    const SMBShare* read = nullptr;
    std::size_t occurrence = 0;
};

void appendSectionChanges(const Origin& origin, const SMBShare& now, std::vector<SMBChange>& changes) {
    using Kind = SMBChange::Kind;
    const std::size_t first = changes.size();
    if (origin.read->Type() != now.Type()) {
        const Kind kind = now.Type() == SMBGroup ? Kind::EnableSection : Kind::DisableSection;
        changes.push_back(changeOf(kind, now, origin.occurrence));
    }
    appendPairChanges(origin.read->Props(), now.Props(), changeOf(Kind::SetValue, now, origin.occurrence),
                      changes);
    for (std::size_t index = first; index < changes.size(); ++index) {
        changes[index].whole = index == first ? sectionText(now) : changes[first].whole;
    }
}

std::size_t activeSections(const SMBEntries& entries, std::string_view name) {
    return static_cast<std::size_t>(std::ranges::count_if(
        entries, [&](const auto& entry) { return entry->Type() == SMBGroup && entry->ShareName() == name; }));
}

} // namespace

std::vector<SMBChange> changesBetween(const SMBEntries& read, const SMBEntries& now) {
    std::map<const SMBShare*, Origin> origins;
    std::vector<SMBChange> gone;
    const auto after = sectionsByName(now);
    for (const auto& [name, sections] : sectionsByName(read)) {
        const auto found = after.find(name);
        const Sections remaining = found == after.end() ? Sections() : found->second;
        std::vector<bool> isKept(sections.size());
        const auto matches = matched(sections, remaining, [](const SMBShare* one, const SMBShare* other) {
            return one->Props() == other->Props();
        });
        for (std::size_t index = 0; index < remaining.size(); ++index) {
            if (const auto match = matches[index]) {
                isKept[*match] = true;
                origins[remaining[index]] = {sections[*match], *match};
            }
        }
        for (std::size_t index = 0; index < sections.size(); ++index) {
            if (!isKept[index]) {
                gone.push_back(changeOf(SMBChange::Kind::RemoveSection, *sections[index], index));
            }
        }
    }
    std::vector<SMBChange> changes;
    bool isAtFront = true; // before the first entry that was in the file
    for (const auto& entry : now) {
        const auto origin = origins.find(entry.get());
        if (origin != origins.end()) {
            appendSectionChanges(origin->second, *entry, changes);
        } else if (entry->isSection()) {
            SMBChange change =
                changeOf(SMBChange::Kind::AddSection, *entry, activeSections(read, entry->ShareName()));
            change.value = sectionText(*entry);
            change.atFront = isAtFront && !read.empty();
            changes.push_back(std::move(change));
        }
        isAtFront = isAtFront && entry->isSection() && origin == origins.end();
    }
    std::ranges::move(gone, std::back_inserter(changes));
    return changes;
}
