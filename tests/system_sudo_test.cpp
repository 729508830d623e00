// Brindle with sudo in several configurations, on a computer of its own.

#include "platform/foundation/Host.h"
#include "platform/posix/InputOutput.h"
#include "platform/security/SudoAuthority.h"
#include "privileged/NiutilTask.h"
#include "support/InstalledBrindle.h"
#include "support/TestHost.h"

#include <algorithm>
#include <memory>

#include <sys/wait.h>

namespace {

class SystemSudo : public InstalledBrindle {
  protected:
    void SetUp() override {
        InstalledBrindle::SetUp();
        if (!IsSkipped()) {
            EXPECT_EQ(runProgram({"/usr/sbin/chpasswd"}, "chief:Abracadabra9\n").status, 0);
        }
    }

    /// The passwords that a user types, and the expected effects of one action that changes the folder's
    /// mode.
    struct Attempt {
        std::vector<std::string> passwords;
        int dialogs = 0;
        int alerts = 0;
        bool isAllowed = false;
        bool isStillAllowed = false; ///< whether the right is still held after the action
    };

    /// Makes the attempt as the administrator, in another process. Returns the differences; empty when there
    /// are none.
    [[nodiscard]] static std::string differenceFrom(const Attempt& expected, const std::string& folder) {
        const auto pipe = platform::makePipe();
        const passwd account = *::getpwnam("chief");
        const pid_t child = ::fork();
        if (child == 0) {
            const bool became = ::setgid(account.pw_gid) == 0 && ::setuid(account.pw_uid) == 0;
            const std::string text = became ? tryAs(expected, folder) : "cannot become chief";
            static_cast<void>(platform::writeAll(pipe->writeEnd.get(), text + "\n", "the pipe"));
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        std::string said(4096, '\0');
        const ssize_t size = ::read(pipe->readEnd.get(), said.data(), said.size());
        said.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
        return said;
    }

  private:
    static std::string tryAs(const Attempt& expected, const std::string& folder) {
        TestHost test;
        test.allowUnaskedAlerts();
        test.passwords = {expected.passwords.begin(), expected.passwords.end()};
        const auto authority = std::make_shared<platform::SudoAuthority>(prefix + "/libexec/brindle-helper");
        platform::Services services = test.host().services();
        services.authority = authority;
        services.pendingWrites = authority;
        platform::Host host(std::move(services));
        NiutilTask& task = NiutilTask::sharedInstance();
        const bool isAllowed = task.authenticate();
        task.changePermissions(folder, "nobody", "", isAllowed ? 0751 : 0700);
        host.endAction();
        std::string text;
        const auto compare = [&text](const char* what, auto found, auto wanted) {
            text += found == wanted ? "" : std::string(what) + " is " + std::to_string(found) + "; ";
        };
        compare("allowed", isAllowed, expected.isAllowed);
        compare("still allowed", task.isAuthenticated(), expected.isStillAllowed);
        compare("the number of dialogs", test.administratorDialogs, expected.dialogs);
        compare("the number of alerts", static_cast<int>(test.alerts.size()), expected.alerts);
        task.deauthenticate();
        return text;
    }
};

TEST_F(SystemSudo, IsAskedAccordingToItsConfiguration) {
    struct Case {
        const char* rule;
        Attempt attempt;
    };

    const std::string right = "Abracadabra9";
    const std::vector<Case> cases = {
        {"ALL", {{"wrong", right}, 2, 0, true, true}},
        {"ALL\nDefaults:chief timestamp_timeout=0", {{"wrong", right}, 2, 0, true, false}},
        {"NOPASSWD: /var/lib/installed/libexec/brindle-helper", {{}, 0, 0, true, true}},
        {"ALL\nchief ALL=(root) NOPASSWD: /var/lib/installed/libexec/brindle-helper", {{}, 0, 0, true, true}},
    };
    for (const Case& each : cases) {
        allow(each.rule);
        std::filesystem::permissions(folder_, std::filesystem::perms(0755));
        EXPECT_EQ(differenceFrom(each.attempt, folder_), "\n") << each.rule;
        EXPECT_EQ(std::filesystem::status(folder_).permissions(), std::filesystem::perms(0751)) << each.rule;
        EXPECT_EQ(ownerOf(folder_), "nobody");
        EXPECT_EQ(::chown(folder_.c_str(), 0, 0), 0);
    }
    // A user whom sudo does not know is told so, once.
    EXPECT_TRUE(platform::writeWholeFile("/etc/sudoers.d/chief", "# nobody\n", {.mode = 0440}).isOk());
    const Attempt stranger{
        {right, right, right, right}, 2, 2, false, false}; // two dialogs for each of the two attempts
    EXPECT_EQ(differenceFrom(stranger, folder_), "\n");
    EXPECT_EQ(std::filesystem::status(folder_).permissions(), std::filesystem::perms(0751));
}

} // namespace
