#include "review/Plan.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"

namespace review {

namespace {

template <class... Arguments>
std::string sentence(const std::string& key, const Arguments&... arguments) {
    return stringWithFormat(NSLocalizedString(key), arguments...);
}

std::string valuesOf(const PlannedRun& run, std::size_t first) {
    std::string text;
    for (std::size_t index = first; index < run.arguments.size(); ++index) {
        text += (text.empty() ? "" : " ") + run.arguments[index];
    }
    return text;
}

std::string directorySentence(const PlannedRun& run) {
    const std::string& operation = run.arguments[1];
    const std::string& record = run.arguments[2];
    const bool isRecord = run.arguments.size() == 3;
    if (operation == "-delete") {
        return isRecord ? sentence("Delete the record %@.", record)
                        : sentence("Take %@ away from the record %@.", valuesOf(run, 3), record);
    }
    if (operation == "-append") {
        return sentence("Add \"%@\" to \"%@\" of the record %@.", valuesOf(run, 4), run.arguments[3], record);
    }
    return isRecord ? sentence("Make the record %@.", record)
                    : sentence("Set \"%@\" of the record %@ to \"%@\".", run.arguments[3], record,
                               valuesOf(run, 4));
}

std::string sentenceOf(const PlannedRun& run) {
    const std::size_t count = run.arguments.size();
    if (run.tool == platform::systempath::nicl && count > 2) {
        return directorySentence(run);
    }
    if (run.tool == platform::systempath::dscl && count > 2) {
        return sentence("Set the password of %@.", run.arguments[2]);
    }
    if (run.tool == platform::systempath::cp && count > 1) {
        return sentence("Write %@.", run.arguments[1]);
    }
    if (run.tool == platform::systempath::chown && count > 1) {
        return sentence("Give the folder %@ to %@.", run.arguments[1], run.arguments[0]);
    }
    if (run.tool == platform::systempath::chmod && count > 1) {
        return sentence("Give the folder %@ the mode %@.", run.arguments[1], run.arguments[0]);
    }
    return sentence("Make the file server read its settings again.");
}

} // namespace

std::vector<std::string> sentencesOf(const Plan& plan) {
    std::vector<std::string> sentences;
    for (const PlannedAsk& ask : plan.asks) {
        sentences.push_back(ask.isQuestion ? sentence("Ask \"%@\", which counts as answered with \"%@\".",
                                                      ask.title, ask.button)
                                           : sentence("Tell \"%@\".", ask.title));
    }
    for (const PlannedRun& run : plan.runs) {
        sentences.push_back(sentenceOf(run));
    }
    return sentences;
}

} // namespace review
