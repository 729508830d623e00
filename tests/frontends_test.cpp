// What is around the front-ends: the options, the printed table and the program's exit statuses.

#include "frontends/OneWindow.h"
#include "frontends/Options.h"
#include "frontends/TableText.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/posix/InputOutput.h"
#include "support/ProgramFixture.h"
#include "support/ScratchVariable.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <set>
#include <sstream>
#include <thread>
#include <tuple>

#include <sys/stat.h>

namespace {

TEST(TableText, AlignsByWhatATerminalShowsAndLeavesHiddenColumnsOut) {
    struct Source : NSTableViewDataSource {
        int numberOfRowsInTableView(NSTableView* /*table*/) override { return 3; }

        std::string tableViewObjectValueForTableColumn(NSTableView* /*table*/, const NSTableColumn& column,
                                                       int row) override {
            const std::array names = {"日本", "e\xCC\x81\x1B[31m", "\xFF"};
            return column.identifier == "n" ? names.at(static_cast<std::size_t>(row)) : row == 1 ? "" : "x";
        }
    } source;

    const TestHost test;
    NSTableView table;
    table.addTableColumn({"n", "Name", 10, false});
    table.addTableColumn({"h", "Hidden", 10, true});
    table.addTableColumn({"v", "Value", 10, false});
    table.setDataSource(&source);
    table.reloadData();
    std::ostringstream written;
    frontend::writeTable(table, written);
    EXPECT_EQ(written.str(), "Name    Value\n日本    x\ne\xCC\x81\xEF\xBF\xBD[31m\n\xEF\xBF\xBD       x\n");
}

TEST(Options, AreRead) {
    using frontend::Mode;
    const auto parsed = [](std::vector<std::string> arguments) {
        frontend::Options options = frontend::parseOptions(std::move(arguments));
        EXPECT_FALSE(options.end) << options.end->text;
        return options;
    };
    EXPECT_EQ(parsed({}).mode, Mode::Window);
    EXPECT_EQ(parsed({"--script", "-"}).script, "-");
    EXPECT_EQ(parsed({"--root=a=b", "--print=groups"}).host.root, "a=b");
    EXPECT_EQ(parsed({"--print", "users"}).table, "users");
    EXPECT_EQ(parsed({"--serve", "--port", "65535"}).port, 65535);
}

TEST(Options, ThatAreWrongAreNamed) {
    const std::pair<std::vector<std::string>, std::vector<std::string>> cases[] = {
        {{"--colour"}, {"--colour"}},
        {{"script"}, {"script"}},
        {{"--script"}, {"--script", "missing"}},
        {{"--root=", "--print=users"}, {"--root", "missing"}},
        {{"--root", ""}, {"--root", "missing"}},
        {{"--help=no"}, {"help"}},
        {{"--print", "all"}, {"--print", "all", "shares", "users", "groups"}},
        {{"--print", "users", "--script", "-"}, {"--print", "--script"}},
        {{"--snapshot", "a", "--script", "-"}, {"--snapshot", "--script"}},
        {{"--system", "--serve"}, {"--serve", "--system"}},
        {{"--root", "a", "--root", "a"}, {"--root", "2"}},
        {{"--port", "1"}, {"--port", "--serve"}},
        {{"--serve", "--port", "0"}, {"--port", "0", "65535"}},
        {{"--serve", "--port", "12x"}, {"--port", "12x"}},
        {{"--serve", "--print", "users"}, {"--serve", "--print"}},
        {{"--dry-run"}, {"--dry-run", "--script"}},
        {{"--dry-run", "--script", "-", "history"}, {"--script", "command"}},
    };
    for (const auto& [arguments, words] : cases) {
        const auto end = frontend::parseOptions(arguments).end;
        ASSERT_TRUE(end) << "accepted: " << arguments.back();
        EXPECT_EQ(end->status, 2);
        for (const std::string& word : words) {
            EXPECT_NE(end->text.find(word), std::string::npos) << end->text;
        }
    }
}

TEST_F(Program, SaysWhatIsWrongAndEndsWithTheStatusForIt) {
    const std::string folder = test_.root().string();

    // The arguments, the status, and what standard output and standard error begin with.
    const std::vector<std::tuple<std::vector<std::string>, int, std::string, std::string>> cases = {
        {{"--help"}, 0, "Administers ", ""},
        {{"--version"}, 0, "brindle (Brindle) ", ""},
        {{"--print", "groups"}, 0, "Group ID  Group  ", ""},
        {{"--colour"},
         2,
         "",
         "brindle: The following argument was not expected: --colour; see brindle --help\n"},
        {{"--script", folder + "/none"},
         1,
         "",
         "brindle: the script " + folder + "/none cannot be read: No such file or directory\n"},
        {{"--script", folder}, 1, "", folder + ":1: the script cannot be read further\n"},
        {{"--root", "/dev/null/x", "--print", "users"}, 1, "", "brindle: cannot make /dev/null/x: "},
        {{"--root", "/dev/null/x", "users", "list", "--json"},
         1,
         "{\n  \"error\": {\n    \"status\": 1,",
         ""},
    };
    for (const auto& [arguments, status, output, errors] : cases) {
        const Finished finished = run(arguments);
        EXPECT_EQ(finished.status, status) << arguments.back();
        EXPECT_TRUE(finished.output.starts_with(output)) << finished.output;
        EXPECT_TRUE(finished.errors.starts_with(errors)) << finished.errors;
        EXPECT_EQ(output.empty() ? finished.output : finished.errors, "");
    }
    for (const std::string option : {"--script -", "--print users", "--help", "--version"}) {
        const Finished full =
            runProgram({"/bin/sh", "-c", BRINDLE_PROGRAMS "/brindle " + option + " >/dev/full"},
                       "start\nshow drawer\n", environment());
        EXPECT_EQ(full.status, 1) << option;
        EXPECT_TRUE(full.errors.ends_with(": standard output cannot be written\n")) << full.errors;
    }
}

TEST_F(Program, RefusesAnInterfaceFileThatLacksAnOutlet) {
    const std::string resources = (test_.root() / "resources").string();
    std::string xml = contentsOfFile(NSBundle::mainBundle().resourcePath() + "/MainMenu.xml").valueOr("");
    for (const std::string outlet : {" outlet=\"authLabel\"", " describedBy=\"authLabel\""}) {
        ASSERT_NE(xml.find(outlet), std::string::npos);
        xml.erase(xml.find(outlet), outlet.size());
    }
    test_.write("resources/MainMenu.xml", xml);
    test_.write("resources/Info.plist", "<plist version=\"1.0\"><dict/></plist>");
    std::vector<std::string> variables = environment();
    variables.push_back("BRINDLE_RESOURCES=" + resources);
    const Finished finished = runProgram({BRINDLE_PROGRAMS "/brindle", "--print", "users"}, {}, variables);
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.errors,
              "brindle: " + resources +
                  "/MainMenu.xml:4: outlets of the class \"BRController\" are missing: \"authLabel\"\n");
}

