#include "frontends/cli/CommandRun.h"

#include <memory>

namespace frontend {

void addServerCommands(CLI::App& parser, CommandOptions& options) {
    CLI::App* const servers = parser.add_subcommand("servers", "The file servers");
    servers->fallthrough();
    servers->require_subcommand(1);
    const auto which = std::make_shared<std::string>();
    addCommand(*servers, options, "restart", CommandKind::Writing, "Have a server read its settings again",
               [which](CommandRun& run) {
                   run.noteChange();
                   run.send(*which == "afp" ? "restartAFS:" : "restartSMB:");
               })
        ->add_option("SERVER", *which, "smb or afp")
        ->required()
        ->check(CLI::IsMember({"smb", "afp"}).description(""));
}

} // namespace frontend
