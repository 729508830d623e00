#include "privileged/NiutilTask.h"

#include "platform/foundation/NSNotificationCenter.h"
#include "platform/netinfo/Store.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

namespace {

using Events = std::vector<std::string>;

/// An operation, the runs that it makes, and the logged texts when the run with the same index writes "no".
struct Operation {
    std::string name;
    std::function<bool(NiutilTask&)> perform; ///< returns true for operations without a result
    Events runs;
    std::vector<std::string> messages;
    bool stops = true; ///< whether it stops at the first failed run
};

void PrintTo(const Operation& operation, std::ostream* stream) {
    *stream << operation.name;
}

template <class Perform>
std::function<bool(NiutilTask&)> unanswered(Perform perform) {
    return [perform](NiutilTask& task) {
        perform(task);
        return true;
    };
}

const std::string pathFailed = "outString not empty for create directory_path: no";
const std::string userFailed = "outString not empty for create userProps: no";
const std::string groupFailed = "outString not empty for create groupProps: no";
const std::string entryFailed = "outString non empty for create User: no";

std::vector<Operation> operations() {
    const std::string nicl = "/usr/bin/nicl . ";
    const std::string share = nicl + "-create /config/Brindle/a/b";
    const std::string user = nicl + "-create /users/alice";
    const std::string group = nicl + "-create /groups/team";
    return {
        {"createShare",
         [](NiutilTask& task) { return task.createShare("a/b", "/srv/Docs", 1, 0, 1); },
         {share, share + " directory_path /srv/Docs", share + " afp_shared 1", share + " afp_name a/b",
          share + " afp_use_parent_privs 0", share + " afp_use_parent_owner 1"},
         {"outString non empty for create Directory: no", pathFailed, pathFailed, pathFailed,
          "outString not empty for create afp_use_parent_privs: no",
          "outString not empty for create afp_use_parent_owner: no"}},
        {"deleteShare",
         unanswered([](NiutilTask& task) { task.deleteShare("Docs"); }),
         {nicl + "-delete /config/Brindle/Docs"},
         {"outString non empty for deleteGroup: no"},
         false},
        {"cp",
         [](NiutilTask& task) { return task.cp("/home/a/x", "/etc/smb.conf"); },
         {"/bin/cp /home/a/x /etc/smb.conf"},
         {"outString non empty for cp: no"}},
        {"changePermissions",
         unanswered([](NiutilTask& task) { task.changePermissions("/srv/Docs", "alice", "staff", 489); }),
         {"/usr/sbin/chown alice:staff /srv/Docs", "/bin/chmod 751 /srv/Docs"},
         {entryFailed, entryFailed},
         false},
        {"createUser",
         [](NiutilTask& task) { return task.createUser("alice", "Alice A", "501", "20", true, false); },
         {user, user + " realname Alice A", user + " gid 20", user + " uid 501", user + " sharedDir Public",
          user + " _shadow_passwd", user + " hint", user + " _writers_hint alice",
          user + " _writers_passwd alice", user + " home /dev/null", user + " passwd !",
          user + " shell /sbin/nologin"},
         {entryFailed, userFailed, userFailed, userFailed, userFailed, userFailed, userFailed, userFailed,
          userFailed, userFailed, userFailed, userFailed}},
        {"updateUser",
         [](NiutilTask& task) { return task.createUser("alice", "", "501", "20", false, true); },
         {user + " realname", user + " gid 20", user + " uid 501", user + " sharedDir <no value>"},
         {userFailed, userFailed, userFailed, userFailed}},
        {"createGroup",
         [](NiutilTask& task) { return task.createGroup("team", "600", false); },
         {group, group + " gid 600", group + " passwd *", group + " users"},
         {entryFailed, groupFailed, groupFailed, groupFailed}},
        {"updateGroup",
         [](NiutilTask& task) { return task.createGroup("team", "600", true); },
         {group + " gid 600"},
         {groupFailed}},
        {"deleteUser",
         unanswered([](NiutilTask& task) { task.deleteUser("alice"); }),
         {nicl + "-delete /users/alice"},
         {"outString non empty for create Directory: no"},
         false},
        {"deleteGroup",
         unanswered([](NiutilTask& task) { task.deleteGroup("team"); }),
         {nicl + "-delete /groups/team"},
         {"outString non empty for deleteGroup: no"},
         false},
        {"addUser",
         [](NiutilTask& task) { return task.addUser("alice", "team"); },
         {nicl + "-append /groups/team users alice"},
         {"outString non empty for add User to Group: no"}},
        {"removeUser",
         [](NiutilTask& task) { return task.removeUser("alice", "team"); },
         {nicl + "-delete /groups/team users alice"},
         {"outString non empty for add User to Group: no"}},
        {"changeUserShare",
         unanswered([](NiutilTask& task) { task.changeUserShare("alice", false); }),
         {user + " sharedDir <no value>"},
         {pathFailed},
         false},
        {"runPasswd",
         unanswered([](NiutilTask& task) { task.runPasswd("alice", "s3cret"); }),
         {"/usr/bin/dscl . -passwd /Users/alice s3cret"},
         {"outString not empty for create passwd: no"},
         false},
    };
}

class PrivilegedOperation : public testing::TestWithParam<Operation> {};

TEST_P(PrivilegedOperation, MakesItsRunsInOrderAndNothingElse) {
    TestHost host;
    EXPECT_TRUE(GetParam().perform(NiutilTask::sharedInstance()));
    EXPECT_EQ(host.runTexts(), GetParam().runs);
    EXPECT_EQ(host.events.size(), GetParam().runs.size());
    for (const std::string& shown : host.shownRuns) {
        EXPECT_EQ(shown.find("s3cret"), std::string::npos) << shown;
    }
}

TEST_P(PrivilegedOperation, RunsNothingWhenTheUserRefuses) {
    TestHost host;
    host.rightHeld = false;
    host.administratorAllows = false;
    const bool answersWhenRefused = !GetParam().stops; // operations without a result
    EXPECT_EQ(GetParam().perform(NiutilTask::sharedInstance()), answersWhenRefused);
    EXPECT_EQ(host.events, Events{"administrator refuse"});
}

TEST_P(PrivilegedOperation, BeepsAndLogsEachFailedRunAndStopsWhereItMust) {
    const Operation& operation = GetParam();
    for (std::size_t failing = 0; failing < operation.runs.size(); ++failing) {
        for (const bool byLaunch : {false, true}) {
            TestHost host;
            host.onRun = [&](const RecordedRun&) {
                const bool fails = host.runs.size() == failing + 1;
                return TestHost::RunAnswer{fails && !byLaunch ? "no" : "", fails && byLaunch ? -60031 : 0};
            };
            EXPECT_EQ(operation.perform(NiutilTask::sharedInstance()), !operation.stops);
            Events expected;
            for (std::size_t run = 0; run < operation.runs.size(); ++run) {
                expected.push_back("run " + operation.runs[run]);
                if (run == failing) {
                    expected.emplace_back("beep");
                    expected.push_back("log " + (byLaunch
                                                     ? "Error -60031 in AuthorizationExecuteWithPrivileges"
                                                     : operation.messages.at(run)));
                    if (operation.stops) {
                        break;
                    }
                }
            }
            EXPECT_EQ(host.events, expected) << "at run " << failing;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Every, PrivilegedOperation, testing::ValuesIn(operations()),
                         [](const auto& test) { return test.param.name; });

TEST(Runs, PassEachNameAndPathAsOneArgument) {
    TestHost host;
    NiutilTask& task = NiutilTask::sharedInstance();
    EXPECT_TRUE(task.createUser("alice", "Alice A", "501", "20", false, true));
    EXPECT_EQ(host.runs.front().arguments, (Events{".", "-create", "/users/alice", "realname", "Alice A"}));
    host.runs.clear();
    EXPECT_TRUE(task.createUser("alice", "", "501", "20", false, true));
    EXPECT_EQ(host.runs.front().arguments, (Events{".", "-create", "/users/alice", "realname"}));
    host.runs.clear();
    task.changePermissions("/srv/Our Docs", "alice", "domain users", 0751);
    EXPECT_EQ(host.runs.front().arguments, (Events{"alice:domain users", "/srv/Our Docs"}));
}

/// Makes a directory with these shares.
void makeShares(const TestHost& host, const Events& names) {
    platform::Store store(host.storeFile().string(), platform::Store::Opening::Create);
    store.addStandingRecords();
    const std::array<std::string, 2> shares = {"config", "Brindle"};
    for (const std::string& name : names) {
        store.addRecord(store.find(shares).value(), name);
    }
    EXPECT_TRUE(store.commit().isOk());
}

TEST(DeletingAllShares, GoesFromTheLastToTheFirstAndOnAfterAFailure) {
    TestHost host;
    makeShares(host, {"One", "Two", "Three"});
    host.onRun = [&](const RecordedRun&) {
        return host.runs.size() == 1   ? TestHost::RunAnswer{"no", 0}
               : host.runs.size() == 2 ? TestHost::RunAnswer{"", -60031}
                                       : TestHost::RunAnswer{};
    };
    NiutilTask::sharedInstance().deleteAllShares();
    const std::string nicl = "run /usr/bin/nicl . -delete /config/Brindle/";
    EXPECT_EQ(host.events,
              (Events{nicl + "Three", "beep",
                      "log Delete All Shares did not complete properly for share: Three with error: no",
                      nicl + "Two", "beep", "log Error -60031 in Delete AuthorizationExecuteWithPrivileges",
                      nicl + "One"}));
}

TEST(KeptReports, AreForgottenWithTheLastOfWhateverKeepsThem) {
    TestHost host;
    makeShares(host, {"One"});
    NiutilTask& task = NiutilTask::sharedInstance();
    NiutilTask::Report kept;
    {
        const NiutilTask::ReportsKept outer(task);
        kept = task.currentShares();
        {
            const NiutilTask::ReportsKept inner(task);
            EXPECT_EQ(task.currentShares(), kept);
        }
        EXPECT_EQ(task.currentShares(), kept);
    }
    const NiutilTask::Report read = task.currentShares();
    EXPECT_NE(read, kept);
    EXPECT_NE(task.currentShares(), read) << "none is kept any more";
    EXPECT_EQ(*read, *kept);
}

void watchNotifications(const NiutilTask& task, Events* posted) {
    for (const auto& name : {NiutilAuthenticatedNotification, NiutilDeauthenticatedNotification}) {
        NSNotificationCenter::defaultCenter().addObserver(
            posted, [posted](const NSNotification& notification) { posted->push_back(notification.name); },
            name, &task);
    }
}

TEST(Session, ThatCannotBeMadeHasNoRights) {
    Events posted;
    TestHost host;
    host.makesSessions = false;
    NiutilTask& task = NiutilTask::sharedInstance();
    watchNotifications(task, &posted);
    EXPECT_FALSE(task.isAuthenticated());
    EXPECT_FALSE(task.authenticate());
    EXPECT_FALSE(task.createGroup("team", "600", false));
    task.deauthenticate();
    EXPECT_EQ(host.events, Events{}) << "the user is asked for nothing, and nothing is run";
    EXPECT_EQ(posted, Events{});
}

TEST(Session, AsksOnceAndNotifiesWhenTheRightIsGainedAndLost) {
    Events posted; // outlives the host, because the end of the session is notified too
    TestHost host;
    host.rightHeld = false;
    NiutilTask& task = NiutilTask::sharedInstance();
    watchNotifications(task, &posted);
    task.deauthenticate();
    EXPECT_EQ(posted, Events{}) << "there was no session";
    EXPECT_FALSE(task.isAuthenticated());
    host.administratorAllows = false;
    EXPECT_FALSE(task.authenticate());
    EXPECT_EQ(posted, Events{}) << "the user refused";
    host.administratorAllows = true;
    EXPECT_TRUE(task.authenticate());
    EXPECT_TRUE(task.authenticate());
    EXPECT_EQ(host.administratorDialogs, 2) << "a right that is held is not requested again";
    task.deauthenticate();
    EXPECT_FALSE(task.isAuthenticated());
    EXPECT_EQ(posted, (Events{"NiutilAuthenticatedNotification", "NiutilDeauthenticatedNotification"}));
}

TEST(Session, RequestsTheAdministratorRightAndAsksTheUserOnlyAfterASilentTest) {
    TestHost host;
    host.rightHeld = false;
    EXPECT_TRUE(NiutilTask::sharedInstance().authenticate());
    std::vector<AuthorizationFlags> flags;
    for (const RecordedRightsRequest& request : host.rightsRequests) {
        flags.push_back(request.flags);
        ASSERT_EQ(request.rights.size(), 1U);
        EXPECT_EQ(request.rights[0].name, "system.privilege.admin");
        EXPECT_EQ(request.rights[0].value, "/usr/bin/nicl");
        EXPECT_EQ(request.rights[0].flags, 0U);
    }
    EXPECT_EQ(flags, (std::vector<AuthorizationFlags>{2, 3, 2}));
}

TEST(ToolOutput, IsReadWholeAndShownAsMissingWhenItIsNotText) {
    for (const std::size_t size : {511U, 512U, 1024U, 200000U}) {
        TestHost host;
        host.onRun = [&](const RecordedRun&) { return TestHost::RunAnswer{std::string(size, 'x'), 0}; };
        EXPECT_FALSE(NiutilTask::sharedInstance().cp("a", "b"));
        EXPECT_EQ(host.log, Events{"outString non empty for cp: " + std::string(size, 'x')});
    }
    TestHost host;
    host.onRun = [&](const RecordedRun&) { return TestHost::RunAnswer{"\xff\xfe", 0}; };
    EXPECT_FALSE(NiutilTask::sharedInstance().cp("a", "b"));
    EXPECT_EQ(host.log, Events{"outString non empty for cp: (null)"});
}

TEST(Restart, SignalsEveryListedProcessAndGoesOnAfterAFailure) {
    const std::string smb =
        "/bin/ps -ax | /usr/bin/grep smbd | /usr/bin/grep -v grep | /usr/bin/awk '{print $1}'";
    const std::string afs =
        "/bin/ps -ax | /usr/bin/grep AppleFileServer | /usr/bin/grep -v grep | /usr/bin/awk '{print $1}'";

    const std::string first = "run /bin/kill -1 210";
    const std::vector<std::pair<std::optional<std::string>, Events>> cases = {
        {"210\n211\n",
         {first, "beep", "log Error -60031 in Kill AuthorizationExecuteWithPrivileges",
          "run /bin/kill -1 211"}},
        {"211\n210", {"run /bin/kill -1 211"}}, // the last line has no line break
        {"", {}},
        {std::nullopt, {"log Error opening pipe: " + smb, "beep"}},
    };
    for (const auto& [listing, events] : cases) {
        TestHost host;
        Events listed;
        host.onListing = [&, &listing = listing](const std::string& command) {
            listed.push_back(command);
            return command == afs ? std::optional<std::string>("") : listing;
        };
        host.onRun = [](const RecordedRun& run) {
            return TestHost::RunAnswer{"never read", run.arguments.back() == "210" ? -60031 : 0};
        };
        NiutilTask::sharedInstance().restartAFS();
        NiutilTask::sharedInstance().restartSMB();
        EXPECT_EQ(listed, (Events{afs, smb}));
        EXPECT_EQ(host.events, events);
    }
}

TEST(Restart, ListsNothingWhenTheUserRefuses) {
    TestHost host;
    host.rightHeld = host.administratorAllows = false;
    host.onListing = [](const std::string&) -> std::optional<std::string> {
        ADD_FAILURE() << "processes were listed";
        return "210\n";
    };
    NiutilTask::sharedInstance().restartSMB();
    EXPECT_EQ(host.events, Events{"administrator refuse"});
}

} // namespace
