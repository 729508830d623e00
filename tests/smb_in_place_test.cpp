#include "model/SMBInPlace.h"
#include "model/SMBParser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory_resource>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

struct Model {
    explicit Model(std::string text) : bytes(std::move(text)) {
        SMBParser parser(bytes, std::pmr::get_default_resource());
        parser.parse();
        entries = std::move(parser.entries);
    }

    std::string bytes;
    SMBConf::EntryList entries;
};

SMBShare* section(Model& model, std::string_view name) {
    const auto found = std::ranges::find_if(model.entries, [&](const auto& entry) {
        return entry->Type() != SMBComment && entry->ShareName() == name;
    });
    return found == model.entries.end() ? nullptr : found->get();
}

void addShare(Model& model, const std::string& name) {
    auto share = std::make_unique<SMBShare>();
    share->setType(SMBGroup);
    share->setShareName(name);
    share->setProps({{"path", "/srv/" + name}, {"read only", "No"}});
    share->setText(";Created by Brindle");
    model.entries.push_back(std::move(share));
}

void removeShare(Model& model, std::string_view name) {
    std::erase_if(model.entries,
                  [&](const auto& entry) { return entry->Type() == SMBGroup && entry->ShareName() == name; });
}

/// The text after `edit` changes what `text` holds.
std::string edited(const std::string& text, const std::function<void(Model&)>& edit) {
    const Model read(text);
    Model now(text);
    edit(now);
    return textWithChanges(text, changesBetween(read.entries, now.entries)).text;
}

/// Sections with their kinds and parameters, for comparing what two texts mean.
std::vector<std::string> meaning(const SMBConf::EntryList& entries) {
    std::vector<std::string> sections;
    for (const auto& entry : entries) {
        if (entry->Type() == SMBComment) {
            continue;
        }
        std::string shown = std::to_string(entry->Type()) + "[" + entry->ShareName() + "]";
        for (const SMBPair& pair : entry->Props()) {
            shown += pair.Name.str() + "=" + pair.Value.str() + ";";
        }
        sections.push_back(shown);
    }
    std::ranges::sort(sections); // a new section may stand elsewhere
    return sections;
}

const std::vector<std::string>& handWritten() {
    static const std::vector<std::string> texts{
        "",
        "\n",
        "# only a comment",
        "[global]\n   workgroup = WORKGROUP\n\n# Networking\n;   interfaces = eth0\n   log file = "
        "/var/log/%m\n\n"
        "#======= Shares =======\n\n[homes]\n   comment = Home Directories\n   browseable = "
        "no\n\n[printers]\n"
        "   path = /var/tmp\n\n# Windows clients look for this share\n[print$]\n   path = "
        "/var/lib/printers\n",
        "[global]\r\n\tserver string = A\r\n\thosts allow = 10. \\\r\n\t  127.\r\n\r\n;[homes]\r\n;   read "
        "only = no\r\n"
        "; a word of its own\r\n\r\n",
        "[a]\nguest ok = yes\nguest ok = no\n[a]\npath = /two\n[b]\nx=1",
        "[data]\npath = /d\n\n\n\n",
        ";[homes]\n;browseable = no\nstray\n[x]\ny = 1 \\\n two\n# end",
    };
    return texts;
}

} // namespace

TEST(SmbInPlace, AShareAddedAndDeletedLeavesEveryByte) {
    for (const std::string& text : handWritten()) {
        const auto one = edited(text, [](Model& model) { addShare(model, "Docs"); });
        EXPECT_EQ(edited(one, [](Model& model) { removeShare(model, "Docs"); }), text) << text;
        const auto two = edited(one, [](Model& model) { addShare(model, "More"); });
        const auto last = edited(two, [](Model& model) { removeShare(model, "Docs"); });
        EXPECT_EQ(edited(last, [](Model& model) { removeShare(model, "More"); }), text) << text;
        EXPECT_EQ(edited(text, [](Model&) {}), text);
    }
}

