// smb.conf, changed line by line. The first line of an input determines the changes, the rest is the file.
// The changed file means the same as the changed model, sections without a change keep every byte, and
// without any change the whole file does.

#include "Fuzz.h"
#include "model/SMBInPlace.h"
#include "model/SMBLines.h"
#include "model/SMBParser.h"

#include <algorithm>
#include <memory_resource>
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
        std::string shown = std::to_string(entry->Type()) + "[" + entry->ShareName() + "]";
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
        made->setType(SMBGroup);
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
    const SMBInPlaceText result = textWithChanges(text, changesBetween(read.entries, now.entries));
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
    const auto isPlain = [](const SMBLine& line) { return !line.isContinued && !line.key.starts_with('['); };
    if (read.parser.lossNotices.empty() && std::ranges::all_of(lines.lines(), isPlain)) {
        fuzz::require(meaning(Model(result.text).entries) == meaning(now.entries),
                      "the file means what the model means", result.text);
    }
    return 0;
}
