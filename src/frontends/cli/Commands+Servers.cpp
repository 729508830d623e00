#include "frontends/cli/CommandRun.h"
#include "platform/foundation/Computer.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "review/ServerChange.h"

#include <memory>

namespace frontend {

namespace {

const platform::Computer& computer() {
    const auto& found = platform::Host::current().services().computer;
    if (!found) {
        CommandRun::fail(
            NSLocalizedString("an embedded root has a server only while Brindle runs with --serve"));
    }
    return *found;
}

void status(CommandRun& run) {
    const platform::ServerLine smb = computer().smbServer();
    const std::string afp = computer().afpServerLine();
    const std::string missing = computer().whatIsMissing();
    run.result()["smb"] = {{"text", smb.text}, {"canBeStarted", smb.canBeStarted}};
    run.result()["afp"] = {{"text", afp}};
    run.result()["missing"] = missing;
    for (const std::string& line : {smb.text, afp, missing}) {
        if (!line.empty()) {
            run.say(line);
        }
    }
}

void start(CommandRun& run, bool atBoot) {
    const platform::ServerLine smb = computer().smbServer();
    if (smb.text.empty()) {
        CommandRun::fail(computer().whatIsMissing());
    }
    if (!smb.canBeStarted && !atBoot) {
        run.finishUnchanged();
        return;
    }
    const auto change = atBoot ? review::ServerChange::StartAtBoot : review::ServerChange::Start;
    run.write(review::serverRun(change), [change] { review::changeServer(change); });
}

void restart(CommandRun& run, const std::string& operation) {
    const review::Plan plan = run.context().reviewer->planSend(operation);
    if (plan.failure.empty() && plan.runs.empty()) {
        run.finishUnchanged(); // no such server runs
        return;
    }
    run.noteChange();
    run.send(operation);
}

} // namespace

void addServerCommands(CLI::App& parser, CommandOptions& options) {
    CLI::App* const servers = addNoun(parser, "servers", "The file servers");
    addCommand(*servers, options, "status", CommandKind::Reading, "Say whether the computer's servers run",
               status);
    const auto atBoot = std::make_shared<bool>(false);
    addCommand(*servers, options, "start", CommandKind::Writing, "Start the computer's SMB server",
               [atBoot](CommandRun& run) { start(run, *atBoot); })
        ->add_flag("--at-boot", *atBoot, "Make it start with the computer instead");
    const auto which = std::make_shared<std::string>();
    addCommand(*servers, options, "restart", CommandKind::Writing, "Make a server read its settings again",
               [which](CommandRun& run) { restart(run, *which == "afp" ? "restartAFS:" : "restartSMB:"); })
        ->add_option("SERVER", *which, "smb or afp")
        ->required()
        ->check(CLI::IsMember({"smb", "afp"}).description(""));
}

} // namespace frontend
