#include "app/BRController.h"

#include "platform/appkit/NSAlert.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "privileged/NiutilTask.h"

#include <array>

namespace {

constexpr int userSecurityItem = 0;
constexpr int shareSecurityItem = 1;
constexpr int firstOtherSecurityItem = 2;
// A code page's name is its number after "CP".
constexpr std::size_t codePagePrefixLength = 2;

int stateFor(std::string_view value) {
    return value == "yes" ? NSOnState : NSOffState;
}

const char* valueFor(const NSButton& box) {
    return box.state() == NSOnState ? "yes" : "no";
}

struct Field {
    std::string_view key;
    NSTextField* BROutlets::*field;
};

/// The keys of the "global" section whose text is shown as it is.
constexpr std::array<Field, 7> textFields{{
    {"netbios name", &BROutlets::smbNetBiosName},
    {"max connections", &BROutlets::smbMaxConnections},
    {"workgroup", &BROutlets::smbWorkGroup},
    {"wins server", &BROutlets::smbWINSServer},
    {"server string", &BROutlets::smbServerInfoString},
    {"hide files", &BROutlets::smbHideFiles},
    {"veto files", &BROutlets::smbVetoFiles},
}};

/// The text field that shows a key of the "global" section, or null.
NSTextField* fieldForKey(const BROutlets& tab, std::string_view key) {
    for (const Field& field : textFields) {
        if (field.key == key) {
            return tab.*field.field;
        }
    }
    return nullptr;
}

void showSecurity(NSPopUpButton& menu, const std::string& value) {
    if (value == "USER" || value == "SHARE") {
        menu.selectItemAtIndex(value == "USER" ? userSecurityItem : shareSecurityItem);
        return;
    }
    // Shown as it is, so that an update keeps it; once only, however often the tab is filled.
    int index = firstOtherSecurityItem;
    while (index < menu.numberOfItems() && menu.items()[static_cast<std::size_t>(index)].title != value) {
        ++index;
    }
    if (index >= menu.numberOfItems()) {
        menu.addItemWithTitle(value);
    }
    menu.selectItemAtIndex(index);
}

void showGlobalPair(const BROutlets& tab, const SMBPair& pair) {
    if (NSTextField* field = fieldForKey(tab, pair.Name)) {
        field->setStringValue(pair.Value);
    } else if (pair.Name == "security") {
        showSecurity(*tab.smbSecurity, pair.Value);
    } else if (pair.Name == "dos charset") {
        // Raises std::out_of_range for a value that is too short to name a page.
        const std::int32_t page = intValue(pair.Value.str().substr(codePagePrefixLength));
        tab.smbCodePage->selectItemAtIndex(tab.smbCodePage->indexOfItemWithTag(page));
    } else if (pair.Name == "local master") {
        tab.smbWorkGroupMaster->setState(stateFor(pair.Value));
    } else if (pair.Name == "hide dot files") {
        tab.smbHideDotFiles->setState(stateFor(pair.Value));
    }
}

/// An empty field takes its key out of the file.
void applyText(const BROutlets& tab, SMBShare& section, std::string_view key) {
    const std::string& text = fieldForKey(tab, key)->stringValue();
    if (text.empty()) {
        section.removeProp(key);
    } else {
        section.setProp(key, text);
    }
}

void applySecurity(SMBShare& section, const NSPopUpButton& menu) {
    const std::optional<std::string> title = menu.titleOfSelectedItem();
    switch (menu.indexOfSelectedItem()) {
    case userSecurityItem:
        section.setProp("map to guest", "Bad User");
        section.setProp("security", "USER");
        break;
    case shareSecurityItem:
        section.setProp("map to guest", "Never");
        section.setProp("security", "SHARE");
        break;
    default:
        if (title) {
            section.setProp("security", *title);
        }
    }
}

void applyCodePage(SMBShare& section, const NSPopUpButton& menu) {
    // With nothing selected, the file names a page that the menu does not offer: it is kept.
    if (menu.indexOfSelectedItem() >= 0) {
        section.setProp("dos charset", stringWithFormat("CP%d", menu.tagOfSelectedItem()));
    }
}

void applyGlobal(const BROutlets& tab, SMBShare& section) {
    for (const char* key : {"netbios name", "max connections", "workgroup", "wins server", "server string"}) {
        applyText(tab, section, key);
    }
    applySecurity(section, *tab.smbSecurity);
    applyCodePage(section, *tab.smbCodePage);
    applyText(tab, section, "hide files");
    section.setProp("local master", valueFor(*tab.smbWorkGroupMaster));
    applyText(tab, section, "veto files");
    section.setProp("hide dot files", valueFor(*tab.smbHideDotFiles));
}

std::unique_ptr<SMBShare> newSection(const char* name) {
    auto section = std::make_unique<SMBShare>();
    section->setType(SMBGroup);
    section->setShareName(name);
    return section;
}

} // namespace

