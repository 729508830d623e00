#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace frontend {

class CommandRun;

enum class CommandKind { Reading, Writing };

/// The options of a command line that names a command.
struct CommandOptions {
    std::function<void(CommandRun&)> carryOut; ///< empty when no command was named
    bool printsJSON = false;
    bool saysYes = false; ///< every confirmation is answered with yes
    bool isDryRun = false;
    CommandKind kind = CommandKind::Reading;
    bool needsApplication = true; ///< false when the command only needs a host
};

/// Adds all commands to the parser. `options` must outlive it.
void addCommands(CLI::App& parser, CommandOptions& options);

// One function for each noun, and the functions that they add their commands with.

void addShareCommands(CLI::App& parser, CommandOptions& options);
void addUserCommands(CLI::App& parser, CommandOptions& options);
void addGroupCommands(CLI::App& parser, CommandOptions& options);
void addPublicCommands(CLI::App& parser, CommandOptions& options);
void addSettingsCommands(CLI::App& parser, CommandOptions& options);
void addServerCommands(CLI::App& parser, CommandOptions& options);
void addHistoryCommands(CLI::App& parser, CommandOptions& options);
void addAccessCommands(CLI::App& parser, CommandOptions& options);
void addSessionCommands(CLI::App& parser, CommandOptions& options);
void addDoctorCommand(CLI::App& parser, CommandOptions& options);

/// Adds a noun, such as "shares", and returns its parser, which gets the commands.
CLI::App* addNoun(CLI::App& parser, const std::string& name, const std::string& description);

/// Adds the command `name` to `parent`, with --json and, if it writes, --yes and --dry-run. Returns its
/// parser.
CLI::App* addCommand(CLI::App& parent, CommandOptions& options, const std::string& name, CommandKind kind,
                     const std::string& description, std::function<void(CommandRun&)> carryOut);

/// Adds the commands of a noun that concern one thing. Each reads its NAME into `given`, with which it is
/// then carried out.
template <class Given>
class NamedCommands {
  public:
    /// `whatItNames` explains NAME. `noun` and `options` must outlive this object.
    NamedCommands(CLI::App& noun, CommandOptions& options, std::shared_ptr<Given> given,
                  const char* whatItNames)
        : noun_(noun), options_(options), given_(std::move(given)), whatItNames_(whatItNames) {}

    CLI::App* add(const std::string& name, CommandKind kind, const std::string& description,
                  void (*carryOut)(CommandRun& run, const Given& given)) const {
        CLI::App* const command =
            addCommand(noun_, options_, name, kind, description,
                       [given = given_, carryOut](CommandRun& run) { carryOut(run, *given); });
        command->add_option("NAME", given_->name, whatItNames_)->required();
        return command;
    }

  private:
    CLI::App& noun_;
    CommandOptions& options_;
    std::shared_ptr<Given> given_;
    const char* whatItNames_;
};

/// Adds the two flags --NAME and --no-NAME, which turn something on or off; with neither, `state` stays
/// empty.
void addSwitch(CLI::App& command, const std::string& name, std::optional<bool>& state,
               const std::string& description);

} // namespace frontend
