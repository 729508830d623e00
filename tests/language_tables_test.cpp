// Each language has every text of the English table, and each of its texts can replace the English one.

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/StringTable.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

namespace {

using platform::StringTable;

StringTable tableAt(const std::filesystem::path& folder) {
    const auto file = contentsOfFile((folder / "Localizable.strings").string());
    auto table = platform::readStringTable(file.valueOr(""));
    EXPECT_TRUE(table.isOk()) << folder << ": " << table.status().why();
    return std::move(table).valueOr({});
}

/// Returns the directives of a text with the positions of their arguments, in that order: "1@ 2d".
std::set<std::string> directivesOf(const std::string& text) {
    std::set<std::string> directives;
    int next = 1;
    for (std::size_t at = 0; (at = text.find('%', at)) != std::string::npos && at + 1 < text.size(); ++at) {
        const bool hasPlace = at + 3 < text.size() && text[at + 2] == '$';
        const char place = hasPlace ? text[at + 1] : static_cast<char>('0' + next++);
        at += hasPlace ? 3 : 1;
        directives.insert({place, text[at]});
    }
    return directives;
}

/// Returns whether a text begins, and whether it ends, with a separator for joining it with another text.
std::pair<bool, bool> joinsOf(const std::string& text) {
    const bool begins = text.starts_with(' ') || text.starts_with(',') || text.starts_with("、");
    return {begins, text.ends_with(' ') || text.ends_with('\n')};
}

TEST(LanguageTables, HaveTheTextsOfTheEnglishTableWithTheirDirectives) {
    const TestHost host;
    const std::filesystem::path resources = NSBundle::mainBundle().resourcePath();
    const StringTable english = tableAt(resources / "English.lproj");
    std::set<std::string> languages;
    for (const auto& entry : std::filesystem::directory_iterator(resources)) {
        if (entry.path().extension() != ".lproj" || entry.path().stem() == "English") {
            continue;
        }
        const std::string language = entry.path().stem().string();
        languages.insert(language);
        const StringTable table = tableAt(entry.path());
        for (const auto& [key, text] : table) {
            EXPECT_TRUE(english.contains(key)) << language << " has a text that nothing shows: " << key;
        }
        for (const auto& [key, text] : english) {
            const auto found = table.find(key);
            if (found == table.end()) {
                ADD_FAILURE() << language << " lacks: " << key;
                continue;
            }
            EXPECT_EQ(directivesOf(found->second), directivesOf(text)) << language << ": " << key;
            EXPECT_EQ(joinsOf(found->second), joinsOf(text)) << language << ": " << key;
        }
    }
    EXPECT_EQ(languages, (std::set<std::string>{"French", "German", "Japanese"}));
}

} // namespace
