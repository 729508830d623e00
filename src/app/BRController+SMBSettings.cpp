#include "app/BRController.h"

#include "app/Alerts.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "privileged/NiutilTask.h"

#include <array>
#include <stdexcept>

namespace {

constexpr int userSecurityItem = 0;
constexpr int shareSecurityItem = 1;
constexpr int firstOtherSecurityItem = 2;
// A code page's name is its number after "CP".
constexpr std::size_t codePagePrefixLength = 2;
constexpr std::int32_t serversCodePage = 850; // the server's default

/// Visits the keys of the "global" section that the tab shows, in the order in which they are written.
template <class Visitor>
void visitGlobalSettings(const BROutlets& tab, Visitor&& visit) {
    visit.text("netbios name", *tab.smbNetBiosName);
    visit.text("max connections", *tab.smbMaxConnections);
    visit.text("workgroup", *tab.smbWorkGroup);
    visit.text("wins server", *tab.smbWINSServer);
    visit.text("server string", *tab.smbServerInfoString);
    visit.security("security", *tab.smbSecurity);
    visit.codePage("dos charset", *tab.smbCodePage);
    visit.text("hide files", *tab.smbHideFiles);
    visit.flag("local master", *tab.smbWorkGroupMaster);
    visit.text("veto files", *tab.smbVetoFiles);
    visit.flag("hide dot files", *tab.smbHideDotFiles);
}

/// The same for the "homes" section.
template <class Visitor>
void visitHomesSettings(const BROutlets& tab, Visitor&& visit) {
    visit.flag("browseable", *tab.smbHomeDirsBrowseable);
    visit.flag("read only", *tab.smbHomeDirsReadOnly);
}

/// Shows one parameter of the file in the control for its key.
class Reader {
  public:
    explicit Reader(const SMBPair& pair) : pair_(pair) {}

    void text(std::string_view key, NSTextField& field) const {
        if (pair_.Name == key) {
            field.setStringValue(pair_.Value);
        }
    }

    void flag(std::string_view key, NSButton& box) const {
        if (pair_.Name == key) {
            box.setState(pair_.Value == "yes" ? NSOnState : NSOffState);
        }
    }

    void codePage(std::string_view key, NSPopUpButton& menu) const {
        if (pair_.Name == key) {
            const std::string& page = pair_.Value.str();
            if (utf16Length(page) < codePagePrefixLength) {
                throw std::out_of_range(
                    stringWithFormat("\"%@\" cannot be \"%@\": it is too short", page, std::string(key)));
            }
            const std::int32_t number = intValue(page.substr(offsetOfUTF16(page, codePagePrefixLength)));
            menu.selectItemAtIndex(menu.indexOfItemWithTag(number));
        }
    }

    void security(std::string_view key, NSPopUpButton& menu) const {
        if (pair_.Name == key) {
            menu.selectItemAtIndex(securityItem(menu, pair_.Value));
        }
    }

  private:
    static int securityItem(NSPopUpButton& menu, const std::string& value) {
        if (value == "USER" || value == "SHARE") {
            return value == "USER" ? userSecurityItem : shareSecurityItem;
        }
        // Added as an item, so that an update keeps it; only once, however often the tab is filled.
        int index = firstOtherSecurityItem;
        while (index < menu.numberOfItems() && menu.items()[static_cast<std::size_t>(index)].title != value) {
            ++index;
        }
        if (index >= menu.numberOfItems()) {
            menu.addItemWithTitle(value);
        }
        return index;
    }

    const SMBPair& pair_;
};

/// Sets the parameters of a section from the controls.
class Writer {
  public:
    explicit Writer(SMBShare& section) : section_(section) {}

    /// An empty field removes its key from the file.
    void text(std::string_view key, const NSTextField& field) const {
        if (field.stringValue().empty()) {
            section_.removeProp(key);
        } else {
            section_.setProp(key, field.stringValue());
        }
    }

    void flag(std::string_view key, const NSButton& box) const {
        section_.setProp(key, box.state() == NSOnState ? "yes" : "no");
    }

    void codePage(std::string_view key, const NSPopUpButton& menu) const {
        // Nothing is selected when the file names a page that the menu does not offer: keep that page.
        if (menu.indexOfSelectedItem() >= 0) {
            section_.setProp(key, stringWithFormat("CP%d", menu.tagOfSelectedItem()));
        }
    }

    void security(std::string_view key, const NSPopUpButton& menu) const {
        const std::optional<std::string> title = menu.titleOfSelectedItem();
        switch (menu.indexOfSelectedItem()) {
        case userSecurityItem:
            section_.setProp("map to guest", "Bad User");
            section_.setProp(key, "USER");
            break;
        case shareSecurityItem:
            section_.setProp("map to guest", "Never");
            section_.setProp(key, "SHARE");
            break;
        default:
            if (title) {
                section_.setProp(key, *title);
            }
        }
    }

  private:
    SMBShare& section_;
};

/// Restores the window's initial values, which are the server's defaults, so that saving one setting changes
/// no other.
struct Resetter {
    static void text(std::string_view /*key*/, NSTextField& field) { field.setStringValue(""); }

    static void flag(std::string_view /*key*/, NSButton& box) { box.setState(NSOnState); }

    static void codePage(std::string_view /*key*/, NSPopUpButton& menu) {
        menu.selectItemAtIndex(menu.indexOfItemWithTag(serversCodePage));
    }

    static void security(std::string_view /*key*/, NSPopUpButton& menu) { menu.selectItemAtIndex(0); }
};

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
            visitGlobalSettings(*this, Reader(pair));
        }
    }
    const SMBShare* homes = smbConf->Homes();
    const bool shared = homes != nullptr && homes->Type() == SMBGroup;
    smbShareHomeDirs->setState(shared ? NSOnState : NSOffState);
    changeSMBHomeSharing(smbShareHomeDirs);
    if (homes != nullptr) {
        for (const SMBPair& pair : homes->Props()) {
            visitHomesSettings(*this, Reader(pair));
        }
    }
}

void BRController::revertSMBProperties(NSControl* sender) {
    // A refresh does not touch settings that the file does not contain, so that edits to those would stay.
    visitGlobalSettings(*this, Resetter());
    visitHomesSettings(*this, Resetter());
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
    visitGlobalSettings(*this, Writer(*smbConf->Global()));
    if (smbConf->Homes() == nullptr) {
        smbConf->setHomes(newSection("homes"));
    }
    SMBShare& homes = *smbConf->Homes();
    homes.setType(smbShareHomeDirs->state() == NSOnState ? SMBGroup : SMBCommentGroup);
    visitHomesSettings(*this, Writer(homes));
    smbSettingsInPart = false; // the page now shows every setting that it writes
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
        showAlert("smb.conf Write Unsuccessful", messageKeys.at(static_cast<std::size_t>(result)),
                  NSBundle::mainBundle().objectForInfoDictionaryKey("BRSupportAddress"));
    }
    showSMBConfNotice(); // what a write loses is no longer warned of
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
