#include "platform/foundation/Host.h"
#include "platform/security/Authorization.h"
#include "platform/security/ConsentAuthority.h"
#include "platform/security/HelperProtocol.h"
#include "platform/security/HelperSession.h"
#include "platform/security/SudoAuthority.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <sstream>

namespace {

using namespace std::chrono_literals;
using platform::HelperSession;

const AuthorizationRights adminRight = {{"system.privilege.admin", "/usr/bin/nicl", 0}};
constexpr AuthorizationFlags askFlags = kAuthorizationFlagInteractionAllowed | kAuthorizationFlagExtendRights;

/// Makes an executable script in the test's root and returns its path.
std::string script(TestHost& host, const std::string& name, const std::string& text) {
    host.write(name, "#!/bin/sh\n" + text + "\n");
    const auto file = host.root() / name;
    std::filesystem::permissions(file, std::filesystem::perms(0755));
    return file.string();
}

TEST(HelperStart, CountsOnlyWhenTheHelperSaysSoFirst) {
    struct Case {
        std::string helper;
        OSStatus status;
        std::string output;
    };

    const std::vector<Case> cases = {
        {"head -c 300024 >/dev/null; printf '\\006\\0\\0\\0\\004said\\0'; cat >/dev/null", 0, "said"},
        {"head -c 300024 >/dev/null; printf '\\006\\0\\0\\0\\0\\001'; cat >/dev/null", 0, ""},
        {"head -c 300024 >/dev/null; printf '\\006\\0\\0\\0\\004sa'", -60031, ""}, // it ends in the middle
        {"printf 'hello\\006'", -60031, ""},
        {"exit 125", -60031, ""},
        {"exit 0", -60031, ""},
        {"exit 1", -60005, ""}, // the status with which sudo refuses
        {"kill -9 $$", -60031, ""},
        {"exec sleep 100", -60031, ""},
        // These have started, but do not end with an answer, or not at all.
        {"printf '\\006'; exec sleep 100", -60031, ""},
        {"printf '\\006'; exec >&-; exec sleep 100", -60031, ""},
        {"exec >&-; exec sleep 100", -60031, ""},
        {"printf '\\006\\377\\377\\377\\377'; exec cat /dev/zero", -60031, ""},
        {"printf '\\006\\003\\0\\0\\0'; exec sleep 100", -60031, ""},
        {"head -c 300024 >/dev/null; printf '\\006\\0\\0\\0\\004said\\0'; exec sleep 100", 0, "said"},
    };
    TestHost host;
    for (const Case& each : cases) {
        HelperSession helper({script(host, "helper", each.helper)}, 500ms, 500ms);
        std::string output;
        const std::vector<std::string> arguments = {"-1", std::string(300006, 'x')};
        ASSERT_EQ(helper.run("/bin/kill", arguments, &output), each.status) << each.helper;
        EXPECT_EQ(helper.isRunning(), each.status == 0) << each.helper;
        if (each.status == 0) {
            EXPECT_EQ(output, each.output) << each.helper;
        }
        const bool hasFailed = each.status == errAuthorizationToolExecuteFailure;
        EXPECT_EQ(!host.log.empty() && host.log.back().starts_with("cannot talk to"), hasFailed)
            << each.helper;
        host.log.clear();
    }
    HelperSession missing({(host.root() / "missing").string()});
    EXPECT_EQ(missing.run("/bin/kill", {}, nullptr), -60031);
}

TEST(HelperRequest, ReachesTheHelperWholeOrNotAtAll) {
    TestHost host;
    const std::string helper =
        script(host, "helper",
               "n=$(head -c 4 | od -An -tu4 --endian=big | tr -d ' '); head -c $n >/dev/null\n"
               "printf '\\006\\0\\0\\0\\007%7d\\0' $n; cat >/dev/null");
    const auto size = [&](const std::string& argument) {
        HelperSession session({helper});
        std::string output;
        const std::vector<std::string> arguments = {argument, ""};
        const OSStatus status = session.run("/bin/cp", arguments, &output);
        return status == 0 ? std::stol(output) : status;
    };
    const std::size_t rest = std::string("/bin/cp|||").size();
    EXPECT_EQ(size("-R"), static_cast<long>(rest + 2));
    EXPECT_EQ(size(std::string(platform::maximumHelperRequest - rest, 'x')), 1048576);
    EXPECT_EQ(size(std::string(platform::maximumHelperRequest - rest + 1, 'x')), -60031) << "too large";
    EXPECT_EQ(size(std::string("a\0b", 3)), -60031) << "it would reach the helper as two arguments";
}

/// Returns the services of the test's host with another authority.
platform::Services servicesWith(TestHost& host, std::shared_ptr<platform::Authority> authority) {
    platform::Services services = host.host().services();
    services.authority = std::move(authority);
    return services;
}

TEST(Consent, HoldsForFiveMinutesAfterItsLastUse) {
    TestHost test;
    const std::string helper = script(test, "helper",
                                      "while dd bs=9999 count=1 2>/dev/null | grep -q .; do "
                                      "printf '\\006\\0\\0\\0\\003out\\0'; done");
    const platform::Host host(servicesWith(test, std::make_shared<platform::ConsentAuthority>(helper, "/r")));
    AuthorizationRef session = nullptr;
    ASSERT_EQ(AuthorizationCreate({}, kAuthorizationFlagDefaults, &session), 0);
    const auto held = [&] {
        return AuthorizationCopyRights(session, adminRight, kAuthorizationFlagExtendRights, nullptr) == 0;
    };
    const auto run = [&] {
        return AuthorizationExecuteWithPrivileges(session, "/bin/cp", kAuthorizationFlagDefaults, {},
                                                  nullptr);
    };
    EXPECT_FALSE(held());
    EXPECT_EQ(run(), errAuthorizationDenied);
    test.administratorAllows = false;
    EXPECT_EQ(AuthorizationCopyRights(session, adminRight, askFlags, nullptr), errAuthorizationCanceled);
    test.administratorAllows = true;
    EXPECT_EQ(AuthorizationCopyRights(session, adminRight, askFlags, nullptr), 0);
    EXPECT_FALSE(test.administratorRequests.back().needsPassword);
    test.now = 300;
    EXPECT_TRUE(held());
    EXPECT_EQ(run(), 0); // a use, which extends it by five minutes
    test.now = 600;
    EXPECT_TRUE(held());
    test.now = 601;
    EXPECT_FALSE(held()) << "asking whether it holds does not extend it";
    EXPECT_EQ(AuthorizationCopyRights(session, adminRight, askFlags, nullptr), 0);
    EXPECT_EQ(test.administratorDialogs, 3);
    test.now = 500;
    EXPECT_FALSE(held()) << "the clock was set back";
    EXPECT_EQ(AuthorizationFree(session, kAuthorizationFlagDestroyRights), 0);
}

TEST(Runs, AreShownWithoutTheirSecretsAndTheirOutputOnceItIsRead) {
    TestHost host;
    host.onRun = [](const RecordedRun&) { return TestHost::RunAnswer{"no such user", 0}; };
    AuthorizationRef session = nullptr;
    ASSERT_EQ(AuthorizationCreate({}, kAuthorizationFlagDefaults, &session), 0);
    const std::vector<std::string> arguments = {".", "-passwd", "/Users/alice", "s3cret"};
    std::FILE* stream = nullptr;
    ASSERT_EQ(AuthorizationExecuteWithPrivileges(session, "/usr/bin/dscl", 0, arguments, &stream, 3), 0);
    EXPECT_EQ(host.shownRuns.back(), "/usr/bin/dscl . -passwd /Users/alice ********");
    EXPECT_EQ(host.runs.back().arguments.back(), "s3cret");
    EXPECT_TRUE(host.shownOutputs.empty());
    while (std::fgetc(stream) != EOF) {
    }
    EXPECT_EQ(host.shownOutputs, std::vector<std::string>{"no such user"});
    std::fclose(stream);
    EXPECT_EQ(AuthorizationFree(session, kAuthorizationFlagDefaults), 0);
    EXPECT_EQ(AuthorizationExecuteWithPrivileges(nullptr, "/bin/cp", 0, {}, &stream),
              errAuthorizationInvalidRef);
}

/// A sudo that accepts the password "right", remembers it in a file, and records its calls. With a file
/// "forgets" it remembers nothing, with "stranger" it rejects everybody, with "free" it runs the helper for
/// everybody, with "expired" it wants another password first.
constexpr const char* sudoScript = R"sh(cd "$(dirname "$0")"; echo "$*" >>calls
take() { IFS= read -r word; if test "$word" != right; then echo "Sorry, try again." >&2; exit 1; fi; }
case "$*" in
"-n -v") test -e held;;
"-S -p  -v")
    take
    if test -e stranger; then echo "Sorry, user eve may not run sudo on here." >&2; exit 1; fi
    if test -e expired; then printf 'Password is expired, try again\nno password was provided\n' >&2; exit 1; fi
    test -e forgets || touch held;;
