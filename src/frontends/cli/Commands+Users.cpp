#include "access/ServerAccounts.h"
#include "app/DirectoryRecords.h"
#include "frontends/cli/CommandRun.h"
#include "frontends/cli/JSONRows.h"
#include "frontends/cli/PasswordSource.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/posix/Secret.h"
#include "privileged/NiutilTask.h"
#include "review/DirectoryState.h"

#include <memory>
#include <utility>

namespace frontend {

namespace {

constexpr const char* table = "userTableView";
constexpr const char* nextNumber = "next";
constexpr const char* standardGroup = "staff";

struct UserOptions {
    std::string name;
    std::optional<std::string> fullName;
    std::optional<std::string> uid;
    std::optional<std::string> group;
    std::optional<bool> sharesPublicFolder;
    bool hasNoPassword = false;
    PasswordSource password;
};

JSON userAt(const CommandRun& run, int row) {
    const auto cell = [&](const char* column) { return run.cell(table, column, row); };
    return {{"name", cell("User")},
            {"fullName", cell("Full Name")},
            {"uid", longLongValue(cell("UID"))},
            {"gid", longLongValue(cell("GID"))},
            {"publicFolder", cell("Public Shared") == NSLocalizedString("YES")}};
}

/// Lists the rows of the window's table without loading the window, which keeps the command fast with tens of
/// thousands of users.
void list(CommandRun& run) {
    JSONRows users("users");
    const bool printsJSON = run.context().options.printsJSON;
    const NiutilTask::Report report = NiutilTask::sharedInstance().currentUsers();
    CommandRun::requireDirectory();
    for (const std::string& line : *report) {
        const UserRecord user(line);
        if (user.isSystem()) {
            continue;
        }
        if (!printsJSON) {
            run.say(user.name + "\t" + std::to_string(longLongValue(user.uid)) + "\t" + user.fullName);
            continue;
        }
        users.beginRow();
        users.addText("name", user.name);
        users.addText("fullName", user.fullName);
        users.addNumber("uid", longLongValue(user.uid));
        users.addNumber("gid", longLongValue(user.gid));
        users.addTruth("publicFolder", user.sharesPublicFolder);
    }
    if (printsJSON) {
        run.setResultText(users.finish());
    }
}

int requireRow(const CommandRun& run, const std::string& name) {
    return run.requireRow(table, "User", name, "there is no user \"%@\"");
}

void describe(CommandRun& run, const std::string& name) {
    if (const int row = run.rowOf(table, "User", name); row >= 0) {
        run.result()["user"] = userAt(run, row);
    }
}

void show(CommandRun& run, const UserOptions& options) {
    static_cast<void>(requireRow(run, options.name));
    describe(run, options.name);
    run.sayFields("user");
}

void fill(CommandRun& run, const UserOptions& options) {
    run.set("fullName", options.fullName);
    if (options.uid == nextNumber) {
        run.perform([&] { run.presenter().interface().findWiredTo("getNextUID:")->sendAction(); });
        run.noteChange();
    } else {
        run.set("uid", options.uid);
    }
    if (options.group) {
        run.check("showSystemUsersGroups2", true); // so that every group can be named
    }
    run.setItem("groupPopUp", options.group, "there is no group \"%@\"");
    if (options.sharesPublicFolder) {
        run.setIndex("publicSharedPopUp", *options.sharesPublicFolder ? 0 : 1);
    }
}

/// Types the password into the open sheet and confirms it.
void enterPassword(CommandRun& run, std::string password) {
    for (const char* field : {"passwordSecureText1", "passwordSecureText2"}) {
        run.type(field, password);
    }
    platform::wipe(password);
    run.perform([&] { run.presenter().interface().findWiredTo("setPassword:")->sendAction(); });
    if (const std::string reason = run.text("passwordErrorText"); !reason.empty()) {
        CommandRun::fail(reason);
    }
}

void setPassword(CommandRun& run, const UserOptions& options) {
    run.selectRows(table, {requireRow(run, options.name)});
    std::string password;
    if (!run.context().options.isDryRun) {
        password = options.password.read(options.name);
    }
    run.noteChange();
    if (run.context().options.isDryRun) {
        // Opening the sheet changes nothing; the plan is that of the button in it.
        run.perform([&] { run.control<NSButton>("changePasswordButton").performClick(); });
        for (const char* field : {"passwordSecureText1", "passwordSecureText2"}) {
            run.type(field, "any");
        }
        run.send("setPassword:");
        return;
    }
    run.press("changePasswordButton");
    enterPassword(run, std::move(password));
}

/// Whether the user certainly has no password yet, so that an earlier attempt to add it stopped half way.
bool lacksPassword(const CommandRun& run, const std::string& user) {
    const auto& root = run.context().host.root;
    accesscheck::ServerAccounts accounts(root ? std::optional<platform::SambaAccounts>(*root) : std::nullopt);
    const auto logOn = accounts.logOn(user);
    return logOn == accesscheck::LogOn::NoAccount || logOn == accesscheck::LogOn::NoPassword;
}

void add(CommandRun& run, UserOptions options) {
    const int row = run.rowOf(table, "User", options.name);
    if (row >= 0) {
        run.selectRows(table, {row});
        if (options.uid == nextNumber) {
            options.uid.reset(); // "next" was resolved when the user was first made
        }
        fill(run, options);
        if (run.changes()) {
            CommandRun::fail(stringWithFormat(
                NSLocalizedString("a different user \"%@\" already exists; use users set"), options.name));
        }
        run.press("addNewUserButton");
        if (options.password.isGiven() && lacksPassword(run, options.name)) {
            setPassword(run, options);
        }
        describe(run, options.name);
        return;
    }
    // Read it before anything is made, so that no user is left without a password.
    std::string password;
    if (!options.hasNoPassword && !run.context().options.isDryRun) {
        password = options.password.read(options.name);
    }
    run.selectRows(table, {});
    run.type("shortName", options.name);
    run.noteChange();
    options.fullName = options.fullName.value_or(options.name);
    options.uid = options.uid.value_or(nextNumber);
    options.group = options.group.value_or(standardGroup);
    options.sharesPublicFolder = options.sharesPublicFolder.value_or(false);
    fill(run, options);
    run.press("addNewUserButton");
    if (!options.hasNoPassword && !run.context().options.isDryRun) {
        enterPassword(run, std::move(password));
    }
    describe(run, options.name);
}

void set(CommandRun& run, const UserOptions& options) {
    run.selectRows(table, {requireRow(run, options.name)});
    fill(run, options);
    run.press("addNewUserButton");
    describe(run, options.name);
}

void remove(CommandRun& run, const UserOptions& options) {
    if (run.rowOf(table, "User", options.name) < 0 && review::hasRecord("/users/" + options.name)) {
        CommandRun::fail(stringWithFormat(
            NSLocalizedString("the user \"%@\" is one of the system's and is not deleted"), options.name));
    }
    run.selectToRemove(table, "User", options.name);
    run.press("deleteUserButton");
}

} // namespace

void addUserCommands(CLI::App& parser, CommandOptions& options) {
    CLI::App* const users = addNoun(parser, "users", "Users, and their passwords for shares");
    const auto given = std::make_shared<UserOptions>();
    const NamedCommands named(*users, options, given, "The user's short name");
    const auto addFields = [&](CLI::App* command) {
        command->add_option("--full-name", given->fullName, "The full name")->type_name("TEXT");
        command->add_option("--uid", given->uid, "The user's number, or next for the one after the highest")
            ->type_name("N|next");
        command->add_option("--group", given->group, "The user's group")->type_name("GROUP");
        addSwitch(*command, "public", given->sharesPublicFolder, "Share the user's Public folder");
    };
    addCommand(*users, options, "list", CommandKind::Reading, "List all users", list)
        ->parse_complete_callback([&options] { options.needsApplication = false; });
    named.add("show", CommandKind::Reading, "Show a user", show);
    CLI::App* const adding =
        named.add("add", CommandKind::Writing, "Add a user who can connect to shares only",
                  [](CommandRun& run, const UserOptions& user) { add(run, user); });
    addFields(adding);
    given->password.addTo(*adding);
    adding->add_flag("--no-password", given->hasNoPassword, "Set no password; the user cannot connect yet")
        ->excludes(adding->get_option("--password-stdin"), adding->get_option("--password-fd"));
    addFields(named.add("set", CommandKind::Writing, "Change a user", set));
    named.add("remove", CommandKind::Writing, "Delete a user", remove);
    given->password.addTo(*named.add("password", CommandKind::Writing, "Set a user's password", setPassword));
}

} // namespace frontend
