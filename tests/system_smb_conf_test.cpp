// Hand-written smb.conf files of this computer, changed by actions.

#include "support/InstalledBrindle.h"

#include <set>
#include <sstream>

namespace {

/// A file as somebody wrote it.
struct HandWritten {
    const char* text;
    const char*
        settings; ///< the lines removed ("-") and added ("+") when the workgroup and the homes are set
    bool survivesWriting = true; ///< whether its meaning for the server survives being written whole
};

class SystemSmbConf : public InstalledBrindle {
  protected:
    static void write(const std::string& file, const std::string& text) {
        EXPECT_TRUE(platform::writeWholeFile(file, text, {.mode = 0644}).isOk());
    }

    /// Returns the lines that differ.
    static std::string difference(std::string before, std::string after) {
        for (std::string* text : {&before, &after}) {
            *text += text->ends_with('\n') ? "" : "\n";
        }
        write("/home/before", before);
        write("/home/after", after);
        return runProgram({"diff", "--unchanged-line-format=", "--old-line-format=-%L",
                           "--new-line-format=+%L", "/home/before", "/home/after"})
            .output;
    }

    /// Returns how the server reads a file: a line for each setting, with its section.
    static std::set<std::string> meaning(const std::string& file) {
        std::istringstream said(runProgram({"testparm", "-s", file}).output);
        std::set<std::string> settings;
        std::string section;
        for (std::string line; std::getline(said, line);) {
            section = line.starts_with("[") ? line : section;
            if (line.starts_with("\t")) {
                settings.insert(section + line);
            }
        }
        return settings;
    }

    /// Returns the same for an embedded root, where the file is written whole.
    static std::set<std::string> meaningWrittenWhole(const std::string& before, const std::string& commands) {
        const std::string root = "/home/whole";
        std::filesystem::remove_all(root);
        std::filesystem::create_directories(root + "/etc");
        write(root + "/etc/smb.conf", before);
        const Finished ran =
            runProgram({prefix + "/bin/brindle", "--root", root, "--script", "-"}, "start\n" + commands,
                       {"HOME=" + root, "XDG_CONFIG_HOME=", "LC_ALL=C"});
        EXPECT_FALSE(contains(ran.output, "output ")) << ran.output << ran.errors;
        return meaning(root + "/etc/smb.conf");
    }
};

TEST_F(SystemSmbConf, KeepsHandWrittenTextExceptForTheLinesOfAnAction) {
    const std::vector<HandWritten> samples = {
        // Global settings last, with synonyms and other spellings, over several lines, without indentation.
        {"# the shed's server, 2019\n[Plans]\npath = /srv/plans ; drawings\npublic = yes\n\n[global]\n"
         "Server String = shed\nhosts allow = 192.168.7. \\\n  127.\nveto files = /a/ \\\n  "
         "/b/\nWORKGROUP=SHED\nguest account = "
         "nobody\n\n\n",
         "+[homes]\n+browseable = yes\n+read only = yes\n+\n+workgroup = HOME\n+map to guest = Bad User\n"
         "+security = USER\n+dos charset = CP850\n+local master = yes\n+hide dot files = yes\n",
         false},
        // An included file, tabs, commented-out homes, and no line break at the end.
        {"[global]\n\t; see also\n\tinclude = /etc/samba/local.conf\n\tlog level = 1\n\n;[homes]\n;\tread "
         "only = "
         "no\n\n[scans]\n\tpath = /srv/scans\n\tread only = no\n\tcreate mask = 0660\n\tvalid users = chief",
         "+\tworkgroup = HOME\n+\tmap to guest = Bad User\n+\tsecurity = USER\n+\tdos charset = CP850\n"
         "+\tlocal master = yes\n+\thide dot files = yes\n-;[homes]\n-;\tread only = no\n+[homes]\n"
         "+\tread only = no\n+browseable = yes\n"},
        // A default file with additions, as in an office.
        {"[global]\n   workgroup = OFFICE\n   log file = /var/log/samba/log.%m\n   max log size = 1000\n\n"
         "#======= Shares =======\n\n[homes]\n   comment = Home Directories\n   browseable = no\n   valid "
         "users = "
         "%S\n\n[printers]\n   comment = All Printers\n   path = /var/tmp\n   printable = yes\n   create "
         "mask = "
         "0700\n\n# Windows clients look for this share name\n[print$]\n   path = /var/lib/samba/printers\n"
         "   write list = root, @lpadmin\n",
         "-   workgroup = OFFICE\n+   workgroup = HOME\n+   map to guest = Bad User\n+   security = USER\n"
         "+   dos charset = CP850\n+   local master = yes\n+   hide dot files = yes\n+   read only = yes\n"},
        // The same section twice, and settings before the first section, which are global.
        {"netbios aliases = early\n[global]\nmap to guest = bad user\n\n[a b]\npath = /srv\n[global]\nwins "
         "support = no\n",
         "+\n+[homes]\n+browseable = yes\n+read only = yes\n+workgroup = HOME\n+map to guest = Bad User\n"
         "+security = USER\n+dos charset = CP850\n+local master = yes\n+hide dot files = yes\n",
         false},
    };
    write("/etc/samba/local.conf", "[global]\nserver min protocol = SMB2\n");
    const std::string settings =
        "type smbWorkGroup HOME\ncheck smbShareHomeDirs on\nsend updateSMBProperties:\n";
    for (const HandWritten& sample : samples) {
        const std::string before = sample.text;
        write(smbConf, before);
        const auto meant = meaning(smbConf);
        std::filesystem::remove("/home/chief/.local/state/brindle/history.db"); // restarts its numbers
        script(makeDocs());
        const std::string shared = contents(smbConf);
        EXPECT_EQ(
            difference(before, shared),
            "+\n+[Docs]\n+path = /home/shared\n+read only = No\n+inherit permissions = No\n+guest ok = Yes\n"
            "+;Created by Brindle\n");
        script(settings);
        EXPECT_EQ(difference(shared, contents(smbConf)), sample.settings) << before;
        const auto now = meaning(smbConf);
        for (const std::string& setting : meant) {
            EXPECT_TRUE(now.contains(setting) || contains(setting, "workgroup")) << setting;
        }
        if (sample.survivesWriting) {
            EXPECT_EQ(now, meaningWrittenWhole(before, makeDocs() + settings));
        }
        script("undo 2\nundo 1\n");
        EXPECT_EQ(contents(smbConf), before);
    }
}

} // namespace
