#include "frontends/cli/CommandOptions.h"

#include <utility>

namespace frontend {

void addCommands(CLI::App& parser, CommandOptions& options) {
    addShareCommands(parser, options);
    addUserCommands(parser, options);
    addGroupCommands(parser, options);
    addPublicCommands(parser, options);
    addSettingsCommands(parser, options);
    addServerCommands(parser, options);
    addHistoryCommands(parser, options);
    addAccessCommands(parser, options);
    addSessionCommands(parser, options);
    addDoctorCommand(parser, options);
    parser.require_subcommand(0, 1);
}

CLI::App* addNoun(CLI::App& parser, const std::string& name, const std::string& description) {
    CLI::App* const noun = parser.add_subcommand(name, description);
    noun->fallthrough();
    noun->require_subcommand(1);
    return noun;
}

CLI::App* addCommand(CLI::App& parent, CommandOptions& options, const std::string& name, CommandKind kind,
                     const std::string& description, std::function<void(CommandRun&)> carryOut) {
    CLI::App* const command = parent.add_subcommand(name, description);
    command->fallthrough(); // --root and --system may be anywhere
    command->add_flag("--json", options.printsJSON, "Print one JSON object");
    if (kind == CommandKind::Writing) {
        command->add_flag("--yes", options.saysYes, "Answer every confirmation with yes");
        command->add_flag("--dry-run", options.isDryRun, "Print what would be done, and do nothing");
    }
    command->final_callback([&options, kind, carryOut = std::move(carryOut)] {
        options.kind = kind;
        options.carryOut = carryOut;
    });
    return command;
}

void addSwitch(CLI::App& command, const std::string& name, std::optional<bool>& state,
               const std::string& description) {
    CLI::Option* const on = command.add_flag_callback(
        "--" + name, [&state] { state = true; }, description);
    command
        .add_flag_callback(
            "--no-" + name, [&state] { state = false; }, "The opposite of --" + name)
        ->excludes(on);
}

} // namespace frontend
