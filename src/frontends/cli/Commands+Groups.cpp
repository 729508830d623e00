#include "frontends/cli/CommandRun.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <algorithm>
#include <memory>

namespace frontend {

namespace {

constexpr const char* table = "groupTableView";
constexpr const char* members = "groupUsersTableView";
constexpr const char* noMembers = "#NoValue#";

struct GroupOptions {
    std::string name;
    std::optional<std::string> gid;
    std::vector<std::string> users;
};

std::vector<std::string> membersAt(const CommandRun& run, int row) {
    const std::string cell = run.cell(table, "Users in Group", row);
    return cell.empty() || cell == noMembers ? std::vector<std::string>()
                                             : componentsSeparatedByString(cell, ",");
}

JSON groupAt(const CommandRun& run, int row) {
    return {{"name", run.cell(table, "Group", row)},
            {"gid", longLongValue(run.cell(table, "GID", row))},
            {"members", membersAt(run, row)}};
}

/// Lists system groups too.
void showAll(CommandRun& run) {
    run.check("showSystemUsersGroups3", true);
}

/// Returns the group's row, or -1 when there is none.
int rowOf(CommandRun& run, const std::string& name) {
    showAll(run);
    return run.rowOf(table, "Group", name);
}

int requireRow(CommandRun& run, const std::string& name) {
    showAll(run);
    return run.requireRow(table, "Group", name, "there is no group \"%@\"");
}

void list(CommandRun& run) {
    CommandRun::requireDirectory();
    JSON& groups = run.result()["groups"] = JSON::array();
    const int rows = run.control<NSTableView>(table).numberOfRows();
    for (int row = 0; row < rows; ++row) {
        const JSON group = groupAt(run, row);
        std::string line = group["name"].get<std::string>() + "\t" + group["gid"].dump() + "\t";
        for (const std::string& member : membersAt(run, row)) {
            line += (line.ends_with('\t') ? "" : ", ") + member;
        }
        run.say(line);
        groups.push_back(group);
    }
}

void describe(CommandRun& run, const std::string& name) {
    if (const int row = rowOf(run, name); row >= 0) {
        run.result()["group"] = groupAt(run, row);
    }
}

void show(CommandRun& run, const GroupOptions& options) {
    static_cast<void>(requireRow(run, options.name));
    describe(run, options.name);
    run.sayFields("group");
}

void setNumber(CommandRun& run, const std::optional<std::string>& gid) {
    if (gid == "next") {
        run.perform([&] { run.presenter().interface().findWiredTo("getNextGID:")->sendAction(); });
        run.noteChange();
    } else {
        run.set("gid", gid);
    }
}

void add(CommandRun& run, const GroupOptions& options) {
    const int row = rowOf(run, options.name);
    run.selectRows(table, row < 0 ? std::vector<int>() : std::vector<int>{row});
    if (row < 0) {
        run.type("groupName", options.name);
        setNumber(run, options.gid.value_or("next"));
        run.noteChange();
    } else if (options.gid && options.gid != "next" && run.text("gid") != *options.gid) {
        CommandRun::fail(stringWithFormat(
            NSLocalizedString("a different group \"%@\" already exists; use groups set"), options.name));
    }
    run.press("createNewGroupButton");
    describe(run, options.name);
}

void set(CommandRun& run, const GroupOptions& options) {
    run.selectRows(table, {requireRow(run, options.name)});
    setNumber(run, options.gid);
    run.press("createNewGroupButton");
    describe(run, options.name);
}

void remove(CommandRun& run, const GroupOptions& options) {
    showAll(run);
    run.selectToRemove(table, "Group", options.name);
    run.press("deleteGroupButton");
}

/// Adds the users to the group or removes them, and leaves out those for whom that is already so.
void change(CommandRun& run, const GroupOptions& options, bool join, const char* button) {
    const int group = requireRow(run, options.name);
    const auto before = membersAt(run, group);
    std::vector<int> rows;
    for (const std::string& user : options.users) {
        if ((std::ranges::find(before, user) != before.end()) == join) {
            continue;
        }
        rows.push_back(run.requireRow(members, "User", user, "there is no user \"%@\""));
        run.noteChange();
    }
    run.selectRows(table, {group});
    run.selectRows(members, std::move(rows));
    run.press(button);
    describe(run, options.name);
}

void join(CommandRun& run, const GroupOptions& options) {
    change(run, options, true, "addUserToGroupButton");
}

void leave(CommandRun& run, const GroupOptions& options) {
    change(run, options, false, "removeUserFromGroupButton");
}

} // namespace

void addGroupCommands(CLI::App& parser, CommandOptions& options) {
    CLI::App* const groups = addNoun(parser, "groups", "Groups and their members");
    const auto given = std::make_shared<GroupOptions>();
    const NamedCommands named(*groups, options, given, "The group's name");
    const auto addNumber = [&](CLI::App* command) {
        command->add_option("--gid", given->gid, "The group's number, or next for the one after the highest")
            ->type_name("N|next");
    };
    addCommand(*groups, options, "list", CommandKind::Reading, "List the groups", list);
    named.add("show", CommandKind::Reading, "Show a group", show);
    addNumber(named.add("add", CommandKind::Writing, "Add a group", add));
    addNumber(named.add("set", CommandKind::Writing, "Change a group", set));
    named.add("remove", CommandKind::Writing, "Delete a group", remove);
    for (const auto& [name, carryOut] : {std::pair("join", &join), std::pair("leave", &leave)}) {
        named
            .add(name, CommandKind::Writing,
                 std::string_view(name) == "join" ? "Make users members" : "Remove users from a group",
                 carryOut)
            ->add_option("USER", given->users, "The users' names")
            ->required();
    }
}

} // namespace frontend
