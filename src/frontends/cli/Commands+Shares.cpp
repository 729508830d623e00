#include "frontends/cli/CommandRun.h"
#include "frontends/cli/ServedShares.h"
#include "model/ServerSettings.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <array>
#include <filesystem>
#include <memory>

namespace frontend {

namespace {

constexpr const char* table = "normalTableView";

/// The command's words for the items of a privilege menu, in its order.
constexpr std::array<const char*, 4> privileges{"rw", "r", "w", "none"};
/// What the list shows for the same privileges.
constexpr std::array<const char*, 4> shownPrivileges{"r/w", "r", "w", ""};

constexpr const char* unpublished = "not published";

struct ShareOptions {
    std::string name;
    std::optional<std::string> folder;
    std::optional<std::string> owner;
    std::optional<std::string> ownerMay;
    std::optional<std::string> group;
    std::optional<std::string> groupMay;
    std::optional<std::string> everyoneMay;
    std::optional<bool> guests;
    std::optional<bool> smb;
    std::optional<bool> afp;
};

std::string privilegeOf(const std::string& shown) {
    for (std::size_t index = 0; index < privileges.size(); ++index) {
        if (shown == shownPrivileges.at(index)) {
            return privileges.at(index);
        }
    }
    return shown;
}

std::optional<int> indexOf(const std::optional<std::string>& privilege) {
    for (std::size_t index = 0; privilege && index < privileges.size(); ++index) {
        if (*privilege == privileges.at(index)) {
            return static_cast<int>(index);
        }
    }
    return std::nullopt;
}

JSON shareAt(const CommandRun& run, const ServedShares& served, int row) {
    const auto cell = [&](const char* column) { return run.cell(table, column, row); };
    const std::string name = cell("ShareName");
    return {
        {"name", name},
        {"folder", cell("DirectoryPath")},
        {"smb", cell("SMB") == "+" || served.has(name, cell("DirectoryPath"))},
        {"afp", cell("AFS") == "+"},
        {"guests", served.letsGuestsIn(name).value_or(isEqualIgnoringCase(cell("SMBGuestAccess"), "yes"))},
        {"ownerMay", privilegeOf(cell("Owner"))},
        {"groupMay", privilegeOf(cell("Group"))},
        {"everyoneMay", privilegeOf(cell("Everyone"))}};
}

std::string protocolsOf(const JSON& share) {
    const bool smb = share["smb"];
    const bool afp = share["afp"];
    return smb && afp ? "SMB and AFP" : smb ? "SMB" : afp ? "AFP" : unpublished;
}

void list(CommandRun& run) {
    run.requireSMBConf();
    CommandRun::requireDirectory();
    JSON& shares = run.result()["shares"] = JSON::array();
    const ServedShares served(*run.context().reviewer->smbConf());
    const int rows = run.control<NSTableView>(table).numberOfRows();
    for (int row = 0; row < rows; ++row) {
        const JSON share = shareAt(run, served, row);
        run.say(share["name"].get<std::string>() + "\t" + share["folder"].get<std::string>() + "\t" +
                protocolsOf(share) + (share["guests"].get<bool>() ? ", guests" : ""));
        shares.push_back(share);
    }
}

int requireRow(const CommandRun& run, const std::string& name) {
    run.requireSMBConf();
    return run.requireRow(table, "ShareName", name, "there is no share \"%@\"");
}

/// Adds the share to the output, with the values that only the editor shows.
void describe(CommandRun& run, const std::string& name) {
    const int row = run.rowOf(table, "ShareName", name);
    if (row < 0) {
        return;
    }
    run.selectRows(table, {row});
    JSON share = shareAt(run, ServedShares(*run.context().reviewer->smbConf()), row);
    share["owner"] = run.control<NSPopUpButton>("owner").titleOfSelectedItem().value_or("");
    share["group"] = run.control<NSPopUpButton>("group").titleOfSelectedItem().value_or("");
    run.result()["share"] = share;
}

void show(CommandRun& run, const ShareOptions& options) {
    static_cast<void>(requireRow(run, options.name));
    describe(run, options.name);
    run.sayFields("share");
}

/// Chooses a folder through the open panel, so that the editor reads the owner and privileges from the disk.
void chooseFolder(CommandRun& run, const std::string& folder) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(folder, error).lexically_normal();
    if (error || !std::filesystem::is_directory(absolute, error)) {
        CommandRun::fail(stringWithFormat(NSLocalizedString("there is no folder %@"), folder));
    }
    std::string path = absolute.string();
    if (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    if (run.text("directory") != path) {
        run.presenter().choose(path);
        run.perform([&] { run.presenter().interface().findWiredTo("selectDirectory:")->sendAction(); });
        run.noteChange();
    }
}

bool isSharedOverSMB(const CommandRun& run) {
    return run.control<NSPopUpButton>("sharingSMB").indexOfSelectedItem() == 1;
}

/// Selects the row, and corrects the menus if the server shares the share's folder under its name and the
/// list counts that section as another share of the folder: saving would remove the section.
void selectShare(CommandRun& run, const std::string& name, int row) {
    run.selectRows(table, {row});
    const ServedShares served(*run.context().reviewer->smbConf());
    if (!isSharedOverSMB(run) && served.has(name, run.text("directory"))) {
        run.select("sharingSMB", 1);
        run.check("guestAccessButton", served.letsGuestsIn(name).value_or(false));
    }
}

void fill(CommandRun& run, const ShareOptions& options) {
    if (options.folder) {
        chooseFolder(run, *options.folder);
    }
    if (options.owner || options.group) {
        run.check("showSystemUsersGroups", true); // so that every account can be named
    }
    run.setItem("owner", options.owner, "there is no user \"%@\"");
    run.setItem("group", options.group, "there is no group \"%@\"");
    run.setIndex("ownerPrivs", indexOf(options.ownerMay));
    run.setIndex("groupPrivs", indexOf(options.groupMay));
    run.setIndex("everyonePrivs", indexOf(options.everyoneMay));
    run.setIndex("sharingSMB", options.smb ? std::optional(*options.smb ? 1 : 0) : std::nullopt);
    run.setIndex("sharingAFS", options.afp ? std::optional(*options.afp ? 1 : 0) : std::nullopt);
    if (options.guests == true && !isSharedOverSMB(run)) {
        CommandRun::fail(NSLocalizedString("guests may use a share over SMB only: give --smb as well"),
                         CommandStatus::WrongUse);
    }
    run.setBox("guestAccessButton", options.guests);
}

void write(CommandRun& run, const ShareOptions& options) {
    run.press("createNewShare");
    describe(run, options.name);
}

void add(CommandRun& run, ShareOptions options) {
    run.requireSMBConf();
    const int row = run.rowOf(table, "ShareName", options.name);
    if (row < 0) {
        run.selectRows(table, {});
        run.type("shareName", options.name);
        run.noteChange();
        options.smb = options.smb.value_or(!options.afp.value_or(false));
    } else {
        // Adding the same share again changes nothing; adding a different one with its name is a mistake.
        selectShare(run, options.name, row);
    }
    fill(run, options);
    if (row >= 0 && run.changes()) {
        CommandRun::fail(stringWithFormat(
            NSLocalizedString("a different share \"%@\" already exists; use shares set"), options.name));
    }
    const bool isPublished =
        isSharedOverSMB(run) || run.control<NSPopUpButton>("sharingAFS").indexOfSelectedItem() == 1;
    if (row >= 0 && !options.smb && !options.afp && !isPublished) {
        run.setIndex("sharingSMB", 1); // an earlier attempt to add it stopped half way
    }
    write(run, options);
}

/// The folder that the SMB server shares under this name; empty when there is none.
std::string servedFolder(const CommandRun& run, const std::string& name) {
    const SMBShare* const section = run.context().reviewer->smbConf()->section(name);
    const SMBPair* const path = section == nullptr ? nullptr : serverSetting(*section, "path").pair;
    return path == nullptr ? std::string() : std::string(withoutQuotes(path->Value.view()));
}

/// Fails because the SMB server shares `folder` under this name all the same: updating a share does not
/// change the folder of its section.
[[noreturn]] void failAsServed(const std::string& folder, const std::string& name) {
    CommandRun::fail(
        stringWithFormat(NSLocalizedString("the SMB server would still share %@ as \"%@\": remove the "
                                           "share and add it again"),
                         folder, name));
}

/// Fails if the server still lets guests use the share: the list knows only one of that setting's spellings,
/// and only the share's own section.
void requireNoGuests(const CommandRun& run, const std::string& name) {
    const review::Reviewer& reviewer = *run.context().reviewer;
    if (ServedShares(*reviewer.smbConf()).letsGuestsIn(name).value_or(false)) {
        const auto readings = reviewer.otherReadings();
        const auto reading = readings.find(name);
        CommandRun::fail(
            stringWithFormat(NSLocalizedString("the server still lets guests use the share \"%@\".%@"), name,
                             reading == readings.end() ? std::string() : "  " + reading->second));
    }
}

void set(CommandRun& run, const ShareOptions& options) {
    selectShare(run, options.name, requireRow(run, options.name));
    fill(run, options);
    const std::string served = servedFolder(run, options.name);
    if (isSharedOverSMB(run) && options.folder && !served.empty() && served != run.text("directory")) {
        failAsServed(served, options.name);
    }
    write(run, options);
    if (options.smb == false && !run.context().options.isDryRun && !servedFolder(run, options.name).empty()) {
        failAsServed(served, options.name);
    }
    if (options.guests == false && !run.context().options.isDryRun) {
        requireNoGuests(run, options.name);
    }
}

void remove(CommandRun& run, const ShareOptions& options) {
    run.requireSMBConf();
    run.selectToRemove(table, "ShareName", options.name);
    run.press("deleteButton");
    if (!run.context().options.isDryRun && ServedShares(SMBConf()).has(options.name)) {
        CommandRun::fail(stringWithFormat(
            NSLocalizedString(
                "the SMB server still shares \"%@\": smb.conf has another section for it, which "
                "must be removed by hand"),
            options.name));
    }
}

} // namespace

void addShareCommands(CLI::App& parser, CommandOptions& options) {
    CLI::App* const shares = addNoun(parser, "shares", "Folders that this computer shares");
    const auto given = std::make_shared<ShareOptions>();
    const NamedCommands named(*shares, options, given, "The share's name");
    addCommand(*shares, options, "list", CommandKind::Reading, "List all shares", list);
    named.add("show", CommandKind::Reading, "Show a share", show);
    const auto addFields = [&](CLI::App* command) {
        command->add_option("--owner", given->owner, "The folder's owner")->type_name("USER");
        command->add_option("--group", given->group, "The folder's group")->type_name("GROUP");
        for (const auto& [name, privilege] :
             {std::pair("--owner-may", &given->ownerMay), std::pair("--group-may", &given->groupMay),
              std::pair("--everyone-may", &given->everyoneMay)}) {
            command->add_option(name, *privilege, "What they may do with the folder")
                ->type_name("rw|r|w|none")
                ->check(CLI::IsMember({"rw", "r", "w", "none"}).description(""));
        }
        addSwitch(*command, "guests", given->guests, "Guests may use the share over SMB");
        addSwitch(*command, "smb", given->smb, "Publish it over SMB");
        addSwitch(*command, "afp", given->afp, "Publish it over AFP");
    };
    CLI::App* const adding = named.add("add", CommandKind::Writing, "Share a folder",
                                       [](CommandRun& run, const ShareOptions& share) { add(run, share); });
    adding->add_option("FOLDER", given->folder, "The folder")->required();
    addFields(adding);
    CLI::App* const setting = named.add("set", CommandKind::Writing, "Change a share", set);
    setting->add_option("--folder", given->folder, "The folder")->type_name("FOLDER");
    addFields(setting);
    named.add("remove", CommandKind::Writing, "Stop sharing; the folder stays", remove);
}

} // namespace frontend
