#include "frontends/cli/CommandRun.h"
#include "model/SMBConf.h"
#include "model/ServerSettings.h"
#include "platform/appkit/NSMatrix.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <span>

namespace frontend {

namespace {

/// The kind of control that a setting has.
enum class Kind {
    Text,  ///< a field
    Count, ///< a field for a number, or nothing
    Limit, ///< a field for a number, where -1 means no limit
    OnOff, ///< a check box
    Level, ///< the pop-up of security levels
    Number ///< a pop-up, by its tags
};

struct Setting {
    const char* key;
    const char* outlet;
    Kind kind;
    int cell = -1; ///< the cell of a matrix of boxes, counted row by row
};

constexpr Setting smbSettings[] = {
    {"netbios-name", "smbNetBiosName", Kind::Text},
    {"workgroup", "smbWorkGroup", Kind::Text},
    {"description", "smbServerInfoString", Kind::Text},
    {"wins-server", "smbWINSServer", Kind::Text},
    {"local-master", "smbWorkGroupMaster", Kind::OnOff},
    {"security", "smbSecurity", Kind::Level},
    {"max-connections", "smbMaxConnections", Kind::Count},
    {"code-page", "smbCodePage", Kind::Number},
    {"hidden-files", "smbHideFiles", Kind::Text},
    {"vetoed-files", "smbVetoFiles", Kind::Text},
    {"hide-dot-files", "smbHideDotFiles", Kind::OnOff},
    {"home-folders", "smbShareHomeDirs", Kind::OnOff},
    {"home-folders-browseable", "smbHomeDirsBrowseable", Kind::OnOff},
    {"home-folders-read-only", "smbHomeDirsReadOnly", Kind::OnOff},
};

constexpr Setting afpSettings[] = {
    {"greeting", "greeting", Kind::Text},
    {"greeting-once", "greetingOnce", Kind::OnOff},
    {"text-encoding", "afpTextEncoding", Kind::Number},
    {"announce", "useRendezvous", Kind::OnOff},
    {"guests", "allowGuestAccess", Kind::OnOff},
    {"administrators-see-all", "adminSpPrivsButton", Kind::OnOff},
    {"max-connections", "numConnections", Kind::Limit},
    {"max-guests", "numGuestConnections", Kind::Limit},
    {"port", "tcpPort", Kind::Count},
    {"disconnect-idle", "idleDisconnectEnable", Kind::OnOff},
    {"idle-minutes", "idleDisconnectTime", Kind::Count},
    {"idle-guests", "idleDisconnectUsers", Kind::OnOff, 0},
    {"idle-registered", "idleDisconnectUsers", Kind::OnOff, 1},
    {"idle-administrators", "idleDisconnectUsers", Kind::OnOff, 2},
    {"idle-open-files", "idleDisconnectUsers", Kind::OnOff, 3},
    {"log", "loggingEnable", Kind::OnOff},
    {"log-file", "logFilePath", Kind::Text},
    {"log-days", "logRolloverText", Kind::Limit},
    {"log-logins", "loggingAttributes1", Kind::OnOff, 0},
    {"log-logouts", "loggingAttributes1", Kind::OnOff, 1},
    {"log-new-folders", "loggingAttributes2", Kind::OnOff, 0},
    {"log-new-files", "loggingAttributes2", Kind::OnOff, 1},
    {"log-opened-files", "loggingAttributes3", Kind::OnOff, 0},
    {"log-deleted-items", "loggingAttributes3", Kind::OnOff, 1},
};

/// In the order of the pop-up's items, whose own titles are translated.
constexpr const char* securityLevels[] = {"User", "Share"};

struct Page {
    const char* name;
    std::span<const Setting> settings;
    const char* save; ///< the operation that saves the settings
};

constexpr Page smbPage{"smb", smbSettings, "updateSMBProperties:"};
constexpr Page afpPage{"afp", afpSettings, "updateAFSProperties:"};

bool isOn(const CommandRun& run, const Setting& setting) {
    if (setting.cell < 0) {
        return run.control<NSButton>(setting.outlet).state() == NSOnState;
    }
    const auto& boxes = run.control<NSMatrix>(setting.outlet);
    const int columns = boxes.numberOfColumns();
    return boxes.stateAt(setting.cell / columns, setting.cell % columns) == NSOnState;
}

std::string valueOf(const CommandRun& run, const Setting& setting) {
    switch (setting.kind) {
    case Kind::Text:
    case Kind::Count:
    case Kind::Limit:
        return run.text(setting.outlet);
    case Kind::OnOff:
        return isOn(run, setting) ? "yes" : "no";
    case Kind::Level: {
        const auto& popUp = run.control<NSPopUpButton>(setting.outlet);
        const int item = popUp.indexOfSelectedItem();
        return item >= 0 && item < std::ssize(securityLevels)
                   ? securityLevels[item]
                   : popUp.titleOfSelectedItem().value_or(""); // a level that only smb.conf names
    }
    case Kind::Number:
        return std::to_string(run.control<NSPopUpButton>(setting.outlet).tagOfSelectedItem());
    }
    return {};
}

void requireReadable(const CommandRun& run, const Page& page) {
    if (&page == &smbPage) {
        run.requireSMBConf();
    }
}

void show(CommandRun& run, const Page& page) {
    requireReadable(run, page);
    JSON& values = run.result()[page.name] = JSON::object();
    for (const Setting& setting : page.settings) {
        const std::string value = valueOf(run, setting);
        values[setting.key] = value;
        run.say(std::string(setting.key) + ": " + value);
    }
}

[[noreturn]] void refuse(const Setting& setting, const std::string& value) {
    CommandRun::fail(
        stringWithFormat(NSLocalizedString("%@ cannot be \"%@\""), std::string(setting.key), value));
}

int itemFor(const CommandRun& run, const Setting& setting, const std::string& value) {
    const auto& popUp = run.control<NSPopUpButton>(setting.outlet);
    if (setting.kind == Kind::Number) {
        return popUp.indexOfItemWithTag(longLongValue(value));
    }
    const auto* found = std::ranges::find_if(
        securityLevels, [&](const char* level) { return isEqualIgnoringCase(level, value); });
    return found == std::end(securityLevels) ? -1 : static_cast<int>(found - securityLevels);
}

NSControl& control(const CommandRun& run, const Setting& setting) {
    return run.control<NSControl>(setting.outlet);
}

/// True when the value could be a number in such a field. The field's formatter checks it again when it is
/// typed. A larger one than the servers know would be stored as another.
bool isNumberFor(Kind kind, std::string_view value) {
    if (kind != Kind::Limit && kind != Kind::Count) {
        return true;
    }
    const std::string_view digits = value.substr(kind == Kind::Limit && value.starts_with('-') ? 1 : 0);
    return digits.find_first_not_of("0123456789") == std::string_view::npos &&
           (kind == Kind::Count || !digits.empty()) &&
           longLongValue(std::string(value)) <= std::numeric_limits<std::int32_t>::max();
}

void apply(CommandRun& run, const Setting& setting, const std::string& value) {
    if (valueOf(run, setting) == value) {
        return;
    }
    if (!control(run, setting).isEnabled()) {
        CommandRun::fail(
            stringWithFormat(NSLocalizedString("%@ cannot be changed while what it belongs to is off"),
                             std::string(setting.key)));
    }
    if (!isNumberFor(setting.kind, value)) {
        refuse(setting, value);
    }
    if (setting.kind == Kind::Text || setting.kind == Kind::Count || setting.kind == Kind::Limit) {
        run.set(setting.outlet, value);
    } else if (setting.kind == Kind::OnOff) {
        if (value != "yes" && value != "no") {
            refuse(setting, value);
        }
        if (setting.cell < 0) {
            run.setBox(setting.outlet, value == "yes");
        } else {
            auto& boxes = run.control<NSMatrix>(setting.outlet);
            const int columns = boxes.numberOfColumns();
            run.perform([&] { boxes.performClickAt(setting.cell / columns, setting.cell % columns); });
            run.noteChange();
        }
    } else {
        const int index = itemFor(run, setting, value);
        if (index < 0) {
            refuse(setting, value);
        }
        run.setIndex(setting.outlet, index);
    }
    if (setting.kind != Kind::Level && valueOf(run, setting) != value) {
        refuse(setting, value); // "abc" for a number, for example
    }
}

/// Fails if the server still shares the users' home folders: the page shows one section for them.
void requireNoHomes(const CommandRun& run) {
    const SMBConf conf;
    const bool isShared = std::ranges::any_of(conf.Entries(), [](const auto& entry) {
        return entry->Type() == SMBGroup && isServerHomes(entry->ShareName());
    });
    if (isShared && !run.context().options.isDryRun) {
        CommandRun::fail(
            NSLocalizedString("the SMB server still shares the home folders: smb.conf has another "
                              "section for them, which must be removed by hand"));
    }
}

void set(CommandRun& run, const Page& page, const std::vector<std::string>& words) {
    if (words.size() % 2 != 0) {
        CommandRun::fail(NSLocalizedString("each setting needs a value"), CommandStatus::WrongUse);
    }
    requireReadable(run, page);
    using Given = std::pair<const Setting*, std::string>;
    std::vector<Given> given;
    for (std::size_t index = 0; index < words.size(); index += 2) {
        const auto found = std::ranges::find(page.settings, words[index], &Setting::key);
        if (found == page.settings.end()) {
            CommandRun::fail(stringWithFormat(NSLocalizedString("there is no setting \"%@\""), words[index]),
                             CommandStatus::WrongUse);
        }
        given.emplace_back(&*found, words[index + 1]);
    }
    const bool isGivenOff = std::ranges::any_of(given, [](const Given& each) {
        return each.first->outlet == std::string_view("smbShareHomeDirs") && each.second == "no";
    });
    // What belongs to a setting that is still off waits until that has been turned on.
    for (std::size_t before = given.size() + 1; given.size() < before;) {
        before = given.size();
        std::vector<Given> waiting;
        for (Given& each : given) {
            if (control(run, *each.first).isEnabled()) {
                apply(run, *each.first, each.second);
            } else {
                waiting.push_back(std::move(each));
            }
        }
        given = std::move(waiting);
    }
    for (const auto& [setting, value] : given) {
        apply(run, *setting, value); // fails, unless it has that value
    }
    run.send(page.save);
    if (isGivenOff) {
        requireNoHomes(run);
    }
}

void addPage(CLI::App& parser, CommandOptions& options, const Page& page, const char* description) {
    CLI::App* const settings = addNoun(parser, page.name, description);
    addCommand(*settings, options, "show", CommandKind::Reading, "Show the settings",
               [&page](CommandRun& run) { show(run, page); });
    const auto words = std::make_shared<std::vector<std::string>>();
    addCommand(*settings, options, "set", CommandKind::Writing, "Change settings",
               [&page, words](CommandRun& run) { set(run, page, *words); })
        ->add_option("KEY VALUE", *words, "Settings by the names that show prints, each with its value")
        ->required();
}

} // namespace

void addSettingsCommands(CLI::App& parser, CommandOptions& options) {
    addPage(parser, options, smbPage, "The SMB server's settings");
    addPage(parser, options, afpPage, "The AFP server's settings");
}

} // namespace frontend
