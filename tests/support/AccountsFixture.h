#pragma once

#include "support/AppFixture.h"

/// The application on a directory with a few users and groups, including system accounts.
class AccountsTest : public AppFixture {
  protected:
    void SetUp() override {
        addGroup("wheel", "0", {"root"});
        addGroup("staff", "20", {"bob"});
        addGroup("admin", "80", {"root", "adam"});
        addGroup("hundred", "100");
        addGroup("friends", "501", {"bob", "adam"});
        addUser("root", "0", "0");
        addUser("low", "99", "20");
        addUser("edge", "100", "20");
        addUser("bob", "501", "20");
        addUser("adam", "502", "80");
        nicl({"-create", "/users/bob", "realname", "Bob B"});
        start();
    }

    void selectUser(const std::string& name) { selectRow(*app().userTableView, "User", name); }

    void selectGroup(const std::string& name) { selectRow(*app().groupTableView, "Group", name); }

    void fillUser(const std::string& full, const std::string& name, const std::string& id) const {
        app().fullName->setStringValue(full);
        app().shortName->setStringValue(name);
        app().uid->setStringValue(id);
    }

    void fillGroup(const std::string& name, const std::string& id) const {
        app().groupName->setStringValue(name);
        app().gid->setStringValue(id);
    }

    [[nodiscard]] std::string groups() const {
        return tools::runNireport(std::vector<std::string>{".", "/groups", "name", "gid", "users"}).output;
    }

    [[nodiscard]] std::vector<std::string> alertTitles() const {
        std::vector<std::string> titles;
        for (const platform::Alert& alert : host.alerts) {
            titles.push_back(alert.title);
        }
        return titles;
    }
};
