#include "frontends/script/PlanText.h"

#include "frontends/script/ScriptWords.h"
#include "platform/foundation/NSString.h"

#include <algorithm>

namespace frontend {

namespace {

std::string octal(mode_t mode) {
    constexpr std::size_t digits = 4;
    const std::string text = stringWithFormat("%o", mode);
    return std::string(digits - std::min(digits, text.size()), '0') + text;
}

void addSteps(const review::Plan& plan, std::vector<std::string>* lines) {
    for (const review::PlannedAsk& ask : plan.asks) {
        lines->push_back("would ask " + quotedText(ask.title) + " -> " + quotedText(ask.button));
    }
    for (const review::PlannedRun& run : plan.runs) {
        lines->push_back(runLine(run));
    }
    for (const review::LineChange& change : plan.smbConfLines) {
        const char* sign = change.kind == review::LineChange::Kind::Goes ? "- " : "+ ";
        lines->push_back(std::string("would change /etc/smb.conf ") + sign + quotedText(change.line));
    }
    for (const review::SettingChange& change : plan.afpSettings) {
        lines->push_back("would set " + scriptWord(change.key) + ' ' + quotedText(change.before) + " -> " +
                         quotedText(change.after));
    }
    for (const review::FolderChange& change : plan.folders) {
        if (change.changesAccounts()) {
            lines->push_back("would own " + scriptWord(change.path) + ' ' +
                             scriptWord(change.accountsBefore) + " -> " + scriptWord(change.accountsAfter));
        }
    }
    for (const review::FolderChange& change : plan.folders) {
        if (change.changesMode()) {
            lines->push_back("would mode " + scriptWord(change.path) + ' ' + octal(change.modeBefore) +
                             " -> " + octal(change.modeAfter));
        }
    }
}

} // namespace

std::string runLine(const review::PlannedRun& run) {
    return "would run " + scriptWords(run.tool, run.arguments);
}

std::vector<std::string> planLines(const review::Plan& plan) {
    std::vector<std::string> lines{"plan " + scriptWord(plan.operation)};
    if (plan.blocks.empty()) {
        addSteps(plan, &lines);
    }
    for (const review::Remark& warning : plan.warnings) {
        lines.push_back("warning " + std::string(warning.code) + ' ' + quotedText(warning.sentence));
    }
    for (const review::Remark& block : plan.blocks) {
        lines.push_back("blocked " + std::string(block.code) + ' ' + quotedText(block.sentence));
    }
    return lines;
}

} // namespace frontend
