#include "app/BRController.h"

#include "app/Alerts.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "privileged/NiutilTask.h"

namespace {

namespace systempath = platform::systempath;

using ToggleAction = void (BRController::*)(NSControl*);

/// Visits the settings that the tab shows, in the order in which they are read and written. A toggle is a
/// flag that other settings depend on; its action enables or disables their controls.
template <class Visitor>
void visitSettings(const BROutlets& tab, Visitor& visit) {
    visit.text("loginGreeting", *tab.greeting);
    visit.flag("sendGreetingOnce", *tab.greetingOnce);
    visit.toggle("idleDisconnectOnOff", *tab.idleDisconnectEnable, &BRController::changeIdleDisconnectEnable);
    visit.number("idleDisconnectTime", *tab.idleDisconnectTime);
    visit.cell("idleDisconnectFlag", "guestUsers", *tab.idleDisconnectUsers, 0, 0);
    visit.cell("idleDisconnectFlag", "registeredUsers", *tab.idleDisconnectUsers, 0, 1);
    visit.cell("idleDisconnectFlag", "adminUsers", *tab.idleDisconnectUsers, 0, 2);
    visit.cell("idleDisconnectFlag", "usersWithOpenFiles", *tab.idleDisconnectUsers, 0, 3);
    visit.toggle("activityLog", *tab.loggingEnable, &BRController::changeLoggingEnable);
    visit.number("activityLogTime", *tab.logRolloverText);
    visit.text("activityLogPath", *tab.logFilePath);
    visit.cell("loggingAttributes", "logLogin", *tab.loggingAttributes1, 0, 0);
    visit.cell("loggingAttributes", "logLogout", *tab.loggingAttributes1, 1, 0);
    visit.cell("loggingAttributes", "logCreateDir", *tab.loggingAttributes2, 0, 0);
    visit.cell("loggingAttributes", "logCreateFile", *tab.loggingAttributes2, 1, 0);
    visit.cell("loggingAttributes", "logOpenFork", *tab.loggingAttributes3, 0, 0);
    visit.cell("loggingAttributes", "logDelete", *tab.loggingAttributes3, 1, 0);
    visit.number("maxConnections", *tab.numConnections);
    visit.number("maxGuests", *tab.numGuestConnections);
    visit.number("afpTCPPort", *tab.tcpPort);
    visit.flag("adminGetsSp", *tab.adminSpPrivsButton);
    visit.flag("guestAccess", *tab.allowGuestAccess);
    visit.flag("registerNSL", *tab.useRendezvous);
    visit.choice("afpServerEncoding", *tab.afpTextEncoding);
}

/// Shows the settings in the controls.
class Reader {
  public:
    Reader(BRController& controller, NSMutableDictionary props)
        : controller_(controller), props_(std::move(props)) {}

    void text(const char* key, NSTextField& field) {
        field.setStringValue(props_.stringForKey(key).value_or(""));
    }

    void flag(const char* key, NSButton& box) {
        box.setState(props_.boolForKey(key) ? NSOnState : NSOffState);
    }

    void toggle(const char* key, NSButton& box, ToggleAction enableDependents) {
        flag(key, box);
        (controller_.*enableDependents)(&box);
    }

    void number(const char* key, NSTextField& field) { field.setIntValue(props_.intForKey(key)); }

    void cell(const char* dictionary, const char* key, NSMatrix& matrix, int row, int column) {
        const auto nested = props_.dictionaryForKey(dictionary);
        matrix.setStateAt(row, column, nested && nested->boolForKey(key) ? NSOnState : NSOffState);
    }

    void choice(const char* key, NSPopUpButton& menu) {
        menu.selectItemAtIndex(menu.indexOfItemWithTag(props_.intForKey(key)));
    }

  private:
    BRController& controller_;
    NSMutableDictionary props_;
};

/// Takes the settings from the controls.
class Writer {
  public:
    explicit Writer(NSMutableDictionary& props) : props_(props) {}

    void text(const char* key, NSTextField& field) { props_.setString(field.stringValue(), key); }

    void flag(const char* key, NSButton& box) { props_.setBool(box.state() != NSOffState, key); }

    void toggle(const char* key, NSButton& box, ToggleAction /*enableDependents*/) { flag(key, box); }

