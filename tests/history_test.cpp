#include "directory/DirectoryView.h"
#include "frontends/cli/CommandPresenter.h"
#include "frontends/cli/Interruption.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/posix/FileDescriptor.h"
#include "review/History.h"
#include "review/Recorder.h"
#include "support/DrawnState.h"

#include <array>
#include <csignal>
#include <set>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

/// The application with a history that wraps its authority.
class HistoryTest : public DrawnState {
  protected:
    void beginWithHistory() {
        platform::Services services = host.host().services();
        services.historyFile = historyFile();
        services.writersFile = writersFile();
        services.accountNames = std::make_shared<platform::DirectoryAccounts>(host.storeFile().string());
        history.emplace(services);
        inner.emplace(std::move(services));
        begin();
        NSApp().dispatch([] {}); // ends the action of the start, which may have migrated records
    }

    void TearDown() override {
        DrawnState::TearDown();
        interface.reset();
        inner.reset();
    }

    [[nodiscard]] std::string historyFile() const { return (host.root() / "history.db").string(); }

    [[nodiscard]] std::string writersFile() const { return (host.root() / "writing.lock").string(); }

    /// Returns everything that an action can change: records by their paths, settings files, folders.
    [[nodiscard]] std::map<std::string, std::string> state() const {
        std::map<std::string, std::string> all = {{"smb.conf", conf()}, {"afp", afp()}};
        const DirectoryView directory(host.storeFile().string());
        for (const char* parent : {"/users", "/groups", "/config/Brindle"}) {
            for (const std::string& name : directory.names(parent)) {
                const std::string path = std::string(parent) + "/" + name;
                std::string& text = all[path];
                const auto properties = directory.record(path).value();
                for (const auto& property : properties) {
                    text += property.name + ":";
                    for (const std::string& value : property.values) {
                        text += " \"" + value + "\"";
                    }
                    text += "\n";
                }
            }
        }
        for (const auto& [path, text] : everything()) {
            if (std::filesystem::is_directory(path)) {
                all[path] = text;
            }
        }
        return all;
    }

    /// Returns the newest entry's number; 0 when there is none.
    [[nodiscard]] std::int64_t newest() const {
        const auto entries = history->entries();
        EXPECT_TRUE(entries.isOk()) << entries.status().text();
        return entries->empty() ? 0 : entries->front().number;
    }

    /// Takes back a change. Returns why it could not; empty when it could.
    [[nodiscard]] std::string undo(std::optional<std::int64_t> number = std::nullopt) {
        const auto plan = history->describeUndo(number, review::ChangedFile::KeepsOtherSections);
        if (!plan.isOk() || !plan->refusal.empty()) {
            return plan.isOk() ? plan->refusal : plan.status().text();
        }
        std::string failure = "given up";
        NSApp().dispatch([&] {
            failure = history->undo(*plan).text();
            reviewer->rereadEverything();
        });
        return failure;
    }

    std::vector<std::string> titles() const {
        std::vector<std::string> texts;
        const auto entries = history->entries();
        EXPECT_TRUE(entries.isOk()) << entries.status().text();
        for (const review::HistoryEntry& entry : *entries) {
            texts.push_back(std::to_string(entry.number) + " " + entry.title + " " + outcomeOf(entry));
        }
        return texts;
    }

    void act(const std::string& operation) {
        NSApp().dispatch([&] { send(operation); });
    }

    std::optional<review::History> history;
    std::optional<platform::Host> inner;
};

