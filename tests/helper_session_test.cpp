// The runs of an action through the real helper, as the window makes them.

#include "platform/foundation/NSFileManager.h"
#include "platform/samba/SambaAccounts.h"
#include "platform/security/ConsentAuthority.h"
#include "platform/security/HelperProtocol.h"
#include "platform/security/HelperSession.h"
#include "privileged/NiutilTask.h"
#include "support/HelperFixture.h"
#include "support/LockHolder.h"
#include "support/Subprocess.h"

#include <csignal>
#include <thread>

#include <seccomp.h>
#include <sys/prctl.h>

namespace {

using platform::HelperSession;

TEST_F(HelperTest, ServesARealRunFromTheWindowsSideToTheDirectory) {
    platform::Services services = test_.host().services();
    const auto authority = std::make_shared<platform::ConsentAuthority>(helperProgram, root_.folder());
    services.authority = authority;
    services.pendingWrites = authority;
    const platform::Host host(std::move(services));
    NiutilTask& task = NiutilTask::sharedInstance();
    EXPECT_TRUE(task.createShare("Docs", "/srv/-Docs", 1, 0, 1));
    const std::vector<std::string> read = {".", "/config/Brindle", "name", "directory_path"};
    std::vector<std::string> command = {std::string(BRINDLE_PROGRAMS) + "/nireport", "--root",
                                        root_.folder()};
    command.insert(command.end(), read.begin(), read.end());
    platform::Host::settlePendingWrites();
    EXPECT_EQ(runProgram(command).output, "Docs\t/srv/-Docs\t\n");
    test_.write("new.conf", "[global]\n");
    EXPECT_TRUE(task.cp(source_, "/etc/smb.conf"));
    EXPECT_EQ(contentsOfFile(target_.string()).valueOr("?"), "[global]\n");
    EXPECT_TRUE(test_.log.empty());
    task.deleteShare("Docs");
    task.deleteShare("Docs");
    ASSERT_EQ(test_.log.size(), 1U) << "the second time there is nothing to delete";
    EXPECT_TRUE(test_.log[0].starts_with("outString non empty for deleteGroup: nicl: ")) << test_.log[0];
}

/// The runs of one action through the real helper, and what other programs see of them.
class Action : public HelperTest {
  protected:
    static std::string outputOf(HelperSession& helper, const std::string& tool,
                                const std::vector<std::string>& arguments) {
        std::string output;
        const OSStatus status = helper.run(tool, arguments, &output);
        return status == errAuthorizationSuccess ? output : std::to_string(status);
    }

    static std::string nicl(HelperSession& helper, std::vector<std::string> words) {
        words.insert(words.begin(), ".");
        return outputOf(helper, "/usr/bin/nicl", words);
    }

    /// Returns the helper process that this program has started.
    static int helperProcess() {
        return std::stoi(*contentsOfFile("/proc/self/task/" + std::to_string(::getpid()) + "/children"));
    }

    /// Returns the shares as another program reads them.
    [[nodiscard]] std::string shares() const {
        return runProgram({std::string(BRINDLE_PROGRAMS) + "/nireport", "--root", root_.folder(), ".",
                           "/config/Brindle", "name", "directory_path"})
            .output;
    }

    std::vector<std::string> command_ = {helperProgram, "--root", root_.folder()};
};

TEST_F(Action, LeavesNoTraceOfItsRunsWhenItEndsBeforeTheyAreCommitted) {
    {
        HelperSession helper(command_);
        EXPECT_EQ(nicl(helper, {"-create", "/config/Brindle/Docs"}), "");
        EXPECT_EQ(nicl(helper, {"-create", "/config/Brindle/Docs", "directory_path", "/srv"}), "");
    }
    EXPECT_EQ(shares(), "");
    HelperSession helper(command_);
    EXPECT_EQ(nicl(helper, {"-create", "/config/Brindle/Docs"}), "");
    EXPECT_NE(nicl(helper, {"-create", "/config/Brindle/Docs", "directory_path", "/srv\\"}), "");
    EXPECT_NE(nicl(helper, {"-delete", "/config/Brindle/other"}), "") << "each run has its own result";
    EXPECT_EQ(nicl(helper, {"-create", "/config/Brindle/Docs", "directory_path", "/srv/a"}), "");
    EXPECT_EQ(outputOf(helper, "/bin/rm", {"x"}), "-60031");
    std::string seen;
    std::thread other([&] { seen = shares(); });
    ::usleep(100000); // long enough to read an incomplete directory if the lock did not prevent that
    EXPECT_TRUE(helper.settle().isOk());
    other.join();
    EXPECT_EQ(seen, "Docs\t/srv/a\t\n");
    EXPECT_EQ(nicl(helper, {"-delete", "/config/Brindle/Docs"}), "");
    EXPECT_EQ(outputOf(helper, "/bin/chmod", {"755", folder("shared").string()}), "");
    EXPECT_EQ(shares(), "") << "another tool's run has committed";
    helper.end();
    EXPECT_TRUE(helper.settle().isOk());
}

TEST_F(Action, LeavesItsHelperToTheNextActionWhichStartsAnotherIfItHasEnded) {
    HelperSession helper(command_);
    const auto helperOf = [&](const std::vector<std::string>& words) {
        EXPECT_EQ(nicl(helper, words), "");
        EXPECT_TRUE(helper.settle().isOk());
        helper.endAction();
        return helperProcess();
    };
    const int first = helperOf({"-create", "/config/Brindle/Docs"});
    EXPECT_EQ(helperOf({"-create", "/config/Brindle/Docs", "directory_path", "/srv"}), first);
    ASSERT_EQ(::kill(first, SIGTERM), 0); // the way in which an idle helper ends
    siginfo_t ended{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(first), &ended, WEXITED | WNOWAIT), 0);
    EXPECT_NE(helperOf({"-create", "/config/Brindle/Films"}), first);
    EXPECT_EQ(shares(), "Docs\t/srv\t\nFilms\t#NoValue#\t\n");
    const auto endAt = [&](pid_t process) {
        ASSERT_EQ(::kill(process, SIGKILL), 0);
        ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT), 0);
    };
    const int second = helperOf({"-create", "/config/Brindle/Films", "directory_path", "/srv"});
    EXPECT_EQ(nicl(helper, {"-create", "/config/Brindle/Music"}), "");
    endAt(second);
    EXPECT_FALSE(helper.settle().isOk()) << "another helper does not have its changes";
    EXPECT_TRUE(helper.settle().isOk()) << "it is told once";
    EXPECT_EQ(shares(), "Docs\t/srv\t\nFilms\t/srv\t\n");
}