"-S -p  -- "*) take; shift 4; exec "$@";;
-k) rm -f held;;
*) test -e held || test -e free || exit 1; shift 2; exec "$@";;
esac)sh";

/// Serves a session in which every tool prints how the helper was called.
constexpr const char* sessionHelperScript = R"sh(case "$*" in *--version) exit 0;; esac
while size=$(head -c 4 | od -An -tu4 --endian=big) && test -n "$size"; do
    head -c $size >/dev/null
    printf '\006\0\0\0\010%-8s\0' "$*"
done)sh";

class Sudo : public testing::Test {
  protected:
    // Others may write to the folder of the test's files.
    void SetUp() override { ::setenv("BRINDLE_DEVELOPMENT", "1", 1); }

    void TearDown() override { ::unsetenv("BRINDLE_DEVELOPMENT"); }

    OSStatus ask() { return AuthorizationCopyRights(session_, adminRight, askFlags, nullptr); }

    OSStatus askSilently() {
        return AuthorizationCopyRights(session_, adminRight, kAuthorizationFlagExtendRights, nullptr);
    }

    OSStatus run(std::string* output) {
        std::FILE* stream = nullptr;
        const OSStatus status = AuthorizationExecuteWithPrivileges(session_, "/bin/cp", 0, {}, &stream);
        output->assign(8, '\0');
        if (status == 0) {
            EXPECT_EQ(std::fread(output->data(), 1, output->size(), stream), output->size());
            std::fclose(stream);
        }
        return status;
    }

