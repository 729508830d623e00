// Shares of this computer, made by scripts.

#include "platform/samba/ServerState.h"
#include "support/InstalledBrindle.h"

#include <algorithm>
#include <ctime>

namespace {

namespace fs = std::filesystem;

class SystemShares : public InstalledBrindle {};

TEST_F(SystemShares, AreMadeByAScriptServedAtOnceAndDeletedWithoutATraceInTheFile) {
    const std::string stock = contents(smbConf);
    const std::string rootsHistory = "/root/.local/state/brindle/history.db";
    const std::string rootsBefore = contents(rootsHistory);
    const std::string made = script(makeDocs() + "show normalTableView\nhistory\n");
    EXPECT_TRUE(contains(made, "run /bin/cp /home/chief/smb_test.conf /etc/smb.conf\n")) << made;
    EXPECT_TRUE(contains(made, "run /bin/kill -1 ")) << made;
    EXPECT_FALSE(contains(made, "output ")) << made;
    EXPECT_FALSE(contains(made, "administrator ")) << "sudo does not ask this administrator";
    EXPECT_TRUE(contains(made, "ShareName=\"Docs\"")) << made;
    EXPECT_TRUE(contains(made, "\"chief\"")) << made;
    EXPECT_TRUE(contains(contents(smbConf), "[Docs]\npath = /home/shared\n"));
    EXPECT_EQ(contents(smbConf + ".before-brindle"), stock);

    const std::string put = smb("Docs", "", "put /etc/hostname letter");
    EXPECT_FALSE(contains(put, "NT_STATUS")) << put;
    EXPECT_EQ(ownerOf(folder_ + "/letter"), "nobody");

    const std::string deleted =
        script("answer \"Confirm Delete Selected Share\" Yes\nrows normalTableView 0\n"
               "press deleteButton\nshow normalTableView\n");
    EXPECT_FALSE(contains(deleted, "Docs\"")) << deleted;
    EXPECT_EQ(contents(smbConf), stock);
    EXPECT_TRUE(contains(smb("Docs", "", "ls"), "NT_STATUS_BAD_NETWORK_NAME"));

    const std::string log = contents(sudoLog);
    EXPECT_NE(log, "");
    std::size_t commands = 0;
    for (std::size_t at = log.find("COMMAND="); at != std::string::npos; at = log.find("COMMAND=", at + 1)) {
        ++commands;
        EXPECT_EQ(log.find("COMMAND=" + prefix + "/libexec/brindle-helper --system", at), at) << log;
    }
    EXPECT_GT(commands, 1U);
    EXPECT_EQ(contents(rootsHistory), rootsBefore) << "the history belongs to the user";
    EXPECT_EQ(ownerOf("/home/chief/.local/state/brindle/history.db"), "chief");
}

TEST_F(SystemShares, CanBeUndoneAndRedone) {
    const std::string stock = contents(smbConf);
    script(makeDocs());
    const std::string made = contents(smbConf);
    const std::string planned = script("rows normalTableView 0\nplan press deleteButton\n");
    EXPECT_TRUE(contains(planned, "would change /etc/smb.conf - \"[Docs]\"")) << planned;
    EXPECT_EQ(contents(smbConf), made);
    script("undo\n");
    EXPECT_EQ(contents(smbConf), stock);
    EXPECT_EQ(runProgram({prefix + "/bin/nireport", "--system", ".", "/config/Brindle", "name"}).output, "");
    script("undo\n");
    EXPECT_EQ(contents(smbConf), made);
}

TEST_F(SystemShares, AreNotMadeFromAFolderThatAnybodyCouldReplace) {
    const std::string stock = contents(smbConf);
    fs::permissions(fs::path(folder_), fs::perms(0777));
    folder_ += "/inside";
    fs::create_directory(folder_);
    const std::string refused = script(makeDocs());
    EXPECT_TRUE(contains(refused, "Not Possible")) << refused;
    EXPECT_TRUE(contains(refused, "could be replaced by anybody")) << refused;
    EXPECT_FALSE(contains(refused, "run ")) << "nothing is half done";
    EXPECT_EQ(contents(smbConf), stock);
}

TEST_F(SystemShares, OfTheSystemsFoldersAreUpdatedButNeitherMadeNorGivenToOthers) {
    const std::string stock = contents(smbConf);
    folder_ = "/";
    const std::string refused = script(makeDocs());
    EXPECT_TRUE(contains(refused, "Not Possible")) << refused;
    EXPECT_EQ(contents(smbConf), stock);
    EXPECT_TRUE(platform::writeWholeFile(smbConf, stock + "[Docs]\npath = /\n").isOk());
    const std::string menus = "rows normalTableView 1\nselect everyonePrivs 0\nplan press createNewShare\n";
    EXPECT_TRUE(contains(script(menus), "blocked folder")) << script(menus);
    const std::string updated = script("rows normalTableView 1\nplan press createNewShare\n");
    EXPECT_TRUE(contains(updated, "warning system-folder")) << updated;
}

TEST_F(SystemShares, AreTakenBackWithoutAFolderThatAnybodyCouldReplaceByThen) {
    const std::string stock = contents(smbConf);
    const fs::path parent = folder_;
    folder_ += "/inside";
    fs::create_directory(folder_);
    script(makeDocs());
    const fs::perms shared = fs::status(folder_).permissions();
    fs::permissions(parent, fs::perms(0777));
    const std::string taken = script("undo\n");
    EXPECT_TRUE(contains(taken, "Anybody could replace the folder " + folder_)) << taken;
    EXPECT_EQ(fs::status(folder_).permissions(), shared);
    EXPECT_NE(shared, fs::perms(0755)) << "the share changed nothing that could be taken back";
    EXPECT_EQ(contents(smbConf), stock);
}

TEST_F(SystemShares, KeepWhatSomebodyElseHasWrittenMeanwhile) {
    // Between the start and the action, as with an editor.
    const std::string music = "\n[Music]\n   path = /srv/music ; all of it\n";
    Conversation session({"/usr/sbin/runuser", "-u", "chief", "--", "env", "HOME=/home/chief", "LC_ALL=C",
                          prefix + "/bin/brindle", "--system", "--script", "-"});
    EXPECT_EQ(session.ask("answer Donation Cancel\nstart\nshow shareName", "shareName"), "shareName \"\"");
    EXPECT_TRUE(platform::writeWholeFile(smbConf, contents(smbConf) + music).isOk());
    EXPECT_TRUE(contains(session.ask(makeDocs() + "show shareName", "shareName"), "Docs"));
    EXPECT_TRUE(contains(contents(smbConf), music));
    // The printer drivers' share, Music, and the new one.
    EXPECT_TRUE(contains(session.ask("show normalTableView", "normalTableView"), "3 rows"));
}

TEST_F(SystemShares, StayUnchangedIfSudoAsksAScriptForAPassword) {
    allow("ALL");
    const std::string stock = contents(smbConf);
    const std::string printed = script(makeDocs());
    EXPECT_TRUE(contains(printed, "administrator -> refuse\n")) << printed;
    EXPECT_FALSE(contains(printed, "\nrun ")) << printed;
    EXPECT_EQ(contents(smbConf), stock);
    EXPECT_FALSE(fs::exists("/var/lib/brindle"));
}

TEST_F(SystemShares, AreServedAgainByAServerThatTheHelperStarts) {
    TearDown();
    for (int tries = 0; tries < 100 && platform::smbServerState().process != 0; ++tries) {
        ::usleep(50000);
    }
    ASSERT_EQ(platform::smbServerState().process, 0);
    const auto service = [&](const std::string& what) {
        return outputOfHelper({prefix + "/libexec/brindle-helper", "--system"},
                              {"/usr/sbin/service", "smbd", what});
    };
    EXPECT_TRUE(contains(service("stop"), "use service smbd"));
    EXPECT_EQ(service("start"), "");
    platform::ServerState state = platform::smbServerState();
    for (int tries = 0; tries < 200 && state.listensAt.empty(); ++tries) {
        ::usleep(50000); // it opens its ports after it has reported that it runs
        state = platform::smbServerState();
    }
    EXPECT_GT(state.process, 0);
    EXPECT_LT(std::time(nullptr) - state.since, 60);
    EXPECT_NE(std::ranges::find(state.listensAt, "*:445"), state.listensAt.end());
    if (fs::exists("/usr/sbin/update-rc.d")) {
        const auto startsAtBoot = [] { return !run({"find", "/etc/rc2.d", "-name", "S*smbd"}).empty(); };
        run({"/usr/sbin/update-rc.d", "smbd", "disable"});
        EXPECT_FALSE(startsAtBoot());
        EXPECT_EQ(service("enable"), "");
        EXPECT_TRUE(startsAtBoot());
    }
}

TEST_F(SystemShares, AreNotSavedIntoAFileThatTheServerCouldNotUse) {
    const std::string stock = contents(smbConf);
    const std::string printed =
        script("type smbWorkGroup HOME\ntype smbMaxConnections 7\nsend updateSMBProperties:\n");
    EXPECT_FALSE(contains(printed, "output ")) << printed;
    EXPECT_TRUE(contains(contents(smbConf), "   workgroup = HOME\n")) << contents(smbConf);
    const std::string usable = contents(smbConf);
    EXPECT_TRUE(platform::writeWholeFile("/home/chief/smb_test.conf", "[global]\nnonsense = 1\n").isOk());
    ASSERT_EQ(::chown("/home/chief/smb_test.conf", ::getpwnam("chief")->pw_uid, 0), 0);
    const std::string refused = outputOfHelper({"/usr/sbin/runuser", "-u", "chief", "--", "sudo", "-n", "--",
                                                prefix + "/libexec/brindle-helper", "--system"},
                                               {"/bin/cp", "/home/chief/smb_test.conf", "/etc/smb.conf"});
    EXPECT_TRUE(contains(refused, "nonsense")) << refused;
    EXPECT_EQ(contents(smbConf), usable);
}

} // namespace