TEST_F(Action, WaitsForTheDirectoryEvenIfAnEarlierOneCouldNotOpenIt) {
    HelperSession helper(command_);
    const std::string store = root_.storeFile();
    fs::rename(store, store + ".away");
    EXPECT_NE(nicl(helper, {"-create", "/config/Brindle/Docs"}), "");
    fs::rename(store + ".away", store);
    EXPECT_TRUE(helper.settle().isOk());
    helper.endAction();
    auto other = std::make_optional<LockHolder>(store);
    std::thread end([&] {
        ::usleep(300000);
        other.reset();
    });
    EXPECT_EQ(nicl(helper, {"-create", "/config/Brindle/Docs"}), "");
    end.join();
    EXPECT_TRUE(helper.settle().isOk());
}

TEST_F(Action, IsServedWithoutRightsAndSystemCallsThatFilesDoNotNeed) {
    HelperSession helper(command_);
    EXPECT_EQ(nicl(helper, {"-create", "/config/Brindle/Docs"}), "");
    const std::string status = *contentsOfFile("/proc/" + std::to_string(helperProcess()) + "/status");
    EXPECT_NE(status.find("NoNewPrivs:\t1"), std::string::npos);
    const bool hasFilters = ::prctl(PR_GET_SECCOMP) >= 0;
    EXPECT_EQ(status.find("Seccomp:\t2") != std::string::npos, hasFilters) << status;
}

TEST_F(Action, IsServedAndToldSoByAHelperThatCannotTakeItsFilter) {
    const auto errors = [&] {
        return runProgram({helperProgram, "--root", root_.folder()}, platform::frameHeader(0)).errors;
    };
    const bool hasFilters = ::prctl(PR_GET_SECCOMP) >= 0;
    EXPECT_EQ(errors().empty(), hasFilters);
    if (!hasFilters) {
        GTEST_SKIP() << "this kernel takes no filter, not even the one that would refuse another";
    }
    const auto saysSoWithoutFilters = [&] {
        const auto refusal = SCMP_ACT_ERRNO(EINVAL); // as a kernel without such filters
        const scmp_arg_cmp isOfFilters{0, SCMP_CMP_EQ, PR_SET_SECCOMP, 0};
        void* filter = ::seccomp_init(SCMP_ACT_ALLOW);
        ::seccomp_rule_add(filter, refusal, SCMP_SYS(seccomp), 0);
        ::seccomp_rule_add_array(filter, refusal, SCMP_SYS(prctl), 1, &isOfFilters);
        return ::seccomp_load(filter) == 0 && errors().find("without a filter") != std::string::npos;
    };
    EXPECT_EXIT(::_exit(saysSoWithoutFilters() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST_F(Action, IsNotifiedWhenItsChangesAreLost) {
    HelperSession helper(command_);
    EXPECT_EQ(nicl(helper, {"-create", "/users/carol"}), "");
    EXPECT_EQ(nicl(helper, {"-create", "/users/carol", "uid", "70502"}), "");
    const fs::path list = platform::SambaAccounts(root_.sambaPaths()).groupFile();
    const std::string passwd = *contentsOfFile(platform::SambaAccounts(root_.sambaPaths()).passwdFile());
    fs::rename(list, list.string() + ".away");
    fs::create_directory(list); // the server's account lists cannot be written
    const platform::Status status = helper.settle();
    EXPECT_NE(status.text().find("cannot write " + list.string()), std::string::npos) << status.text();
    EXPECT_NE(nicl(helper, {"-create", "/users/carol", "uid", "70502"}), "") << "the user is lost";
    EXPECT_EQ(*contentsOfFile(platform::SambaAccounts(root_.sambaPaths()).passwdFile()), passwd);
    EXPECT_TRUE(helper.settle().isOk()) << "it is told once";
    fs::remove(list);
    fs::rename(list.string() + ".away", list);
}

} // namespace
