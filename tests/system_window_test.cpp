// The window on a computer of its own, used by an administrator whom sudo asks for a password.

#include "frontends/Application.h"
#include "frontends/qt/QtFrontend.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/host/SystemHost.h"
#include "support/InstalledBrindle.h"
#include "support/WindowHands.h"

#include <QComboBox>
#include <QLabel>
#include <QTableView>

#include <cstdlib>

#include <grp.h>
#include <sys/wait.h>

namespace {

class SystemWindow : public InstalledBrindle, protected WindowHands {
  protected:
    void SetUp() override {
        InstalledBrindle::SetUp();
        if (!IsSkipped()) {
            EXPECT_EQ(runProgram({"/usr/sbin/chpasswd"}, "chief:Abracadabra9\n").status, 0);
            allow("ALL");
        }
    }

    /// Opens the window as the administrator, in another process, and calls `use` to use it.
    template <class Use>
    void inWindow(Use use) {
        const pid_t child = ::fork();
        if (child == 0) {
            const passwd account = *::getpwnam("chief");
            const bool became = ::initgroups("chief", account.pw_gid) == 0 && ::setgid(account.pw_gid) == 0 &&
                                ::setuid(account.pw_uid) == 0;
            EXPECT_TRUE(became);
            openAndUse(use);
            ::_exit(HasFailure() ? 1 : 0);
        }
        int status = 1;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0) << "see above";
    }

    void choose(const std::string& popUp, const QString& title) {
        auto& box = widget<QComboBox>(popUp);
        box.setFocus();
        QTest::keyClicks(&box, title);
        EXPECT_EQ(box.currentText(), title) << popUp;
    }

    /// Shows the page once the window is active, as window managers make it after a dialog.
    void comeBackTo(int page) {
        widget<QWidget>("mainWindow").activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&widget<QWidget>("mainWindow")));
        showPage(page);
    }

    void makeGroup() {
        comeBackTo(2);
        typeInto("groupName", "crew");
        typeInto("gid", "7200");
        click("createNewGroupButton");
    }

  private:
    template <class Use>
    void openAndUse(Use use) {
        ::setenv("HOME", "/home/chief", 1);
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::setenv("QT_LOGGING_RULES", "default.warning=false", 1);
        frontend::Application application(
            platform::makeSystemServices({.prefix = "",
                                          .home = "",
                                          .resources = prefix + "/share/brindle",
                                          .helper = prefix + "/libexec/brindle-helper",
                                          .keepsUserDefaults = false,
                                          .log = nullptr}));
        NSUserDefaults::standardUserDefaults().setInteger(11, "BrindleDonationReminder"); // asks nothing
        int argc = 1;
        char program[] = "window";
        char* arguments[] = {program, nullptr};
        frontend::QtFrontend window(argc, arguments, frontend::QtFrontend::Manner::Interactive);
        application.setPresenter(window.presenter());
        ASSERT_TRUE(application.load().isOk());
        window.useReviewer(*application.reviewer());
        window.useHistory(application.history());
        application.launch();
        use();
        application.end();
    }
};