TEST_F(Program, PrintsWithoutCountingALaunchOrChangingWhatAnAlertAsksAbout) {
    ASSERT_EQ(run({"--print", "users"}).status, 0);
    // An outdated record, whose name is not UTF-8.
    const std::string nicl = BRINDLE_PROGRAMS "/nicl";
    const std::string record = "/config/Brindle/caf\xE9";
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{nicl, ".", "-create", record},
          {nicl, ".", "-create", record, "directory_path", "/nowhere"}}) {
        ASSERT_EQ(runProgram(command, {}, environment()).output, "");
    }
    const Finished shares = run({"--print", "shares"});
    EXPECT_NE(shares.output.find("\ncaf\xEF\xBF\xBD   /nowhere"), std::string::npos) << shares.output;
    EXPECT_EQ(shares.errors, "");
    EXPECT_FALSE(isLaunchCounted());
    const std::string output = script("answer Donation Cancel\nstart\n"
                                      "rows normalTableView 0\nshow shareName\n");
    EXPECT_NE(output.find("\"Yes\" \"No\" -> \"No\"\n"), std::string::npos) << output;
    EXPECT_TRUE(output.ends_with("shareName \"caf\xE9\"\nquit\n")) << output;
    EXPECT_TRUE(isLaunchCounted());
    EXPECT_EQ(run({"--script", "-"},
                  "answer \"Shares Are Not Updated for Jaguar\" No\nstart\nsend updateSharesFor10pt2:\n")
                  .status,
              1)
        << "it would work on an outdated list";
}