void BRController::refreshSMBProperties(NSControl* /*sender*/) {
    if (const SMBShare* global = smbConf->Global()) {
        for (const SMBPair& pair : global->Props()) {
            showGlobalPair(*this, pair);
        }
    }
    const SMBShare* homes = smbConf->Homes();
    const bool shared = homes != nullptr && homes->Type() == SMBGroup;
    smbShareHomeDirs->setState(shared ? NSOnState : NSOffState);
    changeSMBHomeSharing(smbShareHomeDirs);
    if (homes == nullptr) {
        return;
    }
    for (const SMBPair& pair : homes->Props()) {
        if (pair.Name == "browseable") {
            smbHomeDirsBrowseable->setState(stateFor(pair.Value));
        } else if (pair.Name == "read only") {
            smbHomeDirsReadOnly->setState(stateFor(pair.Value));
        }
    }
}

void BRController::revertSMBProperties(NSControl* sender) {
    // Back to the window's first values: a refresh leaves alone what the file does not hold, and would leave
    // what was typed there.
    for (const Field& field : textFields) {
        (this->*field.field)->setStringValue("");
    }
    for (NSButton* box : {smbWorkGroupMaster, smbHideDotFiles, smbHomeDirsBrowseable, smbHomeDirsReadOnly}) {
        box->setState(NSOffState);
    }
    for (NSPopUpButton* menu : {smbSecurity, smbCodePage}) {
        menu->selectItemAtIndex(0);
    }
    showSMBSettings(sender);
}

void BRController::showSMBSettings(NSControl* sender) {
    smbSettingsInPart = !guarded([&] { refreshSMBProperties(sender); }, bugMessage(FailedStep::SMBSettings));
    showSMBConfNotice();
}

void BRController::updateSMBProperties(NSControl* /*sender*/) {
    if (smbConf->Global() == nullptr) {
        smbConf->setGlobal(newSection("global"));
    }
    applyGlobal(*this, *smbConf->Global());
    if (smbConf->Homes() == nullptr) {
        smbConf->setHomes(newSection("homes"));
    }
    SMBShare& homes = *smbConf->Homes();
    homes.setType(smbShareHomeDirs->state() == NSOnState ? SMBGroup : SMBCommentGroup);
    homes.setProp("browseable", valueFor(*smbHomeDirsBrowseable));
    homes.setProp("read only", valueFor(*smbHomeDirsReadOnly));
    smbSettingsInPart = false; // what was not shown is what the page shows now
    showSMBWriteResult(smbConf->writeSMBConfFile());
    NiutilTask::sharedInstance().restartSMB();
}

void BRController::showSMBWriteResult(int result) {
    static constexpr std::array<const char*, 4> messageKeys{
        nullptr,
        "The smb.conf file copy operation was unsuccessful.  Please email %@ with this information.",
        "The ~/smb.conf file write operation was unsuccessful.  Please email %@ with this information.",
        "The old smb.conf file removal operation was unsuccessful.  Please email %@ with this information.",
    };
    if (result != 0) {
        NSRunAlertPanel(NSLocalizedString("smb.conf Write Unsuccessful"),
                        NSLocalizedString(messageKeys.at(static_cast<std::size_t>(result))),
                        NSLocalizedString("OK"), std::nullopt, std::nullopt,
                        NSBundle::mainBundle().objectForInfoDictionaryKey("BRSupportAddress"));
    }
    showSMBConfNotice(); // what a write has lost needs no warning any more
}

void BRController::changeSMBHomeSharing(NSControl* sender) {
    const auto* box = dynamic_cast<NSButton*>(sender);
    const bool shared = (box != nullptr ? box : smbShareHomeDirs)->state() != NSOffState;
    smbHomeDirsBrowseable->setEnabled(shared);
    smbHomeDirsReadOnly->setEnabled(shared);
}

void BRController::changeSMBPropsTabView(NSControl* sender) {
    if (const auto* menu = dynamic_cast<NSPopUpButton*>(sender)) {
        smbPropsTabView->selectTabViewItemAtIndex(menu->indexOfSelectedItem());
    }
}
