#include "access/Doctor.h"
#include "frontends/cli/CommandRun.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

namespace frontend {

namespace {

using accesscheck::Finding;

JSON orNull(const std::optional<std::string>& text) {
    return text ? JSON(*text) : JSON();
}

void doctor(CommandRun& run) {
    const accesscheck::Examination found = accesscheck::examine(run.context().host);
    JSON& list = run.result()["findings"] = JSON::array();
    for (const Finding& each : found.findings) {
        const bool isProblem = each.level == Finding::Level::Problem;
        list.push_back({{"level", isProblem ? "problem" : "notice"},
                        {"code", each.code},
                        {"text", each.text},
                        {"where", each.where},
                        {"remedy", each.remedy},
                        {"share", orNull(each.share)},
                        {"user", orNull(each.user)}});
        run.say(
            stringWithFormat(isProblem ? NSLocalizedString("%@ (%@)") : NSLocalizedString("Note: %@ (%@)"),
                             each.text, each.where));
        if (!each.remedy.empty()) {
            run.say("    " + each.remedy);
        }
    }
    run.result()["notes"] = found.notes;
    for (const std::string& note : found.notes) {
        run.say(note);
    }
    if (found.hasProblems()) {
        run.endWith(CommandStatus::HasProblems);
    } else {
        run.say(NSLocalizedString("No problem was found."));
    }
}

} // namespace

void addDoctorCommand(CLI::App& parser, CommandOptions& options) {
    addCommand(parser, options, "doctor", CommandKind::Reading,
               "Look for what is wrong with shares, accounts, settings and servers", doctor)
        ->parse_complete_callback([&options] { options.needsApplication = false; });
}

} // namespace frontend
