#include "app/BRController.h"

#include "platform/appkit/NSAlert.h"
#include "platform/foundation/Gestalt.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/SystemPaths.h"
#include "privileged/NiutilTask.h"
#include "ui/AboutBox.h"
#include "ui/KWIntegerFormatter.h"
#include "ui/KWSMBFormatter.h"

#include <exception>

namespace {

constexpr std::int32_t oldestSystem = 0x1040; // 10.4.0
// The notice must fit in the window, however many lines would be lost.
constexpr std::size_t namedLossesLimit = 12;

std::string lossText(SMBLoss loss) {
    switch (loss) {
    case SMBLoss::Continuation:
        return NSLocalizedString("ends in a backslash that makes the server take in the line saved after it");
    case SMBLoss::NoValue:
        return NSLocalizedString("has no name or no value");
    case SMBLoss::BrokenHeader:
        return NSLocalizedString("is a broken section header");
    case SMBLoss::OutsideSection:
        return NSLocalizedString("stands outside a section");
    case SMBLoss::ByteOrderMark:
        return NSLocalizedString("begins with a byte order mark, which makes the server pass over the line");
    }
    return {};
}

std::string lossesText(const std::vector<SMBLossNotice>& losses) {
    std::string lines;
    for (std::size_t i = 0; i < losses.size() && i < namedLossesLimit; ++i) {
        lines += i == 0 ? "" : ", ";
        lines += stringWithFormat(NSLocalizedString("line %d %@"), losses[i].line, lossText(losses[i].loss));
    }
    if (losses.size() > namedLossesLimit) {
        lines += stringWithFormat(NSLocalizedString(", and %d more"), losses.size() - namedLossesLimit);
    }
    return lines;
}

/// The numbers of the headers' lines.
std::string numbersText(const std::vector<SMBHiddenSection>& sections) {
    std::string numbers;
    for (std::size_t i = 0; i < sections.size() && i < namedLossesLimit; ++i) {
        numbers += (i == 0 ? "" : ", ") + std::to_string(sections[i].line);
    }
    if (sections.size() > namedLossesLimit) {
        numbers += stringWithFormat(NSLocalizedString(", and %d more"), sections.size() - namedLossesLimit);
    }
    return numbers;
}

} // namespace

void BRController::applicationDidFinishLaunching() {
    startUp();
}

bool BRController::applicationShouldTerminateAfterLastWindowClosed() {
    return true;
}

void BRController::applicationWillTerminate() {
    // Stop observing, so that the controller is not notified when the authorization ends with the
    // application.
    NSNotificationCenter::defaultCenter().removeObserver(this);
    NiutilTask::sharedInstance().deauthenticate();
}

void BRController::startUp() {
    afsProps = NSMutableDictionary::dictionaryWithContentsOfFile(platform::systempath::appleFileServer);
    mainBundle = &NSBundle::mainBundle();
    if (!checkSystemVersion()) {
        return;
    }
    version->setStringValue(mainBundle->objectForInfoDictionaryKey("CFBundleVersion"));
    unlock = NSImage::imageWithContentsOfFile(mainBundle->resourcePath() + "/unlock.tiff");
    lock = NSImage::imageWithContentsOfFile(mainBundle->resourcePath() + "/lock.tiff");
    installFormatters();

    NiutilTask& task = NiutilTask::sharedInstance();
    showLockState(task.isAuthenticated());
    NSNotificationCenter& center = NSNotificationCenter::defaultCenter();
    center.addObserver(
        this, [this](const NSNotification& notification) { userAuthenticated(notification); },
        NiutilAuthenticatedNotification, &task);
    center.addObserver(
        this, [this](const NSNotification& notification) { userDeauthenticated(notification); },
        NiutilDeauthenticatedNotification, &task);

    fillTables();
    guarded([this] { parseAFSProperties(); }, bugMessage(FailedStep::AFPSettings));
    showSMBSettings(nullptr);
    remindOfDonation();
}

bool BRController::checkSystemVersion() {
    std::int32_t system = 0;
    if (Gestalt(gestaltSystemVersion, &system) != 0 || system >= oldestSystem) {
        return true;
    }
    const int answer = NSRunAlertPanel(
        NSLocalizedString("Incorrect Mac OS X Version"),
        NSLocalizedString(
            "Version %@ of Brindle is only compatible with Mac OS X 10.4 and later.  Please visit "
            "%@ to download a version of Brindle compatible with your version of Mac OS X."),
        NSLocalizedString("Go to Webpage and Quit Brindle"), NSLocalizedString("Quit Brindle"), std::nullopt,
        mainBundle->objectForInfoDictionaryKey("CFBundleVersion"),
        mainBundle->objectForInfoDictionaryKey("BRHomePage"));
    if (answer == NSAlertDefaultReturn) {
        goToWebpage(nullptr);
    }
    NSApp().terminate();
    return false;
}

void BRController::installFormatters() {
    intFormatter = std::make_shared<KWIntegerFormatter>();
    intFormatter->setFormat("##0");
    for (NSTextField* field : {uid, gid, tcpPort, idleDisconnectTime}) {
        field->setFormatter(intFormatter);
    }
    smbFormatter = std::make_shared<KWSMBFormatter>();
    for (NSTextField* field : {smbNetBiosName, smbWorkGroup}) {
        field->setFormatter(smbFormatter);
    }
}

