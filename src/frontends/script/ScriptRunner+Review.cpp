#include "frontends/script/PlanText.h"
#include "frontends/script/ScriptRunner.h"
#include "frontends/script/ScriptWords.h"
#include "platform/appkit/NSButton.h"

// The commands that say beforehand what an action would do.

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

} // namespace frontend