TEST_P(HistoryTest, RestoresEverythingThatAnActionHasChanged) {
    fillDirectory();
    fillFiles();
    host.allowUnaskedAlerts();
    beginWithHistory();
    for (int step = 0; step < 12; ++step) {
        edit();
        const std::string operation = anOperation();
        SCOPED_TRACE(operation + ", step " + std::to_string(step));
        NSControl* sender = interface->findWiredTo(operation);
        if (sender == nullptr || !sender->isEnabled()) {
            continue;
        }
        const auto before = state();
        const std::int64_t earlier = newest();
        const review::Plan plan = reviewer->planSteps(*sender);
        for (std::size_t ask = 0; plan.blocks.empty() && ask < plan.asks.size(); ++ask) {
            host.answerAlert(plan.asks[ask].title, plan.asks[ask].button);
        }
        NSApp().dispatch([&] { sender->sendAction(); });
        const auto after = state();
        ASSERT_EQ(newest() != earlier, after != before)
            << "an action that changes something becomes an entry";
        if (NSWindow* sheet = NSApp().attachedSheet()) {
            NSApp().dispatch([sheet] { NSApp().endSheet(sheet, 0); }); // a password sheet
        }
        if (after == before) {
            continue;
        }
        const std::int64_t entry = earlier + 1;
        ASSERT_EQ(undo(entry), "");
        EXPECT_EQ(state(), before);
        ASSERT_EQ(undo(), "") << "an undo is also an entry";
        EXPECT_EQ(state(), after);
        ASSERT_FALSE(HasFailure());
    }
}

TEST(HistoryTitle, NamesTheKeysOrTheFoldersWhereSmbConfOnlyLooksDifferent) {
    const TestHost host;
    review::HistoryEntry entry;
    entry.folders = {{"/srv/team", {}, {}}};
    for (const auto& [after, title] :
         {std::pair("[global]\n\n  workgroup = HOME\n", "Owner or privileges of \"/srv/team\" changed"),
          {"[global]\nworkgroup = OFFICE\n", "SMB settings changed: \"workgroup\""},
          {"[global]\nworkgroup = HOME\nwins support = yes\n[homes]\nread only = no\n",
           "SMB settings changed: \"wins support\", [homes]"},
          {"[global]\na = 1\nb = 1\nc = 1\n", "SMB settings changed: \"a\", \"b\", \"c\" and 1 more"}}) {
        entry.files = {{platform::systempath::smbConf, "[global]\nworkgroup = HOME\n", after}};
        EXPECT_EQ(titleOf(entry), title);
    }
    const auto plist = [](const std::string& keys) {
        return "<plist version=\"1.0\"><dict>" + keys + "</dict></plist>";
    };
    entry.files = {{platform::systempath::appleFileServer, plist("<key>guestAccess</key><true/>"),
                    plist("<key>guestAccess</key><true/><key>loginGreeting</key><string>Hi</string>")}};
    EXPECT_EQ(titleOf(entry), "AFP settings changed: \"loginGreeting\"");
    entry.files = {
        {platform::systempath::smbConf, "[Docs]\npath = /a\n", "[Docs]\npath = /a\nguest ok = Yes\n"}};
    entry.records = {{"/config/Brindle/Docs", {}, review::RecordChange::State::value_type()}};
    EXPECT_EQ(titleOf(entry), "Share \"Docs\" changed") << "it was there before it had a record";
}

class OneUndo : public HistoryTest {
  protected:
    /// Makes a change that gets into the history.
    void addStaff() {
        host.allowUnaskedAlerts();
        beginWithHistory();
        addGroup("crew", "7200");
        host.runs.clear();
    }

    void addGroup(const std::string& name, const std::string& gid) {
        type("groupName", name);
        type("gid", gid);
        host.answerAlert("Confirm Add New Group", "Yes");
        act("addNewGroup:");
    }
};

TEST_P(OneUndo, WhatIsAlreadyAsBeforeCountsAsTakenBack) {
    addStaff();
    nicl({"-delete", "/groups/crew"}); // done by somebody else
    EXPECT_EQ(undo(), "");
    EXPECT_EQ(titles(), (std::vector<std::string>{"2 Taken back: Group \"crew\" created done",
                                                  "1 Group \"crew\" created undone"}));
    EXPECT_TRUE(host.runs.empty());
}

TEST_P(OneUndo, TakesBackTheNewestChangeEvenIfTheClockWasSetBackBeforeIt) {
    addStaff();
    host.now -= 7200;
    addGroup("team", "7300");
    EXPECT_EQ(undo(), "");
    EXPECT_EQ(titles(),
              (std::vector<std::string>{"3 Taken back: Group \"team\" created done",
                                        "2 Group \"team\" created undone", "1 Group \"crew\" created done"}));
    EXPECT_EQ(undo() + undo(), "");
    EXPECT_EQ(titles().front(), "5 Taken back: Group \"team\" created done");
}

