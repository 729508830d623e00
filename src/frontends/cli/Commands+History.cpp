#include "frontends/cli/CommandRun.h"
#include "platform/appkit/NSAlert.h"
#include "platform/foundation/NSBundle.h"

#include <memory>

namespace frontend {

namespace {

JSON entryOf(const review::HistoryEntry& entry) {
    return {{"number", entry.number},
            {"time", review::timeOf(entry)},
            {"user", entry.user},
            {"title", entry.title},
            {"outcome", outcomeOf(entry, hasGoneWrong(entry))}};
}

void history(CommandRun& run) {
    const auto entries = run.context().history.entries();
    if (!entries.isOk()) {
        CommandRun::fail(entries.status().text());
    }
    JSON& list = run.result()["history"] = JSON::array();
    for (const review::HistoryEntry& entry : *entries) {
        list.push_back(entryOf(entry));
        run.say(std::to_string(entry.number) + "\t" + review::timeOf(entry) + "\t" + entry.user + "\t" +
                entry.title + "\t" + outcomeOf(entry, hasGoneWrong(entry)));
    }
}

/// Asks if something will not be restored. Ends the command unless the answer is yes.
void confirmLosses(CommandRun& run, const review::UndoPlan& plan) {
    if (plan.losses.empty()) {
        return;
    }
    std::string text;
    for (const std::string& loss : plan.losses) {
        text += loss + "  ";
    }
    run.perform([&] {
        NSRunAlertPanel(NSLocalizedString("Undo"), "%@", NSLocalizedString("Yes"), NSLocalizedString("No"),
                        std::nullopt, text + plan.question);
    });
}

void undo(CommandRun& run, std::optional<std::int64_t> number) {
    const auto plan = run.context().history.describeUndo(number, review::ChangedFile::KeepsOtherSections);
    if (!plan.isOk()) {
        CommandRun::fail(plan.status().text());
    }
    if (!plan->refusal.empty()) {
        CommandRun::fail(plan->refusal);
    }
    run.result()["undo"] = entryOf(plan->entry);
    run.say(run.context().options.isDryRun ? plan->question : plan->title);
    for (const std::string& loss : plan->losses) {
        run.say(loss);
    }
    run.result()["losses"] = plan->losses;
    const review::Plan steps = run.context().reviewer->planUndo(*plan);
    if (run.context().options.isDryRun) {
        if (!steps.runs.empty() || !steps.failure.empty()) { // otherwise everything is as before already
            run.showPlan(steps);
        }
        return;
    }
    if (!steps.blocks.empty()) {
        CommandRun::fail(steps.blocks.front().sentence);
    }
    confirmLosses(run, *plan);
    std::optional<platform::Status> status;
    run.perform([&] { status = run.context().history.undo(*plan); });
    if (!status || !status->isOk()) {
        CommandRun::fail(status ? status->text()
                                : NSLocalizedString("it was not carried out; the system's log says why"));
    }
    if (run.presenter().runs() == 0) {
        run.say("unchanged"); // somebody else has taken it back; for programs: not translated
    }
    run.result()["changed"] = run.presenter().runs() > 0;
    run.result()["runs"] = run.presenter().runs();
}

} // namespace

void addHistoryCommands(CLI::App& parser, CommandOptions& options) {
    addCommand(parser, options, "history", CommandKind::Reading, "List what was changed, newest first",
               history);
    const auto number = std::make_shared<std::optional<std::int64_t>>();
    addCommand(parser, options, "undo", CommandKind::Writing, "Take a change back",
               [number](CommandRun& run) { undo(run, *number); })
        ->add_option("NUMBER", *number, "The change's number; the newest without one");
}

} // namespace frontend
