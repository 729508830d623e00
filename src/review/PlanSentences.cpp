#include "review/Plan.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

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

/// What is said of the records of one folder of the directory.
struct RecordTexts {
    std::string_view folder;
    const char* written;
    const char* deleted;
};

constexpr std::array<RecordTexts, 3> recordTexts = {{
    {"/config/Brindle/", "Write the share \"%@\" to the directory.",
     "Remove the share \"%@\" from the directory."},
    {"/users/", "Write the user \"%@\" to the directory.", "Remove the user \"%@\" from the directory."},
    {"/groups/", "Write the group \"%@\" to the directory.", "Remove the group \"%@\" from the directory."},
}};

/// What becomes of a share, a user or a group as a whole: its parts are the details.
std::string recordSentence(const RecordTexts& texts, const PlannedRun& run) {
    const std::string& operation = run.arguments[1];
    const std::string name = run.arguments[2].substr(texts.folder.size());
    const bool isOfMembers =
        texts.folder == "/groups/" && run.arguments.size() > 4 && run.arguments[3] == "users";
    if (isOfMembers && operation == "-append") {
        return sentence("Add %@ to the group \"%@\".", valuesOf(run, 4), name);
    }
    if (isOfMembers && operation == "-delete") {
        return sentence("Remove %@ from the group \"%@\".", valuesOf(run, 4), name);
    }
    const bool goes = operation == "-delete" && run.arguments.size() == 3;
    return sentence(goes ? texts.deleted : texts.written, name);
}

std::string directorySentence(const PlannedRun& run) {
    const std::string& operation = run.arguments[1];
    const std::string& record = run.arguments[2];
    const auto known = std::ranges::find_if(
        recordTexts, [&record](const RecordTexts& each) { return record.starts_with(each.folder); });
    if (known != recordTexts.end()) {
        return recordSentence(*known, run);
    }
    const bool isRecord = run.arguments.size() == 3;
    if (operation == "-delete") {
        return isRecord ? sentence("Delete the record %@.", record)
                        : sentence("Remove %@ from the record %@.", valuesOf(run, 3), record);
    }
    if (operation == "-append") {
        return sentence("Add \"%@\" to \"%@\" of the record %@.", valuesOf(run, 4), run.arguments[3], record);
    }
    return isRecord ? sentence("Create the record %@.", record)
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
        return sentence("Set the privileges of the folder %@ (mode %@).", run.arguments[1], run.arguments[0]);
    }
    return sentence("Make the file server read its settings again.");
}

} // namespace

std::string runText(const std::string& tool, std::span<const std::string> arguments) {
    std::string text = tool;
    for (const std::string& argument : arguments) {
        text += ' ' + argument;
    }
    return text;
}

std::vector<std::string> sentencesOf(const Plan& plan) {
    std::vector<std::string> sentences;
    for (const PlannedAsk& ask : plan.asks) {
        sentences.push_back(ask.isQuestion ? sentence("Ask \"%@\"; the plan assumes the answer \"%@\".",
                                                      ask.title, ask.button)
                                           : sentence("Show the message \"%@\".", ask.title));
    }
    for (const PlannedRun& run : plan.runs) {
        std::string said = sentenceOf(run);
        if (!run.output.empty()) {
            said = sentence("%@ This will fail: %@", said, run.output.substr(0, run.output.find('\n')));
        }
        if (sentences.empty() || sentences.back() != said) { // a share is written property by property
            sentences.push_back(std::move(said));
        }
    }
    return sentences;
}

} // namespace review
