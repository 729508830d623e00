#include "platform/appkit/Interface.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSTextView.h"
#include "platform/appkit/NSWindow.h"
#include "platform/appkit/ObjectClass.h"
#include "platform/foundation/NSBundle.h"
#include "support/TestHost.h"
#include "ui/AboutBox.h"
#include "ui/KWIntegerFormatter.h"
#include "ui/KWSMBFormatter.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// One edit by a user: the field's text and selection before, and the text and caret afterwards.
struct Edit {
    std::string before;
    NSRange selected;
    std::string after;
    std::size_t caret;
    std::string refusal; ///< the error text; empty when the edit is accepted
};

void expectEdits(TestHost& host, const std::shared_ptr<NSFormatter>& formatter,
                 const std::vector<Edit>& edits) {
    NSTextField field;
    field.setFormatter(formatter);
    for (const Edit& edit : edits) {
        SCOPED_TRACE(edit.before + " -> " + edit.after);
        host.refusals.clear();
        field.setStringValue(edit.before);
        EXPECT_EQ(field.proposeEdit(edit.after, edit.caret, edit.selected), edit.refusal.empty());
        EXPECT_EQ(field.stringValue(), edit.refusal.empty() ? edit.after : edit.before);
        if (!edit.refusal.empty()) {
            EXPECT_EQ(host.refusals, std::vector<std::string>{edit.refusal});
        }
    }
}

TEST(KWIntegerFormatter, AcceptsOnlyDigitsWhetherTypedOrPasted) {
    TestHost host;
    const std::string refusal = "Input is not an integer";
    const auto formatter = std::make_shared<KWIntegerFormatter>();
    formatter->setFormat("##0");
    expectEdits(host, formatter,
                {{"12", {2, 0}, "12a", 3, refusal},
                 {"12", {2, 0}, "123 4", 5, refusal},
                 {"12", {0, 0}, "-12", 1, refusal},
                 {"123", {3, 0}, "12", 2, ""},
                 {"123", {1, 1}, "193", 2, ""},
                 {"", {0, 0}, "\u0661\u0662", 2, ""}, // Arabic digits
                 {"", {0, 0}, "\u00bd", 1, refusal},
                 {"\U0001d7d9", {2, 0}, "\U0001d7d9x", 3, refusal}, // a digit of two UTF-16 units
                 {"123", {1, 1}, "1x3", 2, refusal},
                 // Only what is typed is checked, not the program's text before or after it.
                 {"n/a", {3, 0}, "n/a5", 4, ""},
                 {"n/a", {0, 0}, "5n/a", 1, ""},
                 {"5n/a", {2, 0}, "5/a", 1, ""}});
    EXPECT_EQ(host.beeps, 0) << "the controller beeps, not the formatter";
}

TEST(KWSMBFormatter, KeepsNamesToFifteenCharactersWithoutABlankAtTheEnd) {
    TestHost host;
    expectEdits(host, std::make_shared<KWSMBFormatter>(),
                {{"ABCDEFGHIJKLMNO", {15, 0}, "ABCDEFGHIJKLMNOP", 16, "String too long."},
                 {"ABCDEFGHIJKLMN", {14, 0}, "ABCDEFGHIJKLMNO", 15, ""},
                 {"OFFICE", {6, 0}, "OFFICE ", 7, "No Spaces."},
                 {"OFFICEX", {3, 0}, "OFF ICEX", 4, ""},
                 {"OFFICE", {6, 0}, "OFFICE\t", 7, ""},
                 {"OFFICE", {0, 6}, "", 0, ""},
                 // Fourteen letters and a character of two UTF-16 units.
                 {"ABCDEFGHIJKLMN", {14, 0}, "ABCDEFGHIJKLMN\U0001f600", 16, "String too long."}});
    EXPECT_EQ(host.beeps, 3) << "one for each refusal";
    EXPECT_EQ(KWSMBFormatter().stringForObjectValue(std::int64_t{15}), std::nullopt)
        << "a number shows nothing";
}

/// The project's panel with credits whose length the test chooses.
class AboutPanel : public testing::Test {
  protected:
    AboutPanel() : host_({.strings = {{"Version %@", "Version %@"}}}) {}

    void setCredits(std::size_t characters) {
        host_.write("resources/Credits.rtf", "{\\rtf1\\ansi " + std::string(characters, 'x') + "}");
    }

    void show() {
        AboutBox::sharedInstance().showPanel(nullptr);
        panel_ = find<NSWindow>("aboutWindow");
        credits_ = find<NSTextView>("creditsField");
        scrolled_ = credits_->scrolled.connect([this] { ++steps_; });
    }

    template <class Kind>
    Kind* find(const std::string& name) {
        return dynamic_cast<Kind*>(host_.loadedInterface->find(name));
    }

    /// Ticks until nothing moves any more, and returns how often the credits were scrolled.
    int runPass() {
        host_.now += 3.0;
        const int before = steps_;
        int last = -1;
        while (steps_ != last) {
            last = steps_;
            host_.fireTimers();
        }
        return steps_ - before;
    }