    void number(const char* key, NSTextField& field) { props_.setInt(field.intValue(), key); }

    void cell(const char* dictionary, const char* key, NSMatrix& matrix, int row, int column) {
        if (auto nested = props_.dictionaryForKey(dictionary)) {
            nested->setBool(matrix.stateAt(row, column) != NSOffState, key);
        }
    }

    void choice(const char* key, NSPopUpButton& menu) { props_.setInt(menu.tagOfSelectedItem(), key); }

  private:
    NSMutableDictionary& props_;
};

void showFailure(const std::string& messageKey) {
    showAlert("AppleFileServer.plist Write Unsuccessful", messageKey,
              NSBundle::mainBundle().objectForInfoDictionaryKey("BRSupportAddress"));
}

/// Returns the state of the check box that sent an action, or of `standard` when another kind of control sent
/// it.
int stateOf(const NSControl* sender, const NSButton* standard) {
    const auto* box = dynamic_cast<const NSButton*>(sender);
    return (box != nullptr ? box : standard)->state();
}

} // namespace

void BRController::parseAFSProperties() {
    Reader reader(*this, afsProps.value_or(NSMutableDictionary()));
    visitSettings(*this, reader);
}

void BRController::refreshAFSProperties(NSControl* /*sender*/) {
    parseAFSProperties();
}

void BRController::updateAFSProperties(NSControl* /*sender*/) {
    const std::string temporary = stringByExpandingTildeInPath(systempath::temporaryAppleFileServer);
    if (afsProps) {
        Writer writer(*afsProps);
        visitSettings(*this, writer);
    } else {
        logReason("The AFP server's settings were not saved because %@ could not be read at the start.",
                  systempath::appleFileServer);
    }
    const auto status = afsProps ? std::optional(afsProps->writeToFile(temporary)) : std::nullopt;
    if (status && !status->isOk()) {
        logReason("%@ could not be written: %@", temporary, status->why());
    }
    if (!status || !status->isOk()) {
        showFailure(
            "The ~/AppleFileServer.plist file write operation was unsuccessful.  Please email %@ with this "
            "information.");
        return;
    }
    NiutilTask& task = NiutilTask::sharedInstance();
    if (task.cp(temporary, systempath::appleFileServer)) {
        task.restartAFS();
    } else {
        showFailure(
            "The AppleFileServer.plist file copy operation was unsuccessful.  Please email %@ with this "
            "information.");
    }
    if (const auto removed = removeFileAtPath(temporary); !removed.isOk()) {
        logReason("%@ could not be removed: %@", temporary, removed.why());
        showFailure(
            "The old AppleFileServer.plist file removal operation was unsuccessful.  Please email %@ with "
            "this information.");
    }
}

void BRController::changeIdleDisconnectEnable(NSControl* sender) {
    const bool enabled = stateOf(sender, idleDisconnectEnable) == NSOnState;
    idleDisconnectUsers->setEnabled(enabled);
    idleDisconnectTime->setEnabled(enabled);
}

void BRController::changeLoggingEnable(NSControl* sender) {
    const bool enabled = stateOf(sender, loggingEnable) == NSOnState;
    logFilePath->setEnabled(enabled);
    loggingAttributes1->setEnabled(enabled);
    loggingAttributes2->setEnabled(enabled);
    loggingAttributes3->setEnabled(enabled);
    logRolloverText->setEnabled(enabled);
    logFileBrowseButton->setEnabled(enabled);
}

void BRController::changeAFSPropsTabView(NSControl* sender) {
    if (const auto* menu = dynamic_cast<NSPopUpButton*>(sender)) {
        afsPropsTabView->selectTabViewItemAtIndex(menu->indexOfSelectedItem());
    }
}

void BRController::selectLogFile(NSControl* /*sender*/) {
    NSOpenPanel panel;
    panel.setCanChooseFiles(true);
    panel.setCanChooseDirectories(false);
    const std::string& path = logFilePath->stringValue();
    if (auto chosen =
            panel.runModalForDirectory(stringByDeletingLastPathComponent(path), lastPathComponent(path))) {
        logFilePath->setStringValue(*std::move(chosen));
    }
}