TEST_F(Program, MakesNoMigrationThatWouldLoseARecord) {
    ASSERT_EQ(run({"--print", "users"}).status, 0); // creates the root
    platform::Store store((test_.root() / "computer/directory.db").string());
    const auto shares = store.child(*store.child(platform::Store::root, "config"), "Brindle");
    store.addRecord(*shares, "Printers"); // nicl would refuse the name
    ASSERT_TRUE(store.commit().isOk());
    const std::string output = script("answer Donation Cancel\nanswer Yes\nstart\nshow normalTableView\n");
    EXPECT_NE(output.find("-> \"Yes\"\nalert \"Not Possible\" "), std::string::npos) << output;
    EXPECT_EQ(output.find("run "), std::string::npos) << output;
    EXPECT_NE(output.find("normalTableView 1 rows"), std::string::npos) << output;
}

TEST_F(Program, TellsWhyAFileCouldNotBeWrittenBesidesTheStepsOfAScript) {
    std::filesystem::create_directories(test_.home() / "smb_test.conf/in the way");
    const Finished finished = run({"--script", "-"}, "answer Cancel\nstart\nsend updateSMBProperties:\n");
    EXPECT_EQ(finished.output.find("log "), std::string::npos) << finished.output;
    EXPECT_NE(finished.errors.find("/smb_test.conf could not be written: Is a directory\n"),
              std::string::npos)
        << finished.errors;
}

TEST_F(Program, AsksForConsentOnceAndForgetsItAtItsEnd) {
    static_cast<void>(script("answer Cancel\nstart\n"));
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ(
            script("administrator refuse\nstart\npress lockButton\nshow lockButton authLabel\n"
                   "administrator allow\npress lockButton\nsend restartSMB:\nshow lockButton\n"),
            "administrator -> refuse\nlockButton \"\" image=lock\nauthLabel \"Click to allow changes\"\n"
            "administrator -> allow\nlockButton \"\" image=unlock\nquit\n");
    }
}

TEST_F(Program, ShowsARefusedToolRunBeforeBrindlesReaction) {
    const std::string output = script("answer Cancel\nstart\ntype shareName New\ntype directory /no/such\n"
                                      "press createNewShare\n");
    const std::size_t run = output.find("/no/such\noutput \"chown: ");
    ASSERT_NE(run, std::string::npos) << output;
    const std::size_t end = output.find('\n', output.find('\n', run) + 1);
    EXPECT_EQ(output.substr(end + 1, 10), "beep\nlog \"") << output;
}

/// Starts of the program with its window, on Qt's offscreen platform.
class OneWindowARoot : public Program {
  protected:
    OneWindowARoot() {
        std::filesystem::create_directory(runtime_);
        std::filesystem::permissions(runtime_, std::filesystem::perms::owner_all);
    }

    void SetUp() override {
        Program::SetUp();
        if (!std::filesystem::exists(BRINDLE_PROGRAMS "/brindle-window")) {
            GTEST_SKIP() << "this build has no window";
        }
    }

    void TearDown() override {
        for (const auto& each : open_) {
            end(each);
        }
        Program::TearDown();
    }

    [[nodiscard]] std::vector<std::string> variables() const {
        std::vector<std::string> all = environment();
        all.insert(all.end(), {"QT_QPA_PLATFORM=offscreen", "XDG_RUNTIME_DIR=" + runtime_});
        return all;
    }

