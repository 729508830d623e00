// What the four tables show for a directory and a configuration.

#include "support/AppFixture.h"

namespace {

using Texts = std::vector<std::string>;

class Inventory : public AppFixture {};

TEST_F(Inventory, SharesAreRecordsJoinedWithTheSectionsOfTheirFolder) {
    const std::string both = (host.root() / "both").string();
    std::filesystem::create_directory(both);
    std::filesystem::permissions(both, static_cast<std::filesystem::perms>(0751));
    addShare("Both", both);
    nicl({"-create", "/config/Brindle/Both", "afp_use_parent_privs", "1"});
    addShare("Slash", "/shares/slash/", "0");
    nicl({"-create", "/config/Brindle/Bare"});
    nicl({"-create", "/config/Brindle/Bare", "afp_name", "bare"});
    host.write("etc/smb.conf", "[global]\npath = " + both + "\n[homes]\npath = " + both +
                                   "\n[printers]\npath = /var/spool\n"
                                   "[first]\npath = " +
                                   both +
                                   "\nguest ok = yes\nguest ok = ignored\n"
                                   "[second]\nguest ok = no\npath = /elsewhere\npath = " +
                                   both +
                                   "\n"
                                   "[slash]\npath = /shares/slash\n"
                                   "[Printers]\npath = /p\nGuest OK = yes\n"
                                   "[more]\npath = /p\n"
                                   "[nowhere]\nguest ok = yes\n");
    host.answerAlert("Shares Are Not Updated for Jaguar", "No"); // the bare record is outdated
    start();
    const std::vector<std::pair<std::string, Texts>> columns = {
        {"ShareName", {"Both", "Slash", "Bare", "second", "slash", "Printers", "nowhere"}},
        {"AFPShared", {"1", "0", "#NoValue#", "0", "0", "0", "0"}},
        {"AFPName", {"Both", "Slash", "bare", "second", "slash", "Printers", "nowhere"}},
        {"DirectoryPath",
         {both, "/shares/slash/", "Directory Not Set", "/elsewhere", "/shares/slash", "/p",
          "Directory Not Set"}},
        {"AFS", {"+", "-", "-", "-", "-", "-", "-"}},
        {"Owner", {"r/w", "", "", "", "", "", ""}},
        {"Group", {"r", "", "", "", "", "", ""}},
        {"Everyone", {"", "", "", "", "", "", ""}},
        {"Inherit", {"Yes", "No", "No", "", "", "", ""}},
        {"InheritOwner", {"No", "No", "No", "", "", "", ""}},
        {"SMB", {"+", "-", "-", "+", "+", "+", "+"}},
        {"SMBGuestAccess", {"yes", "No", "No", "no", "No", "No", "yes"}}};
    for (const auto& [identifier, values] : columns) {
        EXPECT_EQ(columnOf("normalTableView", identifier), values) << identifier;
    }

    host.write("etc/smb.conf", "");
    send("refreshNormalList:");
    EXPECT_EQ(control<NSTableView>("normalTableView").numberOfRows(), 7)
        << "the configuration is only read once";
}

TEST_F(Inventory, LaterSectionsOfOneFolderMarkTheSameRow) {
    addShare("Docs", "/shares/docs");
    host.write("etc/smb.conf",
               "[a]\npath = /shares/docs\nguest ok = yes\n[b]\npath = /shares/docs\nguest ok = No\n"
               "[c]\npath = /shares/docs\n[d]\npath = /new\n[e]\npath = /new\nguest ok = Yes\n");
    start();
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), (Texts{"Docs", "d"}));
    EXPECT_EQ(columnOf("normalTableView", "SMBGuestAccess"), (Texts{"No", "Yes"}));
}

TEST_F(Inventory, UsersAndGroupsOfTheSystemAreLeftOut) {
    for (const auto& [name, uid] :
         {std::pair("daemon", "99"), {"alice", "100"}, {"bob", "+501x"}, {"carl", "102"}, {"odd", "x"}}) {
        addUser(name, uid);
    }
    nicl({"-create", "/users/alice", "sharedDir", "Public"});
    nicl({"-create", "/users/bob", "sharedDir", "<no value>"});
    nicl({"-create", "/users/carl", "sharedDir", "<no entry>"});
    for (const auto& [name, gid] :
         {std::pair("wheel", "0"), {"staff", "20"}, {"g100", "100"}, {"g101", "101"}}) {
        addGroup(name, gid);
    }
    start();
    EXPECT_EQ(columnOf("userTableView", "User"), (Texts{"alice", "bob", "carl"}));
    EXPECT_EQ(columnOf("userTableView", "Public Shared"), (Texts{"YES", "NO", "NO"}));
    EXPECT_EQ(columnOf("userTableView", "Full Name"), Texts(3, "#NoValue#"));
    EXPECT_EQ(columnOf("groupTableView", "Group"), (Texts{"staff", "g101"}));
    EXPECT_EQ(columnOf("groupUsersTableView", "User"), (Texts{"alice", "bob", "carl"}));
    control<NSButton>("showSystemUsersGroups3").performClick();
    EXPECT_EQ(columnOf("groupTableView", "Group"), (Texts{"wheel", "staff", "g100", "g101"}));
    EXPECT_EQ(columnOf("groupUsersTableView", "User"), (Texts{"daemon", "alice", "bob", "carl", "odd"}));
}

} // namespace