    /// Makes one of the files that change what the sudo above does.
    void set(const char* name) { test_.write(name, ""); }

    TestHost test_;
    std::string helper_ = script(test_, "helper", sessionHelperScript);
    std::shared_ptr<platform::SudoAuthority> authority_ =
        std::make_shared<platform::SudoAuthority>(helper_, "", script(test_, "sudo", sudoScript));
    platform::Host host_{servicesWith(test_, authority_)};
    AuthorizationRef session_ = [] {
        AuthorizationRef made = nullptr;
        EXPECT_EQ(AuthorizationCreate({}, kAuthorizationFlagDefaults, &made), 0);
        return made;
    }();
};

TEST_F(Sudo, AsksAgainAfterAWrongPasswordAndForgetsTheRightWhenItIsGivenUp) {
    EXPECT_EQ(askSilently(), errAuthorizationInteractionNotAllowed);
    std::string said;
    EXPECT_EQ(run(&said), errAuthorizationDenied);

    test_.passwords = {"a", "b", "c"};
    EXPECT_EQ(ask(), errAuthorizationDenied);
    EXPECT_EQ(test_.administratorDialogs, 3);
    test_.passwords = {"wrong", "right"};
    EXPECT_EQ(ask(), 0);
    ASSERT_EQ(test_.administratorRequests.size(), 5U);
    EXPECT_TRUE(test_.administratorRequests[3].needsPassword);
    EXPECT_EQ(test_.administratorRequests[3].message, "") << "the first dialog has nothing to explain";
    EXPECT_NE(test_.administratorRequests[4].message, "");

    EXPECT_EQ(run(&said), 0);
    EXPECT_EQ(said, "--system");
    EXPECT_EQ(run(&said), 0);
    EXPECT_TRUE(test_.read("calls").ends_with("-n -- " + helper_ + " --system\n"))
        << "one sudo serves the runs of an action";
    EXPECT_EQ(AuthorizationFree(session_, kAuthorizationFlagDestroyRights), 0);
    EXPECT_TRUE(test_.read("calls").ends_with("--system\n-k\n")) << test_.read("calls");
    EXPECT_EQ(test_.read("calls").find("right"), std::string::npos) << "a password became an argument";
}

