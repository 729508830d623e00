#include "platform/foundation/NSDictionary.h"
#include "review/TextDifference.h"
#include "support/DrawnState.h"

namespace {

using review::LineChange;

class Plans : public DrawnState {
  protected:
    static std::vector<std::string> runsOf(const review::Plan& plan) {
        std::vector<std::string> texts;
        for (const review::PlannedRun& run : plan.runs) {
            texts.push_back(RecordedRun{run.tool, run.arguments}.text());
        }
        return texts;
    }

    /// Performs the planned action with the plan's answers, and compares.
    void expectSameAs(const review::Plan& plan, NSControl& sender) {
        for (const review::PlannedAsk& ask : plan.asks) {
            host.answerAlert(ask.title, ask.button);
        }
        host.shownRuns.clear();
        NSApp().dispatch([&] { sender.sendAction(); });
        EXPECT_EQ(runsOf(plan), host.shownRuns);
        EXPECT_EQ(plan.smbConfAfter, conf());
        for (const review::SettingChange& change : plan.afpSettings) {
            const auto settings = NSMutableDictionary::dictionaryWithData(afp())->values();
            const auto found =
                std::ranges::find(settings, change.key, &std::pair<std::string, std::string>::first);
            EXPECT_EQ(found == settings.end() ? "" : found->second, change.after) << change.key;
        }
        for (const review::FolderChange& change : plan.folders) {
            struct stat status {};

            ASSERT_EQ(::stat(change.path.c_str(), &status), 0) << change.path;
            EXPECT_EQ(status.st_uid, change.ownerAfter);
            EXPECT_EQ(status.st_gid, change.groupAfter);
            EXPECT_EQ(status.st_mode & 07777U, change.modeAfter);
        }
        if (NSWindow* sheet = NSApp().attachedSheet()) { // the password sheet of a new user
            enterPassword(*sheet);
        }
    }

    void enterPassword(NSWindow& sheet) {
        type("passwordSecureText1", "secret");
        type("passwordSecureText2", "secret");
        const review::Plan plan = reviewer->planSend("setPassword:");
        EXPECT_TRUE(sheet.isVisible());
        EXPECT_EQ(plan.runs.size(), 1U);
        expectSameAs(plan, *interface->findWiredTo("setPassword:"));
    }
};

TEST_P(Plans, SayRunForRunAndLineForLineWhatTheActionThenDoesAndChangeNothing) {
    fillDirectory();
    fillFiles();
    host.allowUnaskedAlerts(); // for the migration's alert at the start
    begin();
    for (int step = 0; step < 12; ++step) {
        edit();
        const std::string operation = anOperation();
        SCOPED_TRACE(operation + ", step " + std::to_string(step) + "\n" + controls());
        NSControl* sender = interface->findWiredTo(operation);
        if (sender == nullptr || !sender->isEnabled()) {
            continue;
        }
        const auto filesBefore = everything();
        const std::string controlsBefore = controls();
        const review::Plan plan = reviewer->planSteps(*sender);
        ASSERT_EQ(plan.failure, "");
        EXPECT_EQ(everything(), filesBefore);
        EXPECT_EQ(controls(), controlsBefore);
        EXPECT_EQ(plan.smbConfLines,
                  review::lineChanges(review::linesOf(conf()), review::linesOf(plan.smbConfAfter)));
        if (plan.blocks.empty()) {
            expectSameAs(plan, *sender);
        } else {
            host.shownRuns.clear();
            sender->sendAction();
            EXPECT_EQ(host.shownRuns, std::vector<std::string>());
        }
        if (HasFailure()) {
            return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Drawn, Plans, testing::Range(1U, 26U));

TEST(TextDifference, HasTheFewestLinesInOrder) {
    const auto changes = [](std::string_view before, std::string_view after) {
        std::string text;
        for (const LineChange& change :
             review::lineChanges(review::linesOf(before), review::linesOf(after))) {
            text += (change.kind == LineChange::Kind::Goes ? "-" : "+") + change.line +
                    std::to_string(change.number);
        }
        return text;
    };
    EXPECT_EQ(changes("a\nb\nc\n", "a\nb\nc\n"), "");
    EXPECT_EQ(changes("", "a\n\n"), "+a1+2");
    EXPECT_EQ(changes("a\nb\nc\nd\n", "a\nx\nc\nd\ne\n"), "-b2+x2+e5");
    EXPECT_EQ(changes("a\nb\na\nb\n", "b\na\n"), "-a1-b4");
    EXPECT_EQ(changes("x\na\nb\nc\n", "a\nb\ny\nc\n"), "-x1+y3");
    std::string before;
    std::string after;
    std::string expected;
    for (std::size_t section = 0; section < 3000; ++section) { // more changes than a search may take
        const std::string header = "[s" + std::to_string(section) + "]\n";
        before += header + "path = /tmp\n# a note\n";
        after += header + "path = /tmp\n";
        expected += "-# a note" + std::to_string(3 * section + 3);
    }
    EXPECT_EQ(changes(before, after), expected);
}

} // namespace