    /// Opens a window, waits until it can be found, and returns its process.
    pid_t open(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"/usr/bin/env", "-u", "BRINDLE_ROOT"});
        for (const std::string& each : variables()) {
            arguments.insert(arguments.begin() + 3, each);
        }
        const auto before = sockets();
        open_.push_back(std::move(*platform::startProcess({arguments})));
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (sockets() == before && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        EXPECT_NE(sockets(), before) << "the window has not opened";
        return open_.back().id;
    }

    static void end(const platform::ChildProcess& process) {
        ::kill(process.id, SIGKILL);
        static_cast<void>(platform::waitForProcess(process.id));
    }

    [[nodiscard]] Finished again(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), BRINDLE_PROGRAMS "/brindle");
        return runProgram(arguments, {}, variables());
    }

    /// Returns the sockets of open windows, by the time of their creation.
    [[nodiscard]] std::set<std::pair<time_t, long>> sockets() const {
        std::set<std::pair<time_t, long>> made;
        std::error_code missing;
        for (const auto& each : std::filesystem::directory_iterator(runtime_ + "/brindle", missing)) {
            struct stat status {};

            if (each.path().extension() == ".socket" && ::stat(each.path().c_str(), &status) == 0) {
                made.emplace(status.st_ctim.tv_sec, status.st_ctim.tv_nsec);
            }
        }
        return made;
    }

    std::string runtime_ = (test_.root() / "runtime").string();
    std::string root_ = (test_.root() / "one").string();
    std::vector<platform::ChildProcess> open_;
};

TEST_F(OneWindowARoot, ASecondStartShowsTheFirstOnesWindowAndAKilledOneBlocksNothing) {
    const std::string brindle = BRINDLE_PROGRAMS "/brindle";
    open({brindle, "--root", root_});
    const std::string found = "Brindle is already open on " + root_ + "; its window has come to the front.\n";
    for (const std::string& name : {root_, root_ + "/", root_ + "/../one"}) {
        const Finished second = again({"--root", name});
        EXPECT_EQ(second.status, 0) << second.errors;
        EXPECT_EQ(second.output, found);
    }
    open({brindle, "--root", root_ + " too"}); // another place
    EXPECT_EQ(sockets().size(), 2U);
    EXPECT_EQ(again({"--root", root_, "--print", "shares"}).errors, "");
    EXPECT_EQ(again({"--root", root_, "--snapshot", runtime_ + "/pictures"}).status, 0);
    end(open_.front());
    open_.erase(open_.begin());
    open({brindle, "--root", root_});
    EXPECT_EQ(again({"--root", root_}).output, found);
}

TEST_F(OneWindowARoot, AFolderThatOthersMayEnterIsNotUsedForTheLock) {
    std::filesystem::permissions(runtime_, std::filesystem::perms::all);
    std::filesystem::create_directory(test_.root() / "tmp");
    const auto ours = test_.root() / "tmp" / ("brindle-" + std::to_string(::geteuid()));
    std::filesystem::create_directory(ours);
    std::filesystem::permissions(ours, std::filesystem::perms(0755));
    const ScratchVariable temporary("TMPDIR", (test_.root() / "tmp").string());
    const ScratchVariable runtime("XDG_RUNTIME_DIR", runtime_);
    const auto taken = frontend::OneWindow::take("place");
    EXPECT_FALSE(taken.isOk());
    EXPECT_TRUE(taken.status().text().starts_with("cannot use the folder ")) << taken.status().text();
    EXPECT_TRUE(std::filesystem::is_empty(runtime_));
}

TEST_F(Program, AnswersEachCommandBeforeItReadsTheNext) {
    std::vector<std::string> command = {"/usr/bin/env"};
    for (const std::string& variable : environment()) {
        command.push_back(variable);
    }
    command.insert(command.end(), {BRINDLE_PROGRAMS "/brindle", "--script", "-"});
    Conversation brindle(command);
    EXPECT_TRUE(brindle.ask("start", "Donation").ends_with("-> \"Make Donation via Paypal\""));
    EXPECT_EQ(brindle.ask("show drawer", "drawer"), "drawer closed");
    EXPECT_EQ(brindle.ask("send toggleDrawer:\nshow drawer", "drawer"), "drawer open");
}

} // namespace
