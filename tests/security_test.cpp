#include "platform/foundation/Host.h"
#include "platform/security/Authorization.h"
#include "platform/security/ConsentAuthority.h"
#include "platform/security/HelperLauncher.h"
#include "platform/security/HelperProtocol.h"
#include "platform/security/SudoAuthority.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <sstream>

namespace {

using namespace std::chrono_literals;
using platform::HelperLauncher;

const AuthorizationRights kRight = {{"system.privilege.admin", "/usr/bin/nicl", 0}};
constexpr AuthorizationFlags kAsk = kAuthorizationFlagInteractionAllowed | kAuthorizationFlagExtendRights;

/// An executable script in the test's root. Answers its path.
std::string script(TestHost& host, const std::string& name, const std::string& text) {
    host.write(name, "#!/bin/sh\n" + text + "\n");
    const auto file = host.root() / name;
    std::filesystem::permissions(file, std::filesystem::perms(0755));
    return file.string();
}

std::string readAll(int descriptor) {
    std::FILE* const stream = ::fdopen(descriptor, "r");
    std::string bytes;
    for (int byte = 0; (byte = std::fgetc(stream)) != EOF;) {
        bytes.push_back(static_cast<char>(byte));
    }
    std::fclose(stream);
    return bytes;
}

TEST(HelperLauncherStart, CountsOnlyWhenTheHelperSaysSoFirst) {
    struct Case {
        std::string helper;
        OSStatus status;
        std::string output;
    };

    const std::vector<Case> cases = {
        {"cat >/dev/null; printf '\\006said'", 0, "said"},
        {"cat >/dev/null; printf '\\006'; exit 1", 0, ""},
        {"printf 'hello\\006'", -60031, ""},
        {"exit 125", -60031, ""},
        {"exit 0", -60031, ""},
        {"exit 1", -60005, ""}, // as sudo ends when it refuses
        {"kill -9 $$", -60031, ""},
        {"exec sleep 100", -60031, ""},
    };
    TestHost host;
    for (const Case& each : cases) {
        HelperLauncher launcher({script(host, "helper", each.helper)}, 500ms);
        int output = -1;
        const std::vector<std::string> arguments = {"-1", std::string(300000, 'x')};
        ASSERT_EQ(launcher.run("/bin/kill", arguments, &output), each.status) << each.helper;
        if (each.status == 0) {
            EXPECT_EQ(readAll(output), each.output) << each.helper;
        }
    }
    HelperLauncher missing({(host.root() / "missing").string()});
    EXPECT_EQ(missing.run("/bin/kill", {}, nullptr), -60031);
}

TEST(HelperLauncherRequest, ReachesTheHelperWholeOrNotAtAll) {
    TestHost host;
    HelperLauncher launcher({script(host, "helper", "n=$(tr '\\0' '|' | wc -c); printf '\\006%s' $n")});
    const auto size = [&](const std::string& argument) {
        int output = -1;
        const std::vector<std::string> arguments = {argument, ""};
        const OSStatus status = launcher.run("/bin/cp", arguments, &output);
        return status == 0 ? readAll(output) : std::to_string(status);
    };
    const std::size_t rest = std::string("/bin/cp|||").size();
    EXPECT_EQ(size("-R"), std::to_string(rest + 2));
    EXPECT_EQ(size(std::string(platform::maximumHelperRequest - rest, 'x')), "1048576");
    EXPECT_EQ(size(std::string(platform::maximumHelperRequest - rest + 1, 'x')), "-60031") << "too large";
    EXPECT_EQ(size(std::string("a\0b", 3)), "-60031") << "would reach the helper as two arguments";
}

TEST(HelperLauncherRun, WithoutAStreamAnswersWhenTheToolHasEnded) {
    TestHost host;
    const auto done = host.root() / "done";
    const std::string tool = "head -c 300000 /dev/zero; sleep 0.2; echo x >" + done.string();
    HelperLauncher launcher({script(host, "helper", "cat >/dev/null; printf '\\006'; " + tool)});
    EXPECT_EQ(launcher.run("/bin/kill", {}, nullptr), 0);
    EXPECT_TRUE(std::filesystem::exists(done));
}

/// A host like the test's, with another authority.
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
        return AuthorizationCopyRights(session, kRight, kAuthorizationFlagExtendRights, nullptr) == 0;
    };
    const auto run = [&] {
        return AuthorizationExecuteWithPrivileges(session, "/bin/cp", kAuthorizationFlagDefaults, {},
                                                  nullptr);
    };
    EXPECT_FALSE(held());
    EXPECT_EQ(run(), errAuthorizationDenied);
    test.administratorAllows = false;
    EXPECT_EQ(AuthorizationCopyRights(session, kRight, kAsk, nullptr), errAuthorizationCanceled);
    test.administratorAllows = true;
    EXPECT_EQ(AuthorizationCopyRights(session, kRight, kAsk, nullptr), 0);
    EXPECT_FALSE(test.administratorRequests.back().needsPassword);
    test.now = 300;
    EXPECT_TRUE(held());
    EXPECT_EQ(run(), 0); // a use: it holds for five minutes from here
    test.now = 600;
    EXPECT_TRUE(held());
    test.now = 601;
    EXPECT_FALSE(held()) << "asking whether it holds is no use";
    EXPECT_EQ(AuthorizationCopyRights(session, kRight, kAsk, nullptr), 0);
    EXPECT_EQ(test.administratorDialogs, 3);
    test.now = 500;
    EXPECT_FALSE(held()) << "the clock was put back";
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

