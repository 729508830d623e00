#pragma once

#include "app/BROutlets.h"
#include "app/BRRow.h"
#include "model/NormalShare.h"
#include "model/SMBConf.h"
#include "platform/appkit/Interface.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSNotificationCenter.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class KWIntegerFormatter;
class KWSMBFormatter;
class NSBundle;

/// The application's one controller. It handles every control of the main window, reads the directory and the
/// two configuration files, and writes them through the shared NiutilTask. The main interface file creates
/// it, and it lives as long as the process. An action takes the control that sends it, which may be null, and
/// returns nothing: alerts show what the user must know, and the lists, which are read again afterwards, show
/// what the directory now holds. Every decision reads the directory afresh.
class BRController : public BROutlets,
                     public NSApplicationDelegate,
                     public NSTableViewDataSource,
                     public NSTableViewDelegate,
                     public NSTabViewDelegate,
                     public NSTextFieldDelegate {
  public:
    BRController();
    ~BRController() override;

    /// Loads the bundle's main interface file, which creates the controller.
    [[nodiscard]] static platform::Result<std::unique_ptr<platform::Interface>> loadInterface();

    // Application and start-up.
    void applicationDidFinishLaunching() override;
    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed() override;
    void applicationWillTerminate() override;
    void startUp();
    void userAuthenticated(const NSNotification& notification);
    void userDeauthenticated(const NSNotification& notification);
    void toggleAuthorization(NSControl* sender);
    void toggleDrawer(NSControl* sender);
    void tabViewDidSelectTabViewItem(NSTabView* tabView, int index) override;
    void controlDidFailToValidatePartialString(NSTextField* control, const std::string& partial,
                                               const std::string& errorDescription) override;
    void showAboutBox(NSControl* sender);

    // Share inventory.
    void parseCurrentShares();
    void parseUserShares();
    void parseGroupShares();
    void parseGroupUserShares();
    void refreshNormalList(NSControl* sender);
    void refreshPublicList(NSControl* sender);
    [[nodiscard]] int numberOfRowsInTableView(NSTableView* table) override;
    [[nodiscard]] std::string
    tableViewObjectValueForTableColumn(NSTableView* table, const NSTableColumn& column, int row) override;
    void tableViewSelectionDidChange(NSTableView* table) override;

    // Share editor.
    void updateShareTextFields(NSControl* sender);
    void updateCreateShareButton(NSControl* sender);
    void updateInheritButtons(NSControl* sender);
    void selectDirectory(NSControl* sender);
    void createShare(NSControl* sender);
    void deleteShare(NSControl* sender);
    void deleteAllShares(NSControl* sender);
    [[nodiscard]] std::int32_t menuToPermissions() const;
    static void selectMenuItem(NSPopUpButton* menu, int privs);

    // Migration.
    void checkSharesFor10pt2();
    /// Not wired to any control: it works on the list as start-up has just read it.
    void updateSharesFor10pt2(NSControl* sender);

    // Users and groups.
    void addNewUser(NSControl* sender);
    void addNewGroup(NSControl* sender);
    void deleteSelectedUser(NSControl* sender);
    void deleteSelectedGroup(NSControl* sender);
    void addUserToGroup(NSControl* sender);
    void removeUserFromGroup(NSControl* sender);
    void changePassword(NSControl* sender);
    void setPassword(NSControl* sender);
    void didEndSheet(NSWindow* sheet, int returnCode);
    void getNextUID(NSControl* sender);
    void getNextGID(NSControl* sender);
    void updateAddUserButton(NSControl* sender);
    void updateAddGroupButton(NSControl* sender);
    void updateUserTextFields(NSControl* sender);
    void updateGroupTextFields(NSControl* sender);
    void updateUsersGroupsList(NSControl* sender);
    void updateGroupsList(NSControl* sender);
    void refreshGroupList(NSControl* sender);
    void updateSystemUsersGroups(NSControl* sender);

    // Public folders.
    void enableSelectedPublicShare(NSControl* sender);
    void disableSelectedPublicShare(NSControl* sender);
    void enableAllPublicShares(NSControl* sender);
    void disableAllPublicShares(NSControl* sender);

    // AFP settings.
    void parseAFSProperties();
    void refreshAFSProperties(NSControl* sender);
    void updateAFSProperties(NSControl* sender);
    void changeIdleDisconnectEnable(NSControl* sender);
    void changeLoggingEnable(NSControl* sender);
    void changeAFSPropsTabView(NSControl* sender);
    void selectLogFile(NSControl* sender);

    // SMB settings.
    void refreshSMBProperties(NSControl* sender);
    void revertSMBProperties(NSControl* sender);
    void updateSMBProperties(NSControl* sender);
    void changeSMBHomeSharing(NSControl* sender);
    void changeSMBPropsTabView(NSControl* sender);

    // Servers and links.
    void restartAFS(NSControl* sender);
    void restartSMB(NSControl* sender);
    void checkForNewVersion(NSControl* sender);
    void goToWebpage(NSControl* sender);
    void sendDonation(NSControl* sender);
    void sendDonationKagi(NSControl* sender);
    void sendFeedback(NSControl* sender);

    // For the review (BRController+Review.cpp).
    /// Copies the state of `other`, the controller of another host, but not the state of its controls.
    /// `sheetIsUp` says whether the password sheet is up. Shows nothing and sends no notification.
    void copyState(const BRController& other, bool sheetIsUp);
    /// Reads smb.conf again into the model, the rows of the share table, the share editor and the SMB page.
    /// Unsaved edits in the last two are lost. The selected share stays selected.
    void rereadSMBConf();
    /// Reads the AFP server's settings again into the AFP page. Unsaved edits there are lost.
    void rereadAFPSettings();
    /// Does both, and reads the users and the groups again.
    void rereadEverything();

    /// The model of smb.conf; null before start-up.
    [[nodiscard]] const SMBConf* smbConfModel() const { return smbConf.get(); }

    /// The name of the user that is selected in the user table; empty when none is.
    [[nodiscard]] std::string selectedUserName() const;
    [[nodiscard]] std::string selectedGroupName() const;

    // The shares in the order of the share table's rows.
    [[nodiscard]] const std::vector<NormalShare>& currentShares() const { return currentShares_; }

  private:
    enum class FailedStep { Shares, Users, Groups, AFPSettings, SMBSettings };

    // Start-up (BRController+StartUp.cpp).
    /// Runs one step. When it throws, drops the exception, logs `message` in its place and returns false.
    static bool guarded(const std::function<void()>& step, const std::string& message);
    /// Returns the localized log message for a parsing step that failed: what to run or send, and to whom.
    [[nodiscard]] static std::string bugMessage(FailedStep step);
    /// Returns false when this system is too old; the application has then been asked to terminate.
    [[nodiscard]] bool checkSystemVersion();
    void installFormatters();
    void showLockState(bool authenticated);
    void fillTables();

    /// Shows which lines of a hand-written smb.conf the next write would lose, that the file cannot be read,
    /// or that the SMB page shows only a part of it; otherwise clears the notice.
    void showSMBConfNotice();

    // Share inventory.
    /// Adds what smb.conf knows to the list: each section marks the first share of its folder, or becomes a
    /// share.
    void joinSMBSections();
    /// Returns the share at `row` of the share table, or null when there is none.
    [[nodiscard]] const NormalShare* shareAtRow(int row) const;

    // Share editor.
    /// Fills the owner menu, the group menu and the three privilege menus from the folder on disk.
    void showFolderPrivileges(const std::string& path);
    void showShare(const NormalShare& share);
    void showNoShare();
    /// Shows the name of the share that deleteShare would delete.
    void showSelectedShareName();
    /// Returns false, after an alert, when the fields do not describe a valid share.
    [[nodiscard]] bool validateShareFields() const;
    /// Shows the alert for a share record that could not be written. The migration uses it too.
    static void showCreateShareFailed(const std::string& name);
    /// Selects the row that was selected before the write. If there is none, or it is gone, selects the share
    /// in the editor, provided that it was created; after a failure the typed text stays for another try.
    void selectShareAfterWrite(int rowBefore, bool isCreated);

    // Accounts (BRController+Accounts.cpp).
    /// Returns the row of `rows`, the list behind the table, that is selected in the table; null when none
    /// is.
    [[nodiscard]] static const BRRow* selectedRow(const NSTableView& table, const std::vector<BRRow>& rows);
    [[nodiscard]] bool checkUser(const std::string& shortNameText) const;
    [[nodiscard]] bool checkGroup(const std::string& groupNameText) const;
    [[nodiscard]] bool checkUID(std::int64_t id) const;
    [[nodiscard]] bool checkGID(std::int64_t id) const;
    [[nodiscard]] bool checkAdmin(const std::string& shortNameText) const;
    void addUser(const std::string& shortNameText, const std::string& toGroup,
                 const std::vector<std::string>& groupUsers);
    void removeUser(const std::string& shortNameText, const std::string& fromGroup,
                    const std::vector<std::string>& groupUsers);

    using MembershipChange = void (BRController::*)(const std::string&, const std::string&,
                                                    const std::vector<std::string>&);
    /// Returns true when the fields were complete, so that the lists must be read again.
    [[nodiscard]] bool writeGroup();
    [[nodiscard]] bool confirmUserWrite(bool isNew) const;
    void createUser();
    void updateUser();
    /// Returns the primary group id in the user's record; empty when it has none.
    [[nodiscard]] static std::string recordedGroupId(const std::string& shortNameText);
    /// Makes the change for every selected candidate and the selected group.
    void changeMembership(MembershipChange change);
    void beginPasswordSheet();

    // Public folders.
    void changeSelectedPublicShare(bool enable);
    void changePublicSharesAbove(std::int64_t highestIdLeftOut, bool enable);
    /// Makes the AFP server see a change, and reads the users again.
    void showChangedPublicShares();

    // SMB settings.
    /// Calls refreshSMBProperties, guarded. The notice says so when it stopped part way.
    void showSMBSettings(NSControl* sender);
    /// Shows the alert for writeSMBConfFile's result (none for 0) and updates the notice.
    void showSMBWriteResult(int result);

    // Links.
    void remindOfDonation();

    NSBundle* mainBundle = nullptr;
    std::optional<NSMutableDictionary> afsProps; ///< none when the AFP server's file could not be read
    std::unique_ptr<SMBConf> smbConf;
    bool smbSettingsInPart = false; ///< true when the last refresh of the SMB page stopped part way
    std::vector<NormalShare> currentShares_;
    std::vector<BRRow> userShares;
    std::vector<BRRow> groupShares;
    std::vector<std::string> groupUserShares;
    std::shared_ptr<const NSImage> lock;
    std::shared_ptr<const NSImage> unlock;
    std::shared_ptr<KWIntegerFormatter> intFormatter;
    std::shared_ptr<KWSMBFormatter> smbFormatter;
};
