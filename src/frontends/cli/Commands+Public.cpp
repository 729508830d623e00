#include "frontends/cli/CommandRun.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <memory>

namespace frontend {

namespace {

constexpr const char* table = "userTableView";

struct PublicOptions {
    std::vector<std::string> users;
    bool everybody = false;
};

bool isShared(const CommandRun& run, int row) {
    return run.cell(table, "Public Shared", row) == NSLocalizedString("YES");
}

void setAll(CommandRun& run, bool on) {
    CommandRun::requireDirectory();
    const int rows = run.control<NSTableView>(table).numberOfRows();
    for (int row = 0; row < rows && !run.changes(); ++row) {
        // Turning all on at once leaves out this user id.
        const bool isLeftOut = on && run.cell(table, "UID", row) == "100";
        if (isShared(run, row) != on && !isLeftOut) {
            run.noteChange();
        }
    }
    run.send(on ? "enableAllPublicShares:" : "disableAllPublicShares:");
}

void setSome(CommandRun& run, const std::vector<std::string>& users, bool on) {
    const char* button = on ? "enablePublicSelectedButton" : "disablePublicSelectedButton";
    // Check all names first, so that a mistake in one changes nothing.
    std::vector<std::string> wanted;
    for (const std::string& user : users) {
        const int row = run.requireRow(table, "User", user, "there is no user \"%@\"");
        if (isShared(run, row) != on) {
            wanted.push_back(user);
            run.noteChange();
        }
    }
    for (const std::string& user : wanted) {
        run.selectRows(table, {run.rowOf(table, "User", user)});
        run.press(button);
    }
    if (wanted.empty()) {
        run.press(button);
    }
}

} // namespace

void addPublicCommands(CLI::App& parser, CommandOptions& options) {
    CLI::App* const folders = addNoun(parser, "public", "Sharing of users' Public folders");
    const auto given = std::make_shared<PublicOptions>();
    for (const bool on : {true, false}) {
        CLI::App* const command =
            addCommand(*folders, options, on ? "on" : "off", CommandKind::Writing,
                       on ? "Share users' Public folders" : "Stop sharing users' Public folders",
                       [given, on](CommandRun& run) {
                           if (given->everybody != given->users.empty()) {
                               CommandRun::fail(NSLocalizedString("give either users or --all"),
                                                CommandStatus::WrongUse);
                           }
                           given->everybody ? setAll(run, on) : setSome(run, given->users, on);
                       });
        command->add_option("USER", given->users, "The users' names");
        command->add_flag("--all", given->everybody, "All users");
    }
}

} // namespace frontend
