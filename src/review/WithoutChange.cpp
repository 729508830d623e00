#include "review/WithoutChange.h"

#include "model/SMBConf.h"
#include "review/TextDifference.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace review {

namespace {

/// The lines of a text; or each section, from its header to its last line that is not blank, and each other
/// line.
using Parts = std::vector<std::string_view>;

/// The sections with all that follows each of them, and the lines before the first.
Parts wholeSections(std::string_view text) {
    Parts parts;
    bool isInSection = false;
    for (const std::string_view line : linesOf(text)) {
        const std::size_t begin = line.find_first_not_of(" \t\r");
        const bool isHeader = begin != std::string_view::npos && line[begin] == '[';
        isInSection = isInSection || isHeader;
        if (isInSection && !isHeader) {
            const char* start = parts.back().data();
            parts.back() = {start, static_cast<std::size_t>(line.data() + line.size() - start)};
        } else {
            parts.push_back(line);
        }
    }
    return parts;
}

/// Lines alone would do for most changes. But sections are much alike, so that the lines of a new one may
/// seem to stand in the middle of the next.
Parts sectionsAndLines(std::string_view text) {
    Parts parts;
    Parts blank;
    bool isInSection = false;
    for (const std::string_view line : linesOf(text)) {
        const std::size_t begin = line.find_first_not_of(" \t\r");
        if (begin == std::string_view::npos) {
            blank.push_back(line);
            continue;
        }
        if (isInSection && line[begin] != '[') {
            const char* start = parts.back().data();
            parts.back() = {start, static_cast<std::size_t>(line.data() + line.size() - start)};
        } else {
            parts.insert(parts.end(), blank.begin(), blank.end());
            parts.push_back(line);
            isInSection = isInSection || line[begin] == '[';
        }
        blank.clear();
    }
    parts.insert(parts.end(), blank.begin(), blank.end());
    return parts;
}

/// The parts from `begin` to before `end`, counted from 0, and what takes their place.
struct Replacement {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::vector<std::string> parts;
};

/// What makes `to` of `from`, in order. Between two replacements at least one part stays.
std::vector<Replacement> replacements(const Parts& from, const Parts& to) {
    std::vector<Replacement> all;
    std::size_t inFrom = 0;
    std::size_t inTo = 0;
    for (LineChange& change : lineChanges(from, to)) {
        const bool goes = change.kind == LineChange::Kind::Goes;
        const std::size_t staying = change.number - 1 - (goes ? inFrom : inTo);
        inFrom += staying;
        inTo += staying;
        if (all.empty() || all.back().end != inFrom) {
            all.push_back({inFrom, inFrom, {}});
        }
        if (goes) {
            all.back().end = ++inFrom;
        } else {
            all.back().parts.push_back(std::move(change.line));
            ++inTo;
        }
    }
    return all;
}

/// Makes the replacements in `parts`, which are in order; none when two of them concern the same parts.
std::optional<std::string> replaced(const Parts& parts, const std::vector<Replacement>& all) {
    std::string text;
    std::size_t next = 0;
    const auto copyUntil = [&](std::size_t end) {
        for (; next < end; ++next) {
            text.append(parts[next]).append("\n");
        }
    };
    for (const Replacement& each : all) {
        if (each.begin < next) {
            return std::nullopt;
        }
        copyUntil(each.begin);
        for (const std::string& part : each.parts) {
            text.append(part).append("\n");
        }
        next = each.end;
    }
    copyUntil(parts.size());
    return text;
}

/// The sections by name; the comments outside of them have none.
using Sections = std::map<std::string, std::string>;

Sections sectionsOf(const std::string& text) {
    Sections sections;
    const auto conf = SMBConf::ofText(text);
    for (const auto& entry : conf->Entries()) {
        entry->appendTo(sections[entry->isUnnamed() ? "" : entry->ShareName().str()]);
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
    if (touched.empty() || isAs(sectionsBefore)) {
        return touched.empty() ? std::nullopt : std::optional(now);
    }
    if (!isAs(sectionsAfter)) {
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
    for (Parts (*const parted)(std::string_view) : {&wholeSections, &sectionsAndLines, &linesOf}) {
        const Parts parts = parted(after);
        const auto back = replacements(parts, parted(before));
        const auto since = replacements(parts, parted(now));
        // Where both put parts at the same place, a comment may belong to the section above or below it.
        for (const auto& [first, second] : {std::pair(back, since), std::pair(since, back)}) {
            std::vector<Replacement> all = first;
            all.insert(all.end(), second.begin(), second.end());
            std::ranges::stable_sort(all, {}, &Replacement::begin);
            auto text = replaced(parts, all);
            if (text && sectionsOf(*text) == wanted) {
                return text;
            }
        }
    }
    return std::nullopt;
}

} // namespace review