    TestHost host_;
    NSWindow* panel_ = nullptr;
    NSTextView* credits_ = nullptr;
    platform::Connection scrolled_;
    int steps_ = 0;
};

TEST_F(AboutPanel, ShowsWhatTheBundleSaysInTheMiddleOfTheScreen) {
    setCredits(10);
    host_.write("resources/English.lproj/Credits.rtf", "{\\rtf1\\ansi of its own language}");
    show();
    EXPECT_EQ(credits_->length(), std::string("of its own language").size());
    const NSBundle& bundle = NSBundle::mainBundle();
    EXPECT_EQ(panel_->title(), "About Brindle");
    EXPECT_EQ(find<NSTextField>("appNameField")->stringValue(), "Brindle");
    EXPECT_EQ(find<NSTextField>("versionField")->stringValue(),
              "Version " + bundle.objectForInfoDictionaryKey("CFBundleVersion"));
    EXPECT_EQ(find<NSTextField>("copyrightField")->stringValue(),
              bundle.objectForInfoDictionaryKey("NSHumanReadableCopyright"));
    EXPECT_TRUE(panel_->isVisible());
    EXPECT_TRUE(panel_->isCentered());
}

TEST_F(AboutPanel, ScrollsAHundredthOfAPointAtATimeInSinglePrecision) {
    setCredits(100);
    show();
    host_.now += 2.9;
    host_.fireTimers();
    EXPECT_EQ(steps_, 0) << "the credits do not move for three seconds";
    EXPECT_EQ(runPass(), 10'000);
    EXPECT_NEAR(credits_->scrollPosition(), 100, 0.1) << "the end stays visible";

    host_.now += 3.0;
    host_.fireTimers();
    EXPECT_EQ(credits_->scrollPosition(), 0) << "the jump back to the top";
    EXPECT_EQ(runPass(), 10'000);
    panel_->close(); // during the pause at the end
    show();
    steps_ = 0;
    host_.now += 3.0;
    host_.fireTimers();
    host_.fireTimers();
    EXPECT_EQ(steps_, 2) << "a new pass, which does not begin with the jump";
}

TEST_F(AboutPanel, ALongerTextEndsALittleSoonerThanItsLengthSays) {
    setCredits(500);
    show();
    EXPECT_EQ(runPass(), 49'983);
}

TEST_F(AboutPanel, ScrollsOnlyWhileKeyAndContinuesFromTheSamePlace) {
    setCredits(100);
    show();
    host_.now += 3.0;
    for (int tick = 0; tick < 200; ++tick) {
        host_.fireTimers();
    }
    const float place = credits_->scrollPosition();
    panel_->resignKey();
    EXPECT_EQ(host_.runningTimers(), 0U);
    show();
    EXPECT_EQ(credits_->scrollPosition(), place) << "showing it while it is on screen does not start again";
    host_.fireTimers();
    EXPECT_GT(credits_->scrollPosition(), place);

    panel_->close();
    show();
    EXPECT_EQ(credits_->scrollPosition(), 0) << "hidden and shown again, it starts at the top";
    steps_ = 0;
    host_.fireTimers();
    EXPECT_EQ(steps_, 0) << "after a pause";
    host_.now += 3.0;
    host_.fireTimers();
    EXPECT_EQ(steps_, 1);
    EXPECT_EQ(credits_->scrollPosition(), 0) << "from the top, not from where it was closed";
}

TEST_F(AboutPanel, ABrokenFileIsLoggedWithABeepAndTriedAgain) {
    struct Stranger {};

    platform::registerClass(platform::describeClass<Stranger>("Stranger").take());
    const std::string name = "resources/AboutBox.xml";
    const std::string whole = host_.read(name);
    std::filesystem::remove(host_.root() / name);
    const std::vector<std::string> failed = {"log Failed to load AboutBox.nib", "beep"};
    const auto expectFailure = [&](const std::string& fault) {
        host_.events.clear();
        AboutBox::sharedInstance().showPanel(nullptr);
        EXPECT_EQ(host_.events, failed) << fault;
        EXPECT_EQ(host_.loadedInterface, nullptr) << fault;
    };
    expectFailure("no file");
    const std::vector<std::pair<std::string, std::string>> changes = {
        {"outlet=\"versionField\"", ""},
        {"outlet=\"appNameField\"", "name=\"appNameField\""},
        {"outlet=\"aboutWindow\"", "name=\"panel\""},
        {"class=\"AboutBox\"", "class=\"Stranger\""}};
    for (const auto& [before, after] : changes) {
        const std::size_t place = whole.find(before);
        ASSERT_NE(place, std::string::npos) << before;
        host_.write(name, std::string(whole).replace(place, before.size(), after));
        expectFailure(before);
    }
    host_.write(name, whole);
    host_.events.clear();
    show();
    EXPECT_TRUE(panel_->isVisible());
    EXPECT_EQ(host_.events, std::vector<std::string>{});
}

} // namespace
