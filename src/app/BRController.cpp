#include "app/BRController.h"

#include "platform/appkit/ObjectClass.h"
#include "platform/foundation/NSBundle.h"
#include "ui/KWIntegerFormatter.h"
#include "ui/KWSMBFormatter.h"

namespace {

using Description = platform::ClassDescription<BRController>;

void describeShareOutlets(Description& controller) {
    controller.outlet("lockButton", &BROutlets::lockButton)
        .outlet("authLabel", &BROutlets::authLabel)
        .outlet("version", &BROutlets::version)
        .outlet("drawer", &BROutlets::drawer)
        .outlet("normalTableView", &BROutlets::normalTableView)
        .outlet("shareName", &BROutlets::shareName)
        .outlet("directory", &BROutlets::directory)
        .outlet("owner", &BROutlets::owner)
        .outlet("group", &BROutlets::group)
        .outlet("ownerPrivs", &BROutlets::ownerPrivs)
        .outlet("groupPrivs", &BROutlets::groupPrivs)
        .outlet("everyonePrivs", &BROutlets::everyonePrivs)
        .outlet("sharingAFS", &BROutlets::sharingAFS)
        .outlet("sharingSMB", &BROutlets::sharingSMB)
        .outlet("inheritPermissionsButton", &BROutlets::inheritPermissionsButton)
        .outlet("inheritOwnerButton", &BROutlets::inheritOwnerButton)
        .outlet("guestAccessButton", &BROutlets::guestAccessButton)
        .outlet("createNewShare", &BROutlets::createNewShare)
        .outlet("deleteButton", &BROutlets::deleteButton)
        .outlet("selectedShareName", &BROutlets::selectedShareName)
        .outlet("smbConfNotice", &BROutlets::smbConfNotice);
}

void describeAccountOutlets(Description& controller) {
    controller.outlet("userTableView", &BROutlets::userTableView)
        .outlet("groupTableView", &BROutlets::groupTableView)
        .outlet("groupUsersTableView", &BROutlets::groupUsersTableView)
        .outlet("shortName", &BROutlets::shortName)
        .outlet("fullName", &BROutlets::fullName)
        .outlet("uid", &BROutlets::uid)
        .outlet("gid", &BROutlets::gid)
        .outlet("groupName", &BROutlets::groupName)
        .outlet("passwordErrorText", &BROutlets::passwordErrorText)
        .outlet("passwordSecureText1", &BROutlets::passwordSecureText1)
        .outlet("passwordSecureText2", &BROutlets::passwordSecureText2)
        .outlet("groupPopUp", &BROutlets::groupPopUp)
        .outlet("publicSharedPopUp", &BROutlets::publicSharedPopUp)
        .outlet("passwordWindow", &BROutlets::passwordWindow)
        .outlet("addNewUserButton", &BROutlets::addNewUserButton)
        .outlet("createNewGroupButton", &BROutlets::createNewGroupButton)
        .outlet("deleteGroupButton", &BROutlets::deleteGroupButton)
        .outlet("deleteUserButton", &BROutlets::deleteUserButton)
        .outlet("changePasswordButton", &BROutlets::changePasswordButton)
        .outlet("addUserToGroupButton", &BROutlets::addUserToGroupButton)
        .outlet("removeUserFromGroupButton", &BROutlets::removeUserFromGroupButton)
        .outlet("enablePublicSelectedButton", &BROutlets::enablePublicSelectedButton)
        .outlet("disablePublicSelectedButton", &BROutlets::disablePublicSelectedButton)
        .outlet("showSystemUsersGroups", &BROutlets::showSystemUsersGroups)
        .outlet("showSystemUsersGroups2", &BROutlets::showSystemUsersGroups2)
        .outlet("showSystemUsersGroups3", &BROutlets::showSystemUsersGroups3);
}

void describeSettingsOutlets(Description& controller) {
    controller.outlet("afsPropsTabView", &BROutlets::afsPropsTabView)
        .outlet("adminSpPrivsButton", &BROutlets::adminSpPrivsButton)
        .outlet("allowGuestAccess", &BROutlets::allowGuestAccess)
        .outlet("greetingOnce", &BROutlets::greetingOnce)
        .outlet("idleDisconnectEnable", &BROutlets::idleDisconnectEnable)
        .outlet("loggingEnable", &BROutlets::loggingEnable)
        .outlet("logFileBrowseButton", &BROutlets::logFileBrowseButton)
        .outlet("useRendezvous", &BROutlets::useRendezvous)
        .outlet("greeting", &BROutlets::greeting)
        .outlet("idleDisconnectTime", &BROutlets::idleDisconnectTime)
        .outlet("logFilePath", &BROutlets::logFilePath)
        .outlet("logRolloverText", &BROutlets::logRolloverText)
        .outlet("numConnections", &BROutlets::numConnections)
        .outlet("numGuestConnections", &BROutlets::numGuestConnections)
        .outlet("tcpPort", &BROutlets::tcpPort)
        .outlet("idleDisconnectUsers", &BROutlets::idleDisconnectUsers)
        .outlet("loggingAttributes1", &BROutlets::loggingAttributes1)
        .outlet("loggingAttributes2", &BROutlets::loggingAttributes2)
        .outlet("loggingAttributes3", &BROutlets::loggingAttributes3)
        .outlet("afpTextEncoding", &BROutlets::afpTextEncoding)
        .outlet("smbPropsTabView", &BROutlets::smbPropsTabView)
        .outlet("smbHideDotFiles", &BROutlets::smbHideDotFiles)
        .outlet("smbHomeDirsBrowseable", &BROutlets::smbHomeDirsBrowseable)
        .outlet("smbHomeDirsReadOnly", &BROutlets::smbHomeDirsReadOnly)
        .outlet("smbShareHomeDirs", &BROutlets::smbShareHomeDirs)
        .outlet("smbWorkGroupMaster", &BROutlets::smbWorkGroupMaster)
        .outlet("smbHideFiles", &BROutlets::smbHideFiles)
        .outlet("smbMaxConnections", &BROutlets::smbMaxConnections)
        .outlet("smbNetBiosName", &BROutlets::smbNetBiosName)
        .outlet("smbServerInfoString", &BROutlets::smbServerInfoString)
        .outlet("smbVetoFiles", &BROutlets::smbVetoFiles)
        .outlet("smbWINSServer", &BROutlets::smbWINSServer)
        .outlet("smbWorkGroup", &BROutlets::smbWorkGroup)
        .outlet("smbCodePage", &BROutlets::smbCodePage)
        .outlet("smbSecurity", &BROutlets::smbSecurity);
}

void describeShareActions(Description& controller) {
    controller.action("toggleAuthorization:", &BRController::toggleAuthorization)
        .action("toggleDrawer:", &BRController::toggleDrawer)
        .action("showAboutBox:", &BRController::showAboutBox)
        .action("refreshNormalList:", &BRController::refreshNormalList)
        .action("refreshPublicList:", &BRController::refreshPublicList)
        .action("updateShareTextFields:", &BRController::updateShareTextFields)
        .action("updateCreateShareButton:", &BRController::updateCreateShareButton)
        .action("updateInheritButtons:", &BRController::updateInheritButtons)
        .action("selectDirectory:", &BRController::selectDirectory)
        .action("createShare:", &BRController::createShare)
        .action("deleteShare:", &BRController::deleteShare)
        .action("deleteAllShares:", &BRController::deleteAllShares)
        .action("updateSharesFor10pt2:", &BRController::updateSharesFor10pt2);
}

void describeAccountActions(Description& controller) {
    controller.action("addNewUser:", &BRController::addNewUser)
        .action("addNewGroup:", &BRController::addNewGroup)
        .action("deleteSelectedUser:", &BRController::deleteSelectedUser)
        .action("deleteSelectedGroup:", &BRController::deleteSelectedGroup)
        .action("addUserToGroup:", &BRController::addUserToGroup)
        .action("removeUserFromGroup:", &BRController::removeUserFromGroup)
        .action("changePassword:", &BRController::changePassword)
        .action("setPassword:", &BRController::setPassword)
        .action("getNextUID:", &BRController::getNextUID)
        .action("getNextGID:", &BRController::getNextGID)
        .action("updateAddUserButton:", &BRController::updateAddUserButton)
        .action("updateAddGroupButton:", &BRController::updateAddGroupButton)
        .action("updateUserTextFields:", &BRController::updateUserTextFields)
        .action("updateGroupTextFields:", &BRController::updateGroupTextFields)
        .action("updateUsersGroupsList:", &BRController::updateUsersGroupsList)
        .action("updateGroupsList:", &BRController::updateGroupsList)
        .action("refreshGroupList:", &BRController::refreshGroupList)
        .action("updateSystemUsersGroups:", &BRController::updateSystemUsersGroups)
        .action("enableSelectedPublicShare:", &BRController::enableSelectedPublicShare)
        .action("disableSelectedPublicShare:", &BRController::disableSelectedPublicShare)
        .action("enableAllPublicShares:", &BRController::enableAllPublicShares)
        .action("disableAllPublicShares:", &BRController::disableAllPublicShares);
}

void describeServerActions(Description& controller) {
    controller.action("refreshAFSProperties:", &BRController::refreshAFSProperties)
        .action("updateAFSProperties:", &BRController::updateAFSProperties)
        .action("changeIdleDisconnectEnable:", &BRController::changeIdleDisconnectEnable)
        .action("changeLoggingEnable:", &BRController::changeLoggingEnable)
        .action("changeAFSPropsTabView:", &BRController::changeAFSPropsTabView)
        .action("selectLogFile:", &BRController::selectLogFile)
        .action("refreshSMBProperties:", &BRController::refreshSMBProperties)
        .action("revertSMBProperties:", &BRController::revertSMBProperties)
        .action("updateSMBProperties:", &BRController::updateSMBProperties)
        .action("changeSMBHomeSharing:", &BRController::changeSMBHomeSharing)
        .action("changeSMBPropsTabView:", &BRController::changeSMBPropsTabView)
        .action("restartAFS:", &BRController::restartAFS)
        .action("restartSMB:", &BRController::restartSMB)
        .action("checkForNewVersion:", &BRController::checkForNewVersion)
        .action("goToWebpage:", &BRController::goToWebpage)
        .action("sendDonation:", &BRController::sendDonation)
        .action("sendDonationKagi:", &BRController::sendDonationKagi)
        .action("sendFeedback:", &BRController::sendFeedback);
}

} // namespace

BRController::BRController() = default;

BRController::~BRController() {
    // An application that did not end the orderly way must not leave an observer behind.
    NSNotificationCenter::defaultCenter().removeObserver(this);
}

void BRController::registerClass() {
    Description controller("BRController");
    controller.maker([] { return std::make_shared<BRController>(); });
    describeShareOutlets(controller);
    describeAccountOutlets(controller);
    describeSettingsOutlets(controller);
    describeShareActions(controller);
    describeAccountActions(controller);
    describeServerActions(controller);
    platform::registerClass(controller.take());
}
