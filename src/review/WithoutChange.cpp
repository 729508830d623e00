#include "review/WithoutChange.h"

#include "model/SMBConf.h"
#include "review/TextDifference.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace review {

namespace {

/// The parts of a text: its sections, the comments that a blank line sets apart from them, each with all that
/// follows it, and the lines before the first section. Of lines alone, those of a new section may seem to
/// stand in the middle of the next: sections are much alike.
using Parts = std::vector<std::string_view>;

Parts partsOf(std::string_view text) {
    Parts parts;
    bool isInSection = false;
    bool isAfterBlank = false;
    for (const std::string_view line : linesOf(text)) {
        const std::size_t begin = line.find_first_not_of(" \t\r");
        const char first = begin == std::string_view::npos ? '\0' : line[begin];
        const bool isApart = isAfterBlank && (first == '#' || first == ';');
        isInSection = isInSection || first == '[';
        isAfterBlank = first == '\0';
        if (isInSection && first != '[' && !isApart) {
            const char* start = parts.back().data();
            parts.back() = {start, static_cast<std::size_t>(line.data() + line.size() - start)};
        } else {
            parts.push_back(line);
        }
    }
    return parts;
}

/// The same without the blank lines at each part's end: the last section has fewer than the others.
Parts withoutBlankEnds(Parts parts) {
    for (std::string_view& part : parts) {
        part = part.substr(0, part.find_last_not_of(" \t\r\n") + 1);
    }
    return parts;
}

/// The parts from `begin` to before `end`, counted from 0, and what takes their place.
struct Replacement {
    std::size_t begin = 0;
    std::size_t end = 0;
    Parts parts;
    bool isSince = false; ///< made after the change that is taken back
};

/// What makes `to` of `from`, in order. Between two replacements at least one part stays.
std::vector<Replacement> replacements(const Parts& from, const Parts& to, bool isSince) {
    std::vector<Replacement> all;
    std::size_t inFrom = 0;
    std::size_t inTo = 0;
    for (const LineChange& change : lineChanges(withoutBlankEnds(from), withoutBlankEnds(to))) {
        const bool goes = change.kind == LineChange::Kind::Goes;
        const std::size_t staying = change.number - 1 - (goes ? inFrom : inTo);
        inFrom += staying;
        inTo += staying;
        if (all.empty() || all.back().end != inFrom) {
            all.push_back({inFrom, inFrom, {}, isSince});
        }
        if (goes) {
            all.back().end = ++inFrom;
        } else {
            all.back().parts.push_back(to[inTo++]);
        }
    }
    return all;
}

/// Makes the replacements, which are in order and count the parts as the change left them. What they leave
/// alone is copied from `now`. None when two of them concern the same parts.
std::optional<std::string> replaced(const Parts& now, const std::vector<Replacement>& all) {
    std::string text;
    std::size_t next = 0;  // as the change left it
    std::size_t inNow = 0; // the same part
    for (const Replacement& each : all) {
        if (each.begin < next) {
            return std::nullopt;
        }
        for (; next < each.begin; ++next) {
            text.append(now[inNow++]).append("\n");
        }
        for (const std::string_view part : each.parts) {
            text.append(part).append("\n");
        }
        next = each.end;
        inNow += each.isSince ? each.parts.size() : each.end - each.begin;
    }
    for (; inNow < now.size(); ++inNow) {
        text.append(now[inNow]).append("\n");
    }
    return text;
}

/// What the sections set, by their names, and whether each is commented out. Comments that somebody has added
/// are no reason to keep a section; whatever is copied keeps its own.
using Sections = std::map<std::string, std::string>;

Sections sectionsOf(const std::string& text) {
    Sections sections;
    const auto conf = SMBConf::ofText(text);
    for (const auto& entry : conf->Entries()) {
        if (!entry->isSection()) {
            continue;
        }
        std::string& section = sections[entry->ShareName().str()];
        section += entry->Type() == SMBGroup ? "[]\n" : ";[]\n";
        for (const SMBPair& pair : entry->Props()) {
            section.append(pair.Name.view()).append("=").append(pair.Value.view()).append("\n");
        }
    }
    return sections;
}

std::string_view sectionIn(const Sections& sections, const std::string& name) {
    const auto found = sections.find(name);
    return found == sections.end() ? std::string_view() : std::string_view(found->second);
}

/// The names of the sections that differ.
std::set<std::string> touchedSections(const Sections& before, const Sections& after) {
    std::set<std::string> touched;
    for (const Sections* sections : {&before, &after}) {
        for (const auto& [name, text] : *sections) {
            if (sectionIn(before, name) != sectionIn(after, name)) {
                touched.insert(name);
            }
        }
    }
    return touched;
}

} // namespace

std::set<std::string> touchedSections(const FileChange& change) {
    return touchedSections(sectionsOf(change.before.value_or("")), sectionsOf(change.after.value_or("")));
}

std::optional<std::string> withoutChange(const std::string& now, const std::string& before,
                                         const std::string& after) {
    const Sections sectionsBefore = sectionsOf(before);
    const Sections sectionsAfter = sectionsOf(after);
    Sections wanted = sectionsOf(now);
    const auto touched = touchedSections(sectionsBefore, sectionsAfter);
    const auto isAs = [&](const Sections& sections) {
        return std::ranges::all_of(touched, [&](const std::string& name) {
            return sectionIn(wanted, name) == sectionIn(sections, name);
        });
    };
    if (!touched.empty() && isAs(sectionsBefore)) {
        return now;
    }
    if (touched.empty() || !isAs(sectionsAfter)) {
        return std::nullopt;
    }
    for (const std::string& name : touched) {
        const auto found = sectionsBefore.find(name);
        if (found == sectionsBefore.end()) {
            wanted.erase(name);
        } else {
            wanted[name] = found->second;
        }
    }
    const Parts left = partsOf(after);
    const Parts parts = partsOf(now);
    auto all = replacements(left, partsOf(before), false);
    std::ranges::move(replacements(left, parts, true), std::back_inserter(all));
    // At the same place what has been put in since comes first, such as a comment at the top of the file.
    std::ranges::sort(
        all, {}, [](const Replacement& each) { return std::tuple(each.begin, each.end, !each.isSince); });
    auto text = replaced(parts, all);
    return text && sectionsOf(*text) == wanted ? text : std::nullopt;
}

} // namespace review
