#pragma once

#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSMatrix.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWindow.h"
#include "platform/appkit/OutletOwner.h"

/// The controller's outlets, by the names that the main interface file uses.
struct BROutlets : platform::OutletOwner {
    NSButton* lockButton = outlet("lockButton", lockButton);
    NSTextField* authLabel = outlet("authLabel", authLabel);
    NSTextField* version = outlet("version", version);
    NSDrawer* drawer = outlet("drawer", drawer);
    NSTableView* normalTableView = outlet("normalTableView", normalTableView);
    NSTextField* shareName = outlet("shareName", shareName);
    NSTextField* directory = outlet("directory", directory);
    NSPopUpButton* owner = outlet("owner", owner);
    NSPopUpButton* group = outlet("group", group);
    NSPopUpButton* ownerPrivs = outlet("ownerPrivs", ownerPrivs);
    NSPopUpButton* groupPrivs = outlet("groupPrivs", groupPrivs);
    NSPopUpButton* everyonePrivs = outlet("everyonePrivs", everyonePrivs);
    NSPopUpButton* sharingAFS = outlet("sharingAFS", sharingAFS);
    NSPopUpButton* sharingSMB = outlet("sharingSMB", sharingSMB);
    NSButton* inheritPermissionsButton = outlet("inheritPermissionsButton", inheritPermissionsButton);
    NSButton* inheritOwnerButton = outlet("inheritOwnerButton", inheritOwnerButton);
    NSButton* guestAccessButton = outlet("guestAccessButton", guestAccessButton);
    NSButton* createNewShare = outlet("createNewShare", createNewShare);
    NSButton* deleteButton = outlet("deleteButton", deleteButton);
    NSTextField* selectedShareName =
        outlet("selectedShareName", selectedShareName); ///< names the share that deleteButton would delete
    NSTextField* smbConfNotice =
        outlet("smbConfNotice", smbConfNotice); ///< what writing smb.conf would lose of a hand-written file
    NSTextField* smbPartNotice =
        outlet("smbPartNotice", smbPartNotice); ///< says that the SMB page shows only a part of the settings
    NSTableView* userTableView = outlet("userTableView", userTableView);
    NSTableView* groupTableView = outlet("groupTableView", groupTableView);
    NSTableView* groupUsersTableView = outlet("groupUsersTableView", groupUsersTableView);
    NSTextField* shortName = outlet("shortName", shortName);
    NSTextField* fullName = outlet("fullName", fullName);
    NSTextField* uid = outlet("uid", uid);
    NSTextField* gid = outlet("gid", gid);
    NSTextField* groupName = outlet("groupName", groupName);
    NSTextField* passwordErrorText = outlet("passwordErrorText", passwordErrorText);
    NSSecureTextField* passwordSecureText1 = outlet("passwordSecureText1", passwordSecureText1);
    NSSecureTextField* passwordSecureText2 = outlet("passwordSecureText2", passwordSecureText2);
    NSPopUpButton* groupPopUp = outlet("groupPopUp", groupPopUp);
    NSPopUpButton* publicSharedPopUp = outlet("publicSharedPopUp", publicSharedPopUp);
    NSWindow* passwordWindow = outlet("passwordWindow", passwordWindow);
    NSButton* addNewUserButton = outlet("addNewUserButton", addNewUserButton);
    NSButton* createNewGroupButton = outlet("createNewGroupButton", createNewGroupButton);
    NSButton* deleteGroupButton = outlet("deleteGroupButton", deleteGroupButton);
    NSButton* deleteUserButton = outlet("deleteUserButton", deleteUserButton);
    NSButton* changePasswordButton = outlet("changePasswordButton", changePasswordButton);
    NSButton* addUserToGroupButton = outlet("addUserToGroupButton", addUserToGroupButton);
    NSButton* removeUserFromGroupButton = outlet("removeUserFromGroupButton", removeUserFromGroupButton);
    NSButton* enablePublicSelectedButton = outlet("enablePublicSelectedButton", enablePublicSelectedButton);
    NSButton* disablePublicSelectedButton =
        outlet("disablePublicSelectedButton", disablePublicSelectedButton);
    NSButton* showSystemUsersGroups = outlet("showSystemUsersGroups", showSystemUsersGroups);
    NSButton* showSystemUsersGroups2 = outlet("showSystemUsersGroups2", showSystemUsersGroups2);
    NSButton* showSystemUsersGroups3 = outlet("showSystemUsersGroups3", showSystemUsersGroups3);
    NSTabView* afsPropsTabView = outlet("afsPropsTabView", afsPropsTabView);
    NSButton* adminSpPrivsButton = outlet("adminSpPrivsButton", adminSpPrivsButton);
    NSButton* allowGuestAccess = outlet("allowGuestAccess", allowGuestAccess);
    NSButton* greetingOnce = outlet("greetingOnce", greetingOnce);
    NSButton* idleDisconnectEnable = outlet("idleDisconnectEnable", idleDisconnectEnable);
    NSButton* loggingEnable = outlet("loggingEnable", loggingEnable);
    NSButton* logFileBrowseButton = outlet("logFileBrowseButton", logFileBrowseButton);
    NSButton* useRendezvous = outlet("useRendezvous", useRendezvous);
    NSTextField* greeting = outlet("greeting", greeting);
    NSTextField* idleDisconnectTime = outlet("idleDisconnectTime", idleDisconnectTime);
    NSTextField* logFilePath = outlet("logFilePath", logFilePath);
    NSTextField* logRolloverText = outlet("logRolloverText", logRolloverText);
    NSTextField* numConnections = outlet("numConnections", numConnections);
    NSTextField* numGuestConnections = outlet("numGuestConnections", numGuestConnections);
    NSTextField* tcpPort = outlet("tcpPort", tcpPort);
    NSMatrix* idleDisconnectUsers = outlet("idleDisconnectUsers", idleDisconnectUsers);
    NSMatrix* loggingAttributes1 = outlet("loggingAttributes1", loggingAttributes1);
    NSMatrix* loggingAttributes2 = outlet("loggingAttributes2", loggingAttributes2);
    NSMatrix* loggingAttributes3 = outlet("loggingAttributes3", loggingAttributes3);
    NSPopUpButton* afpTextEncoding = outlet("afpTextEncoding", afpTextEncoding);
    NSTabView* smbPropsTabView = outlet("smbPropsTabView", smbPropsTabView);
    NSButton* smbHideDotFiles = outlet("smbHideDotFiles", smbHideDotFiles);
    NSButton* smbHomeDirsBrowseable = outlet("smbHomeDirsBrowseable", smbHomeDirsBrowseable);
    NSButton* smbHomeDirsReadOnly = outlet("smbHomeDirsReadOnly", smbHomeDirsReadOnly);
    NSButton* smbShareHomeDirs = outlet("smbShareHomeDirs", smbShareHomeDirs);
    NSButton* smbWorkGroupMaster = outlet("smbWorkGroupMaster", smbWorkGroupMaster);
    NSTextField* smbHideFiles = outlet("smbHideFiles", smbHideFiles);
    NSTextField* smbMaxConnections = outlet("smbMaxConnections", smbMaxConnections);
    NSTextField* smbNetBiosName = outlet("smbNetBiosName", smbNetBiosName);
    NSTextField* smbServerInfoString = outlet("smbServerInfoString", smbServerInfoString);
    NSTextField* smbVetoFiles = outlet("smbVetoFiles", smbVetoFiles);
    NSTextField* smbWINSServer = outlet("smbWINSServer", smbWINSServer);
    NSTextField* smbWorkGroup = outlet("smbWorkGroup", smbWorkGroup);
    NSPopUpButton* smbCodePage = outlet("smbCodePage", smbCodePage);
    NSPopUpButton* smbSecurity = outlet("smbSecurity", smbSecurity);
};
