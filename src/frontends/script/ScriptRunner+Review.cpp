#include "frontends/script/PlanText.h"
#include "frontends/script/ScriptRunner.h"
#include "frontends/script/ScriptWords.h"
#include "platform/appkit/NSButton.h"

// The commands that plan actions, review them, and take them back.

namespace frontend {

review::Reviewer& ScriptRunner::reviewer() const {
    review::Reviewer* found = findReviewer_ ? findReviewer_() : nullptr;
    if (found == nullptr) {
        fail("nothing can be planned here");
    }
    return *found;
}

void ScriptRunner::plan(const Words& words) {
    review::Plan plan;
    if (words[0] == "press") {
        plan = reviewer().planPress(pushButton(words[1]));
    } else if (words[0] == "send") {
        plan = reviewer().planAction(usableSender(words[1]));
    } else {
        fail("write this command as: plan press OUTLET|send OPERATION");
    }
    if (!plan.failure.empty()) {
        fail(plan.failure);
    }
    for (const std::string& line : planLines(plan)) {
        output_->line(line);
    }
}

void ScriptRunner::review(const Words& words) {
    if (words[0] != "on" && words[0] != "off") {
        fail("actions are reviewed on or off, not " + quotedText(words[0]));
    }
    reviewer().setQuestion(words[0] == "on" ? &review::Reviewer::askAboutWarnings : nullptr);
}

void ScriptRunner::reread(const Words& /*words*/) {
    const review::Reviewer& found = reviewer();
    perform([&] { found.reread(); });
}

const review::History& ScriptRunner::pastChanges() const {
    if (history_ == nullptr) {
        fail("no history is kept here");
    }
    return *history_;
}

void ScriptRunner::history(const Words& /*words*/) {
    const auto entries = pastChanges().entries();
    if (!entries.isOk()) {
        fail(entries.status().text());
    }
    for (const review::HistoryEntry& entry : *entries) {
        output_->line(std::to_string(entry.number) + " " + timeOf(entry) + " " + quotedText(entry.user) +
                      " " + quotedText(entry.title) + " " + outcomeOf(entry));
    }
}

void ScriptRunner::undo(const Words& words) {
    std::optional<std::int64_t> wanted;
    if (!words.empty()) {
        wanted = number(words[0]);
    }
    const auto plan = pastChanges().describeUndo(wanted);
    if (!plan.isOk()) {
        fail(plan.status().text());
    }
    perform([&] {
        const auto status = review::announceUndo(*plan) ? pastChanges().undo(*plan) : platform::Status();
        if (!status.isOk()) {
            review::showUndoFailed(*plan, status);
        }
        reviewer().rereadEverything();
    });
}

} // namespace frontend
