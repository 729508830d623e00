#include "app/BRController.h"

#include "platform/appkit/ObjectClass.h"
#include "platform/foundation/NSBundle.h"
#include "ui/KWIntegerFormatter.h"
#include "ui/KWSMBFormatter.h"

namespace {

using Description = platform::ClassDescription<BRController>;

void describeWindowActions(Description& controller) {
    controller.action("toggleAuthorization:", &BRController::toggleAuthorization)
        .action("toggleDrawer:", &BRController::toggleDrawer)
        .action("showAboutBox:", &BRController::showAboutBox);
}

void describeShareActions(Description& controller) {
    controller.action("refreshNormalList:", &BRController::refreshNormalList)
        .action("updateShareTextFields:", &BRController::updateShareTextFields)
        .action("updateCreateShareButton:", &BRController::updateCreateShareButton)
        .action("updateInheritButtons:", &BRController::updateInheritButtons)
        .action("selectDirectory:", &BRController::selectDirectory)
        .action("createShare:", &BRController::createShare)
        .action("deleteShare:", &BRController::deleteShare)
        .action("deleteAllShares:", &BRController::deleteAllShares);
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
        .action("refreshPublicList:", &BRController::refreshPublicList)
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
    // An application that did not end in the usual way must not leave an observer registered.
    NSNotificationCenter::defaultCenter().removeObserver(this);
}

platform::Result<std::unique_ptr<platform::Interface>> BRController::loadInterface() {
    Description controller("BRController");
    controller.maker([] { return std::make_shared<BRController>(); });
    describeWindowActions(controller);
    describeShareActions(controller);
    describeAccountActions(controller);
    describeServerActions(controller);
    platform::registerClass(controller.take());
    return platform::Interface::load(NSBundle::mainBundle().resourcePath() + "/MainMenu.xml", "BRController");
}
