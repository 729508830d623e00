#pragma once

#include "support/ReviewFixture.h"

#include <random>
#include <string>
#include <vector>

/// A computer in a random state, and random actions of a user.
class DrawnState : public ReviewFixture, public testing::WithParamInterface<unsigned> {
  protected:
    DrawnState() : random_(GetParam()) {}

    int upTo(int limit) { return static_cast<int>(random_() % (static_cast<unsigned>(limit) + 1)); }

    bool sometimes() { return upTo(2) == 0; }

    template <class Kind>
    const Kind& oneOf(const std::vector<Kind>& all) {
        return all[static_cast<std::size_t>(upTo(static_cast<int>(all.size()) - 1))];
    }

    void fillDirectory() {
        addGroup("staff", "20", {"bob"});
        addGroup("admin", "80", {"adam"});
        addGroup("friends", "501", {"bob", "adam"});
        for (int user = 0; user < 6; ++user) {
            addUser(oneOf<std::string>({"bob", "adam", "eve", "Carl", "low"}), std::to_string(95 + upTo(10)));
        }
        for (int share = 0; share < upTo(4); ++share) {
            addShare(oneOf<std::string>({"Docs", "docs", "Films", "A b"}),
                     folder("f" + std::to_string(upTo(3))), std::to_string(upTo(1)));
        }
        if (sometimes()) { // a record as older systems write it
            nicl({"-create", "/config/Brindle/Old"});
            nicl({"-create", "/config/Brindle/Old", "directory_path", folder("old")});
            nicl({"-create", "/config/Brindle/Old", "comment", "mine"});
        }
    }

    void fillFiles() {
        std::string text;
        for (int part = 0; part < upTo(7); ++part) {
            text += oneOf<std::string>(
                {"[global]\n  workgroup = OFFICE\n# by hand\n  local master = Yes\n\n", "; a comment\n",
                 "[homes]\nbrowseable = no\n", ";[homes]\n; read only = yes\n",
                 "lost line\n[x] y\nsize = 1\n",
                 "[Docs]\npath = " + folder("f0") + "\nguest ok = Yes\nveto files = /x/\n\n",
                 "[Films]\npath = " + folder("f1") + "\nread only = No\n;Created by Brindle\n\n\n",
                 "[Global]\nserver string = other\n", "[printers]\nprintable = yes\n", "\n\n"});
        }
        if (upTo(9) > 0) {
            writeConf(text);
        }
        if (upTo(9) > 0) {
            writeAFP(
                std::string(sometimes() ? "<key>guestAccess</key><true/>" : "") +
                (sometimes() ? "<key>loggingAttributes</key><dict><key>logLogin</key><true/></dict>" : "") +
                "<key>maxConnections</key><integer>" + std::to_string(upTo(9)) + "</integer>");
        }
    }

    void edit() {
        const std::vector<std::pair<const char*, std::vector<std::string>>> fields = {
            {"shareName", {"Docs", "Films", "new one", "a]", "homes", ""}},
            {"directory", {folder("f0", 0700), folder("f2", 0750), "/nowhere", "/etc", "folder\\", ""}},
            {"shortName", {"bob", "adam", "new", "a,b", "CARL", ""}},
            {"fullName", {"Some Body", ""}},
            {"uid", {"501", "99", "4294967295", ""}},
            {"groupName", {"friends", "new", "a/b", ""}},
            {"gid", {"501", "777", ""}},
            {"smbWorkGroup", {"HOME", ""}},
            {"smbServerInfoString", {"text", "ends in\\", ""}},
            {"greeting", {"Hello", ""}},
        };
        for (const auto& [field, texts] : fields) {
            if (sometimes()) {
                type(field, oneOf(texts));
            }
        }
        for (const char* menu : {"owner", "group", "ownerPrivs", "groupPrivs", "everyonePrivs", "sharingAFS",
                                 "sharingSMB", "groupPopUp", "publicSharedPopUp", "smbSecurity"}) {
            if (sometimes() && control<NSPopUpButton>(menu).numberOfItems() > 0) {
                choose(menu, upTo(control<NSPopUpButton>(menu).numberOfItems() - 1));
            }
        }
        for (const char* box : {"inheritPermissionsButton", "guestAccessButton", "smbWorkGroupMaster",
                                "smbShareHomeDirs", "allowGuestAccess"}) {
            if (sometimes()) {
                click(box);
            }
        }
        for (const char* table :
             {"normalTableView", "userTableView", "groupTableView", "groupUsersTableView"}) {
            if (upTo(3) > 0) {
                control<NSTableView>(table).selectRow(upTo(4) - 1);
            }
        }
        if (upTo(9) == 0) {
            writeConf("[other]\npath = /changed/meanwhile\n");
        }
    }

    std::string anOperation() {
        return oneOf<std::string>(
            {"createShare:", "createShare:", "deleteShare:", "deleteAllShares:", "updateSharesFor10pt2:",
             "addNewUser:", "addNewUser:", "addNewGroup:", "deleteSelectedUser:", "deleteSelectedGroup:",
             "addUserToGroup:", "removeUserFromGroup:", "enableSelectedPublicShare:",
             "enableAllPublicShares:", "disableAllPublicShares:", "updateAFSProperties:",
             "updateSMBProperties:"});
    }

    std::string conf() const {
        return platform::readWholeFile((host.root() / "etc/smb.conf").string()).valueOr("");
    }

    std::string afp() const {
        return platform::readWholeFile(
                   (host.root() / "Library/Preferences/com.apple.AppleFileServer.plist").string())
            .valueOr("");
    }

  private:
    std::mt19937 random_;
};
