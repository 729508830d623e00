// What is said before lines of a hand-written smb.conf are changed, where the others stay as they are.

#include "support/ReviewFixture.h"

namespace {

class LinesOfSMBConf : public ReviewFixture {
  protected:
    LinesOfSMBConf() : ReviewFixture(options()) {
        addShare("Docs", docs);
        writeConf(conf());
    }

    static TestHost::Options options() {
        TestHost::Options options;
        options.keepsLayout = true;
        return options;
    }

    /// A file in which nothing is saved differently from what it says.
    std::string conf(const std::string& global = "", const std::string& more = "") const {
        return "[global]\nworkgroup = OFFICE\nmap to guest = Bad User\nsecurity = USER\n"
               "dos charset = CP437\nlocal master = yes\nhide dot files = yes\n" +
               global + "\n[Docs]\npath = " + docs + "\n" + more;
    }

    void selectDocs() { selectRow(*app().normalTableView, "ShareName", "Docs"); }

    const std::string docs = folder("docs");
};

TEST_F(LinesOfSMBConf, ASectionThatOnlyTheServerSeesIsNamedAndStays) {
    const std::string hidden = "[data] \npath = /data\n";
    writeConf(conf("", hidden));
    begin();
    EXPECT_EQ(app().smbConfNotice->stringValue(),
              "The SMB server takes line 11 of " + (host.root() / "etc/smb.conf").string() +
                  " for the header of a section, and Brindle does not show that section.  Make the line end "
                  "with its \"]\" and read the file again.");
    selectRow(*app().normalTableView, "DirectoryPath", "/data");
    EXPECT_EQ(sentence("deleteShare:", "server-reads-otherwise"),
              "The SMB server takes line 11 \"[data]\" of smb.conf for the header of another section, and "
              "Brindle takes what follows for settings of [Docs].");
    send("deleteShare:");
    EXPECT_TRUE(host.read("etc/smb.conf").ends_with("yes\n" + hidden)) << host.read("etc/smb.conf");
    EXPECT_NE(app().smbConfNotice->stringValue().find("takes line 8 of"), std::string::npos);
}

TEST_F(LinesOfSMBConf, ASectionThatKeepsAnotherFolderIsNamedWithTheWayOut) {
    begin();
    selectDocs();
    const std::string films = folder("films");
    type("directory", films);
    const std::string said = sentence("createShare:", "section-keeps-folder");
    EXPECT_NE(said.find("\"" + docs + "\" as \"Docs\""), std::string::npos) << said;
    EXPECT_NE(said.find("\"Not Shared\""), std::string::npos) << said;
    for (const int shared : {0, 1}) {
        choose("sharingSMB", shared);
        EXPECT_EQ(sentence("createShare:", "section-keeps-folder"), "");
        send("createShare:");
    }
    EXPECT_NE(host.read("etc/smb.conf").find("[Docs]\npath = " + films + "\n"), std::string::npos);
    writeConf("[Docs]\npath = /elsewhere\n");
    reviewer->reread();
    selectDocs();
    choose("sharingSMB", 1);
    EXPECT_NE(sentence("createShare:", "section-keeps-folder").find("delete the share"), std::string::npos);
}

TEST_F(LinesOfSMBConf, ASectionThatSomebodyElseHasAddedIsNamed) {
    begin();
    writeConf(conf("", "\n[New]\nvalid users = ann\n"));
    host.choosePath(folder("new"));
    send("selectDirectory:");
    type("shareName", "New");
    choose("sharingSMB", 1);
    const review::Plan plan = reviewer->planSend("createShare:");
    ASSERT_EQ(plan.warnings.size(), 2U);
    EXPECT_EQ(plan.warnings[1].sentence,
              "Somebody else has added [New] since; it stays, and its settings apply together with yours.");
}

TEST_F(LinesOfSMBConf, SettingsThatBecomeActiveWithTheHomeFoldersAreNamed) {
    writeConf(
        conf("\n;[homes]\n;   read only = no\n;# valid users = ann\n\n# Scratch\n#   guest ok = yes\n"));
    begin();
    EXPECT_EQ(warningsOf("updateSMBProperties:"), "");
    click("smbShareHomeDirs");
    EXPECT_EQ(sentence("updateSMBProperties:", "untouched-setting"),
              "Sharing the home folders makes these settings of the commented-out section [homes] active, "
              "too: \"guest ok = yes\".");
}

TEST_F(LinesOfSMBConf, AContinuedLineIsInTheWayOnlyIfItIsWritten) {
    writeConf(conf("veto files = /a/ \\\n   /b/\n"));
    begin();
    type("smbWorkGroup", "HOME");
    EXPECT_EQ(sentence("updateSMBProperties:", "text"), "");
    send("updateSMBProperties:");
    EXPECT_NE(host.read("etc/smb.conf").find("workgroup = HOME\n"), std::string::npos);
    EXPECT_NE(host.read("etc/smb.conf").find("veto files = /a/ \\\n   /b/\n"), std::string::npos);
    type("smbVetoFiles", "/c/ \\");
    EXPECT_NE(sentence("updateSMBProperties:", "text"), "");
}

} // namespace
