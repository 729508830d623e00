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
    SMBEntries entries;
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

/// Returns `text` after `edit` has changed its model.
std::string edited(const std::string& text, const std::function<void(Model&)>& edit) {
    const Model read(text);
    Model now(text);
    edit(now);
    return textWithChanges(text, changesBetween(read.entries, now.entries)).text;
}

/// A text, and what it becomes when `edit` has changed its model.
struct Case {
    std::string text;
    std::function<void(Model&)> edit;
    std::string result;
};

/// Returns the sections with their kinds and parameters, to compare the meaning of two texts.
std::vector<std::string> meaning(const SMBEntries& entries) {
    std::vector<std::string> sections;
    for (const auto& entry : entries) {
        if (entry->Type() == SMBComment) {
            continue;
        }
        std::string shown = std::to_string(entry->Type()) + "[" + entry->ShareName().str() + "]";
        for (const SMBPair& pair : entry->Props()) {
            if (SMBParser::isComment(pair.Name)) {
                continue; // a comment of a commented-out section
            }
            shown += pair.Name.str() + "=" + pair.Value.str() + ";";
        }
        sections.push_back(shown);
    }
    std::ranges::sort(sections); // a new section may be in another place
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
        "[a]\nx=1\n\n;[homes] of people\n;hosts allow = 1. \\\n;  2.\n;y=1\n\n[c]\nz=1\nz=2",
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
    // Settings above the first section are global, and must stay so.
    const std::string early = "# mine\nserver role = standalone\n\n[docs]\npath = /d\n";
    const auto withHomes = edited(early, [](Model& model) {
        addShare(model, "homes");
        std::ranges::rotate(model.entries, model.entries.end() - 1);
    });
    EXPECT_EQ(withHomes, "# mine\nserver role = standalone\n\n[homes]\npath = /srv/homes\nread only = No\n"
                         ";Created by Brindle\n\n[docs]\npath = /d\n");
    EXPECT_EQ(edited(withHomes, [](Model& model) { removeShare(model, "homes"); }), early);
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
            const std::size_t kind = entry.Type() == SMBComment ? 0 : pick(6);
            if (kind == 0) {
                addShare(now, "new" + std::to_string(pick(100)));
            } else if (kind == 1) {
                now.entries.erase(now.entries.begin() + static_cast<std::ptrdiff_t>(index));
            } else if (kind == 2 && !entry.Props().empty()) {
                entry.Props()[pick(entry.Props().size())].Value = SMBText("changed");
            } else if (kind == 3 && !entry.Props().empty()) {
                entry.removeProp(entry.Props()[pick(entry.Props().size())].Name.view());
            } else if (kind == 4) {
                entry.setType(entry.Type() == SMBGroup ? SMBCommentGroup : SMBGroup);
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

TEST(SmbInPlace, DoesNotTouchLinesThatTheServerJoinsToOthers) {
    const auto set = [](const char* value) {
        return [value](Model& model) { section(model, "a")->setProp("guest ok", value); };
    };
    const auto unset = [](Model& model) { section(model, "a")->removeProp("guest ok"); };
    const auto toggle = [](std::int32_t type) {
        return [type](Model& model) { section(model, "a")->setType(type); };
    };
    const std::string joined = "[a]\ncomment = one \\\nguest ok = no\npath = /a\n";
    for (const auto& [text, edit, result] : std::vector<Case>{
             {joined, set("Yes"), joined + "guest ok = Yes\n"},
             {joined + "guest ok = no\n", set("Yes"), joined + "guest ok = Yes\n"},
             {joined, unset, joined},
             {"[a]\nx = 1 \\\n# two \\\n three\npath = /a", unset,
              "[a]\nx = 1 \\\n# two \\\n three\npath = /a"},
             // Nothing may come between a backslash and the line that it joins.
             {"[a]\n\tx = 1 \\\n[b]\n", set("Yes"), "[a]\n\tguest ok = Yes\n\tx = 1 \\\n[b]\n"},
             {"[a]\nx = 1 \\", set("Yes"), "[a]\nguest ok = Yes\nx = 1 \\"},
             {"[b]\nx = 1 \\\n\n[a]\ny = 1\n[c]\n", [](Model& model) { removeShare(model, "a"); },
              "[b]\nx = 1 \\\n\n[c]\n"},
             {"[b]\nx = 1 \\\n[a]\ny = 1\n[c]\n", [](Model& model) { removeShare(model, "a"); },
              "[b]\nx = 1 \\\n\n[c]\n"},
             // A section is enabled, or disabled, with all its lines.
             {"[a]\nx = 1 \\\n  2\n# y = 1\n# z\nstray\n", toggle(SMBCommentGroup),
              ";[a]\n;x = 1 \\\n  ;2\n;# y = 1\n# z\n;stray\n"},
             {"#[a] words\n;x = 1 \\\n;  2\n; words\n", toggle(SMBGroup), "[a]\nx = 1 \\\n  2\n; words\n"},
             // No line becomes another section, and none is enabled later.
             {"[a]\n[b = 1\n[c]\n", toggle(SMBCommentGroup), ";[a]\n; [b = 1\n[c]\n"},
             {";[a]\n; [b]=[c]\n;x = 1\n", toggle(SMBGroup), "[a]\n; [b]=[c]\nx = 1\n"},
             {";[b]\n;y = 1\n\n[a]\nx = 1\n\n# z\n;x = 2\n\n# c\n[c]\n",
              [](Model& model) { removeShare(model, "a"); }, ";[b]\n;y = 1\n\n# c\n[c]\n"},
             {"[b]\n\n[a]\nx = 1\n\nstray \\\ny = 2\n", [](Model& model) { removeShare(model, "a"); },
              "[b]\n"},
             {"[a]\nx = 1\nguest ok = no",
              [&](Model& model) {
                  toggle(SMBCommentGroup)(model);
                  unset(model);
              },
              ";[a]\n;x = 1\n"}}) {
        EXPECT_EQ(edited(text, edit), result) << text;
    }
}

TEST(SmbInPlace, FollowsTheServerWhereTheModelReadsLess) {
    const auto set = [](const char* key, const char* value) {
        return [=](Model& model) { section(model, "a")->setProp(key, value); };
    };
    const auto unset = [](Model& model) { section(model, "a")->removeProp("x"); };
    const auto disable = [](Model& model) { section(model, "a")->setType(SMBCommentGroup); };
    const auto enable = [](Model& model) { section(model, "a")->setType(SMBGroup); };
    const auto remove = [](Model& model) { removeShare(model, "a"); };
    const std::string withHeader = "[a]\nx = 1\n# c\n\n# d\n[data] \ny = 2\n";
    for (const auto& [text, edit, result] : std::vector<Case>{
             // The last setting counts, also one that the model does not keep.
             {"[a]\n\tx =\n# c\n", set("x", "1"), "[a]\n\tx =\n\tx = 1\n# c\n"},
             {"[a]\nx = 1\n X =\nx = #$%BLAK \\\n y\nxx =\n[b]\nx =\n", set("x", "2"),
              "[a]\nx = 2\nxx =\n[b]\nx =\n"},
             {"[a]\nx = cut#$%BLAK tail\n", set("x", "1"), "[a]\nx = 1\n"},
             {"[a]\nx =\nx = 1\nX =\n[b]\nx =\n", unset, "[a]\n[b]\nx =\n"},
             {"[a]\npath = /a\nDirectory =\n", set("path", "/b"), "[a]\npath = /b\n"},
             // A header with something after its bracket begins a section.
             {withHeader, remove, "# d\n[data] \ny = 2\n"},
             {withHeader, disable, ";[a]\n;x = 1\n# c\n\n# d\n[data] \ny = 2\n"},
             {withHeader, set("y", "3"), "[a]\nx = 1\ny = 3\n# c\n\n# d\n[data] \ny = 2\n"},
             {"[a]\n[data] = b\nx = 2", set("x", "3"), "[a]\nx = 3\n[data] = b\nx = 2"},
             {"[a]\n \\\n[data] words\ny = 2\n", set("y", "3"), "[a]\n \\\n y = 3\n[data] words\ny = 2\n"},
             {"[a]\n[data] words\nx = 2\n", unset, "[a]\n[data] words\nx = 2\n"},
             {";[b]\n[a]\n[da\\\nta] \n# z = 1\n", remove, ";[b]\n[da\\\nta] \n# z = 1\n"},
             {";[a]\n;#[b] = c\n;x = 1\n", enable, "[a]\n;#[b] = c\nx = 1\n"},
             {";[a]\n; [b] = c \\\n;  d\n;x = 1\n", enable, "[a]\n; [b] = c \\\n;  d\nx = 1\n"},
             // Lines below a commented-out section are those of the active section above.
             {"[b]\n;[a]\n;x = 1\ny = 2\n\n;[d]\nz = 3 \\\n 4\n# c\n[e]\n", enable,
              "[b]\ny = 2\nz = 3 \\\n 4\n[a]\nx = 1\n\n;[d]\n# c\n[e]\n"},
             {"[b]\n[a]\nx = 1\n;[d]\n;w = 1\ny = 2\nz = 3", remove, "[b]\n;[d]\n;w = 1\n"},
             {"[a]\nx = 1\n;[d]\n;w = 1\n y = 2\n[\n[e]\n", disable,
              ";[a]\n;x = 1\n; y = 2\n; [\n;[d]\n;w = 1\n[e]\n"},
             {"[a]\n;[d]\ny = 2 \\\n 3\n;[e]\nz = 1\nY =\n[f]\ny = 4\n", set("y", "1"),
              "[a]\ny = 1\n;[d]\n;[e]\nz = 1\n[f]\ny = 4\n"},
             {"[a]\n;[d]\n[f] \ny = 2\n", remove, ";[d]\n[f] \ny = 2\n"},
             // Every kind of white space may indent a line.
             {"[c]\n\f;[a]\n \v;x = 1\n", enable, "[c]\n\f[a]\n \vx = 1\n"}}) {
        EXPECT_EQ(edited(text, edit), result) << text;
    }
}

TEST(SmbInPlace, ASectionAddedCommentedOutTakesInNoComment) {
    const auto addHomes = [](Model& model) {
        addShare(model, "homes");
        model.entries.back()->setType(SMBCommentGroup);
        std::ranges::rotate(model.entries, model.entries.end() - 1);
    };
    const auto enable = [](Model& model) { section(model, "homes")->setType(SMBGroup); };
    const std::string block = "\n;[homes]\n;path = /srv/homes\n;read only = No\n;Created by Brindle\n";
    const std::string active = "\n[homes]\npath = /srv/homes\nread only = No\n;Created by Brindle\n";
    const auto off = edited("# mine\n# x = 1\n# words\n\n[b]\n", addHomes);
    EXPECT_EQ(off, "# mine\n# x = 1\n" + block + "# words\n\n[b]\n");
    EXPECT_EQ(edited(off, enable), "# mine\n# x = 1\n" + active + "# words\n\n[b]\n");
    // Nor one below a section that goes away at the same time.
    const auto instead = edited("[a]\ny = 1\n\n# x = 1\n\n[b]\n", [&](Model& model) {
        addHomes(model);
        removeShare(model, "a");
    });
    EXPECT_EQ(edited(instead, enable), active.substr(1) + "\n[b]\n");
}

TEST(SmbInPlace, AppliesTheChangeToAFileThatSomebodyElseChanged) {
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
    const auto gone = textWithChanges("# gone\n[b]\nz = 2", changes);
    EXPECT_EQ(gone.text, "# gone\n[b]\nz = 2\n\n[a]\nx = 2\ny = 1") << "the whole section, and only once";
    EXPECT_EQ(gone.conflicts, (std::vector<SMBConflict>{{"a", "", "", "", ""}}));
    const Model hidden("[a]\n[b] x = 1\ny = 1\n");
    Model changed(hidden.bytes);
    section(changed, "a")->setProp("y", "2");
    EXPECT_EQ(textWithChanges("[b] x = 1\n", changesBetween(hidden.entries, changed.entries)).text,
              "[b] x = 1\n\n[a]\ny = 2\n")
        << "for the server, the other section was never in this one";
    Model withDocs(read.bytes);
    addShare(withDocs, "Docs");
    const auto additions = changesBetween(read.entries, withDocs.entries);
    const auto twice = textWithChanges(read.bytes + "[Docs]\nv = 1\n", additions);
    EXPECT_TRUE(twice.text.ends_with("[Docs]\nv = 1\n\n" + additions.front().value + "\n")) << twice.text;
    EXPECT_EQ(twice.conflicts, (std::vector<SMBConflict>{{"Docs", "", "", "Docs", additions.front().value}}));
    EXPECT_TRUE(textWithChanges(read.bytes + ";[Docs]\n", additions).conflicts.empty());
    section(now, "a")->setType(SMBCommentGroup);
    EXPECT_EQ(textWithChanges("[b]\nz = 1\n", changesBetween(read.entries, now.entries)).text,
              "[b]\nz = 2\n\n;[a]\n;x = 2\n;y = 1\n");
    section(now, "a")->setProps({{"x", "1"}, {"y", "1"}, {"w", "1"}});
    section(now, "a")->setType(SMBGroup);
    EXPECT_EQ(
        textWithChanges("[a]\nx = 7\nw = 0\n[b]\nz = 2\n", changesBetween(read.entries, now.entries)).text,
        "[a]\nx = 7\nw = 1\n[b]\nz = 2\n")
        << "somebody else has added it, too";
    EXPECT_EQ(both.conflicts, (std::vector<SMBConflict>{{"a", "x", "1", "7", "2"}, {"b", "", "", "", ""}}));
}