TEST_P(OneUndo, IsRefusedWhileAnotherProgramMakesChanges) {
    addStaff();
    const platform::FileDescriptor other(::open(writersFile().c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(::flock(other.get(), LOCK_EX | LOCK_NB), 0) << "the action has ended, and holds it still";
    EXPECT_TRUE(undo().starts_with("nothing was changed: "));
    ::flock(other.get(), LOCK_UN);
    EXPECT_EQ(undo(), "");
}

TEST_P(OneUndo, IsRefusedForAPasswordInsteadOfTakingTheChangeBeforeItBack) {
    addUser("bob", "501");
    addStaff();
    selectRow(*app().userTableView, "User", "bob");
    act("changePassword:");
    type("passwordSecureText1", "Wonderland1");
    type("passwordSecureText2", "Wonderland1");
    act("setPassword:");
    host.runs.clear();
    EXPECT_EQ(undo(),
              "There is nothing that could be taken back: a password that was replaced is no longer known.");
    EXPECT_EQ(history->titleOfNextUndo(), "");
    EXPECT_EQ(titles(),
              (std::vector<std::string>{"2 Password of \"bob\" set done", "1 Group \"crew\" created done"}));
    EXPECT_TRUE(host.runs.empty());
    EXPECT_EQ(undo(1), "");
}

TEST_P(OneUndo, IsRefusedWhileTheDirectoryCannotBeRead) {
    addStaff();
    const auto store = host.storeFile();
    std::filesystem::rename(store, store.string() + ".away");
    EXPECT_EQ(undo(), "The directory cannot be read now.");
    EXPECT_TRUE(host.runs.empty());
    std::filesystem::rename(store.string() + ".away", store);
    EXPECT_EQ(undo(), "");
}

TEST_P(OneUndo, KeepsWhatSomebodyElseWroteToSmbConfMeanwhile) {
    host.onRun = [this](const RecordedRun& run) {
        writeConf("[Music]\n");
        return carryOutAll(run);
    };
    addStaff();
    host.onRun = [this](const RecordedRun& run) { return carryOutAll(run); };
    EXPECT_EQ(undo(), "");
    EXPECT_EQ(conf(), "[Music]\n");
}

TEST_P(OneUndo, OfAShareLeavesTheOtherSectionsAsTheyAreNow) {
    beginWithHistory();
    for (const char* name : {"Docs", "Films", "Music"}) {
        app().normalTableView->selectRows({});
        type("shareName", name);
        type("directory", folder(name));
        choose("sharingSMB", 1);
        act("createShare:");
    }
    const std::string made = conf();
    EXPECT_EQ(undo(1), "");
    EXPECT_EQ(undo(3), "") << "the last section";
    EXPECT_EQ(undo(5), "");
    const std::string kept = conf();
    EXPECT_EQ(kept, made.substr(made.find("[Films]")));
    const std::size_t music = kept.find("[Music]");
    writeConf(kept.substr(0, music) + "# by hand\n\n" + kept.substr(music) + "comment = Songs\n");
    EXPECT_NE(undo(6), "") << "that section was changed by hand";
    EXPECT_EQ(undo(2), "");
    EXPECT_EQ(undo(4), "") << "and Docs is shared again";
    for (const char* text : {"[Docs]", "# by hand", "[Music]", "comment = Songs"}) {
        EXPECT_NE(conf().find(text), std::string::npos) << conf();
    }
    EXPECT_EQ(conf().find("[Films]"), std::string::npos);
    const auto inScript = history->describeUndo(2);
    EXPECT_NE(inScript->refusal, "") << "for scripts the whole file counts";
}

TEST_P(OneUndo, KnowsWhatACommandDidBeforeASignalStoppedIt) {
    beginWithHistory();
    const auto interrupted = [this] {
        frontend::Interruption interruption;
        interruption.begin();
        frontend::CommandPresenter presenter(true);
        presenter.stopWith(*history);
        host.onRun = [&](const RecordedRun& run) {
            ::raise(SIGTERM);
            presenter.toolWillRun(run.tool, run.arguments); // the next one, which is not made
            return carryOutAll(run);
        };
        addGroup("crew", "7200");
        if (host.runs.size() != 1 || newest() != 1) {
            ::_exit(1); // before the signal that was held back ends this process
        }
    };
    EXPECT_EXIT(interrupted(), testing::KilledBySignal(SIGTERM), "");
}

TEST_P(OneUndo, ThatWasGivenUpHalfWayHasFailedAndIsRepeatedAsPlanned) {
    addShare("Docs", folder("docs"));
    writeConf("[Docs]\npath = " + folder("docs") + "\n");
    host.allowUnaskedAlerts();
    beginWithHistory();
    selectRow(*app().normalTableView, "ShareName", "Docs");
    const auto before = state();
    act("deleteShare:");
    const auto deleted = state();
    host.onRun = [this](const RecordedRun& run) {
        return run.tool == "/bin/cp" ? throw std::runtime_error("no such button") : carryOutAll(run);
    };
    EXPECT_EQ(undo(), "given up");
    host.onRun = [this](const RecordedRun& run) { return carryOutAll(run); };
    EXPECT_EQ(history->titleOfNextUndo(), "Share \"Docs\" deleted");
    EXPECT_EQ(reviewer->planUndo(*history->describeUndo({})).failure, "");
    EXPECT_EQ(undo(), "");
    EXPECT_EQ(state(), before);
    EXPECT_EQ(titles(), (std::vector<std::string>{"3 Taken back: Share \"Docs\" deleted done",
                                                  "2 Taken back: Share \"Docs\" deleted failed",
                                                  "1 Share \"Docs\" deleted undone"}));
    EXPECT_EQ(undo(), "");
    EXPECT_EQ(state(), deleted) << "also what the first attempt had taken back";
}

TEST_P(OneUndo, MindsWhoHasANumberOrAGroupNow) {
    addUser("ann", "7201");
    addUser("bob", "7301");
    addStaff();
    nicl({"-append", "/groups/crew", "users", "ann"});
    const auto ann = DirectoryView(host.storeFile().string()).record("/users/ann");
    const DirectoryView::Record eve = {{"name", {"eve"}}, {"uid", {"7201"}}};
    const auto now = review::folderStateOf(host.root()).value();
    const std::vector<review::HistoryEntry> none;
    std::vector<review::HistoryEntry> later(1);
    later[0].number = 2;
    review::HistoryEntry entry;
    entry.number = 1;
    entry.folders = {{host.root(), {7201, now.group, now.mode, "bob:"}, now}};
    EXPECT_EQ(planUndo(entry, none).folders.front().arguments.front(), "ann:");
    entry.records = {{"/users/eve", eve, {}}};
    later[0].records = {{"/users/ann", {}, ann}};
    EXPECT_EQ(planUndo(entry, later).refusal, "eve cannot get the number 7201 back: ann has it now.");
    EXPECT_EQ(planUndo(entry, none).losses.front(), "eve gets the number 7201 back, which ann has, too.");
    entry.records = {{"/users/ann", {}, ann}};
    later[0].records = {{"/groups/crew", eve, {{{"users", {"ann"}}}}}};
    EXPECT_TRUE(planUndo(entry, later).refusal.starts_with("Later changes depend on it: 2"));
}

TEST_P(OneUndo, ADamagedEntryIsNamedAndHidesNoOther) {
    addStaff();
    EXPECT_EQ(undo(), "");
    std::string bytes = host.read("history.db");
    bytes.at(bytes.find("\x03run")) = '\xff'; // a length in the first entry of the file, which is the newest
    host.write("history.db", bytes);
    EXPECT_EQ(titles(), (std::vector<std::string>{"2 Taken back: Group \"crew\" created failed",
                                                  "1 Group \"crew\" created undone"}));
    EXPECT_EQ(undo(2), "What it did cannot be read: this entry of the history is damaged.");
}

INSTANTIATE_TEST_SUITE_P(Once, OneUndo, testing::Values(1U));

INSTANTIATE_TEST_SUITE_P(Drawn, HistoryTest, testing::Range(1U, 26U));

} // namespace
