#pragma once

#include "support/ReviewFixture.h"

#include <string>

/// A computer with two shares, some people, and settings as Brindle writes them. Each test changes one thing,
/// and expects a warning about that and nothing else.
class Surprises : public ReviewFixture {
  protected:
    Surprises() {
        addGroup("staff", "20", {"bob"});
        addGroup("admin", "80", {"adam"});
        addUser("bob", "501");
        addUser("adam", "502");
        docs = folder("docs");
        films = folder("films");
        addShare("Docs", docs);
        addShare("Films", films);
        writeConf(plainConf());
        writeAFP("<key>loginGreeting</key><string>Hi</string>");
    }

    std::string plainConf(const std::string& global = "", const std::string& more = "") const {
        return "[global]\nworkgroup = OFFICE\nmap to guest = Bad User\nsecurity = USER\ndos charset = CP437\n"
               "local master = yes\nhide dot files = yes\n" +
               global + "\n\n[Docs]\npath = " + docs +
               "\nread only = No\ninherit permissions = No\nguest ok = No\n" + more +
               ";Created by Brindle\n\n\n";
    }

    void selectShare(const std::string& name) { selectRow(*app().normalTableView, "ShareName", name); }

    /// Fills the editor for a new share of that folder, whose owner and rights are read from the disk.
    void newShare(const std::string& name, const std::string& path) {
        host.choosePath(path);
        send("selectDirectory:");
        type("shareName", name);
    }

    std::string docs;
    std::string films;
};
