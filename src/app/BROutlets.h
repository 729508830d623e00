#pragma once

#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSMatrix.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWindow.h"

/// The controller's outlets: controls of the main interface file, which sets every one of them before
/// start-up and owns what they point to. Named as in that file.
struct BROutlets {
    NSButton* lockButton = nullptr;
    NSTextField* authLabel = nullptr;
    NSTextField* version = nullptr;
    NSDrawer* drawer = nullptr;
    NSTableView* normalTableView = nullptr;
    NSTextField* shareName = nullptr;
    NSTextField* directory = nullptr;
    NSPopUpButton* owner = nullptr;
    NSPopUpButton* group = nullptr;
    NSPopUpButton* ownerPrivs = nullptr;
    NSPopUpButton* groupPrivs = nullptr;
    NSPopUpButton* everyonePrivs = nullptr;
    NSPopUpButton* sharingAFS = nullptr;
    NSPopUpButton* sharingSMB = nullptr;
    NSButton* inheritPermissionsButton = nullptr;
    NSButton* inheritOwnerButton = nullptr;
    NSButton* guestAccessButton = nullptr;
    NSButton* createNewShare = nullptr;
    NSButton* deleteButton = nullptr;
    NSTextField* selectedShareName = nullptr; ///< beside deleteButton: the share that it would delete
    NSTextField* smbConfNotice = nullptr;     ///< what writing smb.conf would lose of a hand-written file
    NSTableView* userTableView = nullptr;
    NSTableView* groupTableView = nullptr;
    NSTableView* groupUsersTableView = nullptr;
    NSTextField* shortName = nullptr;
    NSTextField* fullName = nullptr;
    NSTextField* uid = nullptr;
    NSTextField* gid = nullptr;
    NSTextField* groupName = nullptr;
    NSTextField* passwordErrorText = nullptr;
    NSSecureTextField* passwordSecureText1 = nullptr;
    NSSecureTextField* passwordSecureText2 = nullptr;
    NSPopUpButton* groupPopUp = nullptr;
    NSPopUpButton* publicSharedPopUp = nullptr;
    NSWindow* passwordWindow = nullptr;
    NSButton* addNewUserButton = nullptr;
    NSButton* createNewGroupButton = nullptr;
    NSButton* deleteGroupButton = nullptr;
    NSButton* deleteUserButton = nullptr;
    NSButton* changePasswordButton = nullptr;
    NSButton* addUserToGroupButton = nullptr;
    NSButton* removeUserFromGroupButton = nullptr;
    NSButton* enablePublicSelectedButton = nullptr;
    NSButton* disablePublicSelectedButton = nullptr;
    NSButton* showSystemUsersGroups = nullptr;
    NSButton* showSystemUsersGroups2 = nullptr;
    NSButton* showSystemUsersGroups3 = nullptr;
    NSTabView* afsPropsTabView = nullptr;
    NSButton* adminSpPrivsButton = nullptr;
    NSButton* allowGuestAccess = nullptr;
    NSButton* greetingOnce = nullptr;
    NSButton* idleDisconnectEnable = nullptr;
    NSButton* loggingEnable = nullptr;
    NSButton* logFileBrowseButton = nullptr;
    NSButton* useRendezvous = nullptr;
    NSTextField* greeting = nullptr;
    NSTextField* idleDisconnectTime = nullptr;
    NSTextField* logFilePath = nullptr;
    NSTextField* logRolloverText = nullptr;
    NSTextField* numConnections = nullptr;
    NSTextField* numGuestConnections = nullptr;
    NSTextField* tcpPort = nullptr;
    NSMatrix* idleDisconnectUsers = nullptr;
    NSMatrix* loggingAttributes1 = nullptr;
    NSMatrix* loggingAttributes2 = nullptr;
    NSMatrix* loggingAttributes3 = nullptr;
    NSPopUpButton* afpTextEncoding = nullptr;
    NSTabView* smbPropsTabView = nullptr;
    NSButton* smbHideDotFiles = nullptr;
    NSButton* smbHomeDirsBrowseable = nullptr;
    NSButton* smbHomeDirsReadOnly = nullptr;
    NSButton* smbShareHomeDirs = nullptr;
    NSButton* smbWorkGroupMaster = nullptr;
    NSTextField* smbHideFiles = nullptr;
    NSTextField* smbMaxConnections = nullptr;
    NSTextField* smbNetBiosName = nullptr;
    NSTextField* smbServerInfoString = nullptr;
    NSTextField* smbVetoFiles = nullptr;
    NSTextField* smbWINSServer = nullptr;
    NSTextField* smbWorkGroup = nullptr;
    NSPopUpButton* smbCodePage = nullptr;
    NSPopUpButton* smbSecurity = nullptr;
};