TEST_F(SystemWindow, AsksForThePasswordUntilItIsRightAndForNothingMoreAfterwards) {
    const std::string before = contents("/etc/group");
    inWindow([&] {
        passwords = {"wrong", "wrong again"};
        answer({"Yes", "Allow", "Allow", "Refuse"});
        makeGroup();
        EXPECT_EQ(asked,
                  (QStringList{"Confirm Add New Group", "Allow Changes", "Allow Changes", "Allow Changes"}));
        EXPECT_TRUE(lastText.contains("The password was not accepted")) << lastText.toStdString();
        EXPECT_EQ(contents("/etc/group"), before);

        passwords = {"Abracadabra9"};
        answer({"Yes", "Allow"});
        makeGroup();

        answer({"Yes"}); // the right is held from here on
        comeBackTo(1);
        typeInto("fullName", "Alice A");
        typeInto("shortName", "alice");
        typeInto("uid", "7201");
        choose("groupPopUp", "crew");
        click("addNewUserButton");
        typeInto("passwordSecureText1", "Wonderland1");
        typeInto("passwordSecureText2", "Wonderland1");
        QTest::keyClick(&widget<QLineEdit>("passwordSecureText2"), Qt::Key_Return);

        comeBackTo(0);
        clickTitled("New Share");
        typeInto("shareName", "Docs");
        typeInto("directory", QString::fromStdString(folder_));
        choose("sharingSMB", "Shared");
        choose("owner", "alice");
        choose("group", "crew");
        click("createNewShare");
        EXPECT_TRUE(answers.isEmpty() && passwords.isEmpty());
    });
    EXPECT_TRUE(contains(contents("/etc/passwd"), "\nalice:x:7201:7200:Alice A:/dev/null:/sbin/nologin\n"));
    EXPECT_TRUE(contains(contents("/etc/group"), "\ncrew:x:7200:alice\n"));
    const std::string put = smb("Docs", "alice%Wonderland1", "put /etc/hostname letter");
    EXPECT_FALSE(contains(put, "NT_STATUS_")) << put;
    EXPECT_EQ(ownerOf(folder_ + "/letter"), "alice");
    EXPECT_TRUE(contains(smb("Docs", "alice%wrong", "ls"), "NT_STATUS_LOGON_FAILURE"));
    for (const char* secret : {"Wonderland1", "Abracadabra9", "wrong again"}) {
        EXPECT_FALSE(contains(contents(sudoLog), secret));
    }
}

TEST_F(SystemWindow, SaysWhetherTheServerRunsAndStartsIt) {
    TearDown(); // ends the server
    inWindow([&] {
        const auto& state = widget<QLabel>("serverState");
        ASSERT_TRUE(QTest::qWaitFor([&] { return widget<QPushButton>("startServer").isVisible(); }, 10000));
        EXPECT_TRUE(state.text().startsWith("The SMB server is not running"))
            << state.toolTip().toStdString();
        passwords = {"Abracadabra9"};
        answer({"Allow"});
        click("startServer");
        EXPECT_TRUE(answers.isEmpty() && passwords.isEmpty());
        EXPECT_TRUE(QTest::qWaitFor([&] { return state.toolTip().contains("*:445"); }, 20000))
            << state.toolTip().toStdString();
        EXPECT_FALSE(widget<QPushButton>("startServer").isVisible());
        comeBackTo(3);
        EXPECT_TRUE(state.text().startsWith("No AFP server is running")) << state.toolTip().toStdString();
    });
}

TEST_F(SystemWindow, ShowsChangesBySomebodyElseAndWhyAFolderIsNotOffered) {
    run({"/usr/sbin/useradd", "-M", "-u", "7302", "eve"}); // without a home folder
    const std::string settings = contents("/etc/samba/smb.conf");
    run({prefix + "/bin/nicl", "--system", ".", "-create", "/users/eve", "sharedDir", "Public"});
    inWindow([&] {
        comeBackTo(1);
        const auto& users = *widget<QTableView>("userTableView").model();
        const QModelIndexList eve = users.match(users.index(0, 0), Qt::DisplayRole, "eve");
        ASSERT_FALSE(eve.isEmpty());
        QString remarks;
        for (int column = 0; column < users.columnCount(); ++column) {
            remarks += users.data(eve.front().siblingAtColumn(column), Qt::ToolTipRole).toString();
        }
        EXPECT_TRUE(remarks.contains("eve has no home folder of its own")) << remarks.toStdString();

        comeBackTo(4);
        typeInto("smbWorkGroup", "HOME");
        const auto edited = runProgram({"/usr/bin/sudo", "-S", "/usr/bin/sed", "-i",
                                        "s/^ *workgroup *=.*/   workgroup = CELLAR/", "/etc/samba/smb.conf"},
                                       "Abracadabra9\n");
        EXPECT_EQ(edited.status, 0) << edited.errors;
        answer({"Cancel"});
        clickTitled("Save");
        EXPECT_TRUE(lastText.contains("to &quot;CELLAR&quot; since; this change makes it &quot;HOME&quot;"))
            << lastText.toStdString();
        EXPECT_TRUE(answers.isEmpty()) << asked.join(", ").toStdString();
    });
    EXPECT_TRUE(contains(contents("/etc/samba/smb.conf"), "workgroup = CELLAR"));
    EXPECT_NE(contents("/etc/samba/smb.conf"), settings);
}

} // namespace

int main(int argc, char** argv) {
    return runTestsOnOwnComputer(argc, argv);
}