void BRController::fillTables() {
    const NiutilTask::ReportsKept kept(NiutilTask::sharedInstance()); // each of these lists the accounts anew
    updateUsersGroupsList(nullptr);
    updateGroupsList(nullptr);

    smbConf = std::make_unique<SMBConf>();
    currentShares_.clear();
    guarded([this] { parseCurrentShares(); }, bugMessage(FailedStep::Shares));
    checkSharesFor10pt2();
    normalTableView->reloadData();
    updateShareTextFields(nullptr);

    userShares.clear();
    guarded([this] { parseUserShares(); }, bugMessage(FailedStep::Users));
    userTableView->reloadData();
    updateUserTextFields(nullptr);

    groupShares.clear();
    guarded([this] { parseGroupShares(); }, bugMessage(FailedStep::Groups));
    groupTableView->reloadData();
    updateGroupTextFields(nullptr);

    groupUserShares.clear();
    guarded([this] { parseGroupUserShares(); }, bugMessage(FailedStep::Users));
    groupUsersTableView->reloadData();
}

bool BRController::guarded(const std::function<void()>& step, const std::string& message) {
    try {
        step();
        return true;
    } catch (const std::exception&) {
        NSLog("%@", message);
        return false;
    }
}

std::string BRController::bugMessage(FailedStep step) {
    const auto key = [step] {
        switch (step) {
        case FailedStep::Shares:
            return "If you are seeing this message a bug has occured.  Please run the following command in "
                   "the terminal and email the results to %@.\nnireport . /config/Brindle name "
                   "directory_path";
        case FailedStep::Users:
            return "If you are seeing this message a bug has occured.  Please run the following command in "
                   "the terminal and email the results to %@.\nnireport . /users name uid sharedDir";
        case FailedStep::Groups:
            return "If you are seeing this message a bug has occured.  Please run the following command in "
                   "the terminal and email the results to %@.\nnireport . /groups gid name users";
        case FailedStep::AFPSettings:
            return "If you are seeing this message a bug has occured.  Please run the following command in "
                   "the terminal and email the results to %@.\nniutil -read . /config/AppleFileServer";
        case FailedStep::SMBSettings:
            return "If you are seeing this message a bug has occured.  Please email a copy of your smb.conf "
                   "file located in the /etc/ directory to %@ along with a description of the error.";
        }
        return "";
    }();
    return stringWithFormat(NSLocalizedString(key),
                            NSBundle::mainBundle().objectForInfoDictionaryKey("BRSupportAddress"));
}

void BRController::showSMBConfNotice() {
    // Name the file that the user can open, wherever the host keeps it.
    const platform::Paths& paths = platform::Host::current().paths();
    const std::string file = paths.shown(paths.map(smbConf->Path()));
    std::string notice;
    if (!smbConf->unreadableReason().empty()) {
        notice = stringWithFormat(
            NSLocalizedString(
                "%@ cannot be read (%@), and nothing will be saved to it.  Make it readable and "
                "start again."),
            file, NSLocalizedString(smbConf->unreadableReason()));
    } else if (!smbConf->lossNotices().empty()) {
        notice = stringWithFormat(
            NSLocalizedString("Saving will not keep all of %@: %@.  The file as it is will then stay beside "
                              "it as smb.conf.previous until you save again: copy it if you need it."),
            file, lossesText(smbConf->lossNotices()));
    } else if (const auto hidden = smbConf->hiddenSections(); !hidden.empty()) {
        notice =
            hidden.size() == 1
                ? stringWithFormat(NSLocalizedString("The SMB server takes line %d of %@ for the header of a "
                                                     "section, and Brindle does not show that section.  Make "
                                                     "the line end with its \"]\" and read the file again."),
                                   hidden.front().line, file)
                : stringWithFormat(
                      NSLocalizedString(
                          "The SMB server takes these lines of %@ for headers of sections, and Brindle does "
                          "not show those sections: %@.  Make each line end with its \"]\" and read the "
                          "file again."),
                      file, numbersText(hidden));
    }
    smbConfNotice->setStringValue(notice);
    smbPartNotice->setStringValue(
        smbSettingsInPart
            ? stringWithFormat(
                  NSLocalizedString("Only a part of the SMB settings could be shown.  Saving them "
                                    "would change those that are not shown: mend the global "
                                    "section of %@ first, and read it again."),
                  file)
            : "");
}

void BRController::showLockState(bool authenticated) {
    lockButton->setImage(authenticated ? unlock : lock);
    authLabel->setStringValue(
        NSLocalizedString(authenticated ? "Click to disallow changes" : "Click to allow changes"));
}

void BRController::userAuthenticated(const NSNotification& /*notification*/) {
    showLockState(true);
}

void BRController::userDeauthenticated(const NSNotification& /*notification*/) {
    showLockState(false);
}

void BRController::toggleAuthorization(NSControl* /*sender*/) {
    NiutilTask& task = NiutilTask::sharedInstance();
    if (task.isAuthenticated()) {
        task.deauthenticate();
    } else {
        task.authenticate();
    }
}

void BRController::toggleDrawer(NSControl* sender) {
    updateCreateShareButton(sender);
    drawer->toggle();
}

void BRController::tabViewDidSelectTabViewItem(NSTabView* /*tabView*/, int index) {
    // The drawer edits shares, and only the first page shows shares.
    if (index != 0) {
        drawer->close();
    }
}

void BRController::controlDidFailToValidatePartialString(NSTextField* /*control*/,
                                                         const std::string& /*partial*/,
                                                         const std::string& /*errorDescription*/) {
    NSBeep();
}

void BRController::showAboutBox(NSControl* sender) {
    AboutBox::sharedInstance().showPanel(sender);
}