/// A sudo that takes the password "right", remembers it in a file, and writes down how it was called.
constexpr const char* kSudo = R"sh(cd "$(dirname "$0")"; echo "$*" >>calls
case "$*" in
"-n -v") test -e held;;
"-S -p  -v") read -r word; test "$word" = right && touch held;;
-k) rm -f held;;
*) test -e held || exit 1; shift 2; exec "$@";;
esac)sh";

TEST(Sudo, AsksAgainForAWrongPasswordAndForgetsTheRightWhenItIsGivenUp) {
    TestHost test;
    const std::string helper = script(test, "helper", "cat >/dev/null; printf '\\006%s' \"$*\"");
    const std::string sudo = script(test, "sudo", kSudo);
    const platform::Host host(servicesWith(test, std::make_shared<platform::SudoAuthority>(helper, sudo)));
    AuthorizationRef session = nullptr;
    ASSERT_EQ(AuthorizationCreate({}, kAuthorizationFlagDefaults, &session), 0);
    EXPECT_EQ(AuthorizationCopyRights(session, kRight, kAuthorizationFlagExtendRights, nullptr),
              errAuthorizationInteractionNotAllowed);
    std::FILE* stream = nullptr;
    EXPECT_EQ(AuthorizationExecuteWithPrivileges(session, "/bin/cp", 0, {}, &stream), errAuthorizationDenied);

    test.passwords = {"a", "b", "c"};
    EXPECT_EQ(AuthorizationCopyRights(session, kRight, kAsk, nullptr), errAuthorizationDenied);
    EXPECT_EQ(test.administratorDialogs, 3);
    test.passwords = {"wrong", "right"};
    EXPECT_EQ(AuthorizationCopyRights(session, kRight, kAsk, nullptr), 0);
    ASSERT_EQ(test.administratorRequests.size(), 5U);
    EXPECT_TRUE(test.administratorRequests[3].needsPassword);
    EXPECT_EQ(test.administratorRequests[3].message, "") << "the first time there is nothing to explain";
    EXPECT_NE(test.administratorRequests[4].message, "");

    ASSERT_EQ(AuthorizationExecuteWithPrivileges(session, "/bin/cp", 0, {}, &stream), 0);
    std::string line(8, '\0');
    EXPECT_EQ(std::fread(line.data(), 1, line.size(), stream), 8U);
    EXPECT_EQ(line, "--system");
    std::fclose(stream);
    EXPECT_EQ(AuthorizationFree(session, kAuthorizationFlagDestroyRights), 0);
    EXPECT_TRUE(test.read("calls").ends_with("-n -- " + helper + " --system\n-k\n")) << test.read("calls");
    EXPECT_EQ(test.read("calls").find("right"), std::string::npos) << "a password became an argument";
}

} // namespace