TEST(SmbInPlace, TouchesOnlyTheLinesOfWhatChanged) {
    const std::string text = handWritten()[3];
    EXPECT_EQ(
        edited("[global]\r\n\tserver string = A\r\n\r\n# shares\r\n[docs]\r\n",
               [](Model& model) {
                   section(model, "global")->setProp("server string", "B");
                   section(model, "global")->setProp("workgroup", "W");
                   section(model, "docs")->setProp("guest ok", "Yes");
               }),
        "[global]\r\n\tserver string = B\r\n\tworkgroup = W\r\n\r\n# shares\r\n[docs]\r\nguest ok = Yes\r\n");
    EXPECT_EQ(edited("[a]\nhosts allow = 1. \\\n   2.\npath = /a",
                     [](Model& model) {
                         section(model, "a")->setProp("hosts allow", "3.");
                         section(model, "a")->removeProp("path");
                     }),
              "[a]\nhosts allow = 3.\n");
    const auto commentedOut =
        edited(text, [](Model& model) { section(model, "homes")->setType(SMBCommentGroup); });
    EXPECT_NE(
        commentedOut.find("\n;[homes]\n   ;comment = Home Directories\n   ;browseable = no\n\n[printers]"),
        std::string::npos)
        << commentedOut;
    EXPECT_EQ(edited(commentedOut, [](Model& model) { section(model, "homes")->setType(SMBGroup); }), text);
    const auto removed = edited(text, [](Model& model) { removeShare(model, "printers"); });
    EXPECT_NE(removed.find("browseable = no\n\n# Windows clients look for this share\n[print$]"),
              std::string::npos)
        << removed;
}

TEST(SmbInPlace, MeansTheSameAsTheWholeModelWritten) {
    std::mt19937 random(7);
    const auto pick = [&](std::size_t size) {
        return std::uniform_int_distribution<std::size_t>(0, size - 1)(random);
    };
    for (int round = 0; round < 400; ++round) {
        const std::string& text = handWritten()[pick(handWritten().size())];
        const Model read(text);
        Model now(text);
        for (std::size_t change = pick(4) + 1; change > 0; --change) {
            const std::size_t index = pick(now.entries.size());
            SMBShare& entry = *now.entries[index];
            const std::size_t kind = entry.Type() == SMBComment ? 0 : pick(5);
            if (kind == 0) {
                addShare(now, "new" + std::to_string(pick(100)));
            } else if (kind == 1) {
                now.entries.erase(now.entries.begin() + static_cast<std::ptrdiff_t>(index));
            } else if (kind == 2 && !entry.Props().empty()) {
                entry.Props()[pick(entry.Props().size())].Value = SMBText("changed");
            } else if (kind == 3 && !entry.Props().empty()) {
                entry.removeProp(entry.Props()[pick(entry.Props().size())].Name.view());
            } else {
                entry.setProp("added", "1");
            }
            if (now.entries.empty()) {
                break;
            }
        }
        const auto result = textWithChanges(text, changesBetween(read.entries, now.entries));
        EXPECT_TRUE(result.conflicts.empty());
        EXPECT_EQ(meaning(Model(result.text).entries), meaning(now.entries)) << text << "\n->\n"
                                                                             << result.text;
    }
}

TEST(SmbInPlace, CarriesTheChangeIntoAFileThatSomebodyElseChanged) {
    const Model read("[a]\nx = 1\ny = 1\n[b]\nz = 1\n");
    Model now(read.bytes);
    section(now, "a")->setProp("x", "2");
    section(now, "b")->setProp("z", "2");
    const auto changes = changesBetween(read.entries, now.entries);
    const auto apart = textWithChanges("# new\n[a]\n  y = 5\n  x = 1\n[b]\nz = 1\n", changes);
    EXPECT_EQ(apart.text, "# new\n[a]\n  y = 5\n  x = 2\n[b]\nz = 2\n");
    EXPECT_TRUE(apart.conflicts.empty());
    const auto both = textWithChanges("[a]\nx = 7\n", changes);
    EXPECT_EQ(both.text, "[a]\nx = 2\n\n[b]\nz = 2\n");
    EXPECT_EQ(both.conflicts,
              (std::vector<SMBConflict>{{"a", "x", "1", "7", "2"}, {"b", "z", "1", "", "2"}}));
}