TEST_F(Sudo, ThatRemembersNoPasswordIsAskedOncePerAction) {
    set("forgets");
    std::string said;
    for (int action = 1; action <= 2; ++action) {
        test_.passwords = {"right"};
        EXPECT_EQ(ask(), 0);
        EXPECT_EQ(askSilently(), 0);
        EXPECT_EQ(run(&said), 0);
        EXPECT_EQ(run(&said), 0);
        EXPECT_EQ(said, "--system");
        authority_->endAction();
        EXPECT_EQ(askSilently(), errAuthorizationInteractionNotAllowed);
        EXPECT_EQ(test_.administratorDialogs, action);
    }
    EXPECT_EQ(AuthorizationFree(session_, kAuthorizationFlagDefaults), 0);
}

TEST_F(Sudo, ThatRunsTheHelperFreelyIsNotGivenAPassword) {
    set("free");
    std::string said;
    EXPECT_EQ(askSilently(), 0);
    EXPECT_EQ(run(&said), 0);
    EXPECT_EQ(test_.administratorDialogs, 0);
    EXPECT_EQ(AuthorizationFree(session_, kAuthorizationFlagDefaults), 0);
}

TEST_F(Sudo, TellsAUserWhomItRejectsAndAsksNoMore) {
    for (const auto& [file, told] :
         {std::pair("expired", "Password is expired"), {"stranger", "does not let"}}) {
        set(file);
        test_.answerAlert("Changes Are Not Allowed", "OK");
        test_.passwords = {"right", "right"};
        test_.alerts.clear();
        test_.administratorDialogs = 0;
        EXPECT_EQ(ask(), errAuthorizationDenied);
        EXPECT_EQ(test_.administratorDialogs, 1);
        ASSERT_EQ(test_.alerts.size(), 1U);
        EXPECT_NE(test_.alerts[0].message.find(told), std::string::npos) << test_.alerts[0].message;
    }
    EXPECT_EQ(AuthorizationFree(session_, kAuthorizationFlagDefaults), 0);
}

TEST_F(Sudo, RunsNoHelperThatOthersCouldReplace) {
    ::unsetenv("BRINDLE_DEVELOPMENT");
    test_.answerAlert("Changes Are Not Allowed", "OK");
    test_.passwords = {"right"};
    EXPECT_EQ(ask(), errAuthorizationDenied);
    EXPECT_EQ(test_.administratorDialogs, 0);
    ASSERT_EQ(test_.alerts.size(), 1U);
    EXPECT_NE(test_.alerts[0].message.find("BRINDLE_DEVELOPMENT=1"), std::string::npos);
    std::string said;
    EXPECT_EQ(run(&said), errAuthorizationToolExecuteFailure);
    EXPECT_FALSE(std::filesystem::exists(test_.root() / "calls")) << "sudo was called";
    EXPECT_EQ(AuthorizationFree(session_, kAuthorizationFlagDefaults), 0);
}

} // namespace
