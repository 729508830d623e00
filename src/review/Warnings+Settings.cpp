#include "review/Warnings.h"

#include "model/SMBParser.h"
#include "model/ServerSettings.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "review/SMBFields.h"

#include <algorithm>
#include <functional>
#include <map>
#include <string_view>

namespace review {

namespace {

/// A setting of the SMB page, its control, and what the server assumes without it.
struct SMBSetting {
    std::string_view key;
    const NSControl* control; ///< null for a setting that depends on another one
    std::string_view standard;
};

std::vector<SMBSetting> globalSettings(const BROutlets& page) {
    std::vector<SMBSetting> settings{{"security", page.smbSecurity, "user"},
                                     {"map to guest", nullptr, "never"},
                                     {"dos charset", page.smbCodePage, "cp850"},
                                     {"local master", page.smbWorkGroupMaster, "yes"},
                                     {"hide dot files", page.smbHideDotFiles, "yes"}};
    for (const SMBTextField& field : smbTextFields) {
        settings.push_back({field.key, page.*field.field, ""});
    }
    return settings;
}

std::vector<SMBSetting> homesSettings(const BROutlets& page) {
    return {{"browseable", page.smbHomeDirsBrowseable, "yes"},
            {"read only", page.smbHomeDirsReadOnly, "yes"}};
}

ServerSetting settingOf(const SMBShare* section, std::string_view key) {
    return section != nullptr ? serverSetting(*section, key) : ServerSetting();
}

/// How the server interprets a setting, so that different spellings of the same meaning are equal.
std::string meaningOf(const SMBShare* section, const SMBSetting& setting) {
    const ServerSetting read = settingOf(section, setting.key);
    std::string written = read.pair != nullptr ? read.pair->Value.str() : std::string(setting.standard);
    if (const auto flag = serverBool(written)) {
        return *flag != read.inverted ? "yes" : "no";
    }
    return written;
}

void addSection(const std::vector<SMBSetting>& settings, const SMBShare* before, const SMBShare& after,
                std::vector<Remark>* warnings) {
    for (const SMBSetting& setting : settings) {
        const bool isUntouched = setting.control == nullptr || !setting.control->isEdited();
        if (isUntouched && !isEqualIgnoringCase(meaningOf(before, setting), meaningOf(&after, setting))) {
            warnings->push_back(untouchedSetting(after.ShareName(), setting.key,
                                                 settingOf(before, setting.key),
                                                 settingOf(&after, setting.key)));
        }
    }
}

/// Names what becomes active with the home folders beside what the page shows: a comment with a "=" below a
/// commented-out section counts as a setting of it, even if it is about the next share.
void addWokenSettings(const SMBShare& homes, const std::vector<SMBSetting>& shown,
                      std::vector<Remark>* warnings) {
    std::vector<std::string> settings;
    for (const SMBPair& pair : homes.Props()) {
        const bool isShown = std::ranges::find(shown, pair.Name.view(), &SMBSetting::key) != shown.end();
        // The description of the shares that everybody sees anyway, as a new root's file has one, is no
        // danger.
        const bool isDescription = foldedSettingName(pair.Name.view()) == "comment";
        if (!isShown && !isDescription && !SMBParser::isComment(pair.Name)) {
            settings.push_back("\"" + pair.Name.str() + " = " + pair.Value.str() + "\"");
        }
    }
    if (!settings.empty()) {
        warnings->push_back(remark("untouched-setting",
                                   "Sharing the home folders makes these settings of the commented-out "
                                   "section [homes] active, too: %@.",
                                   listOf(settings)));
    }
}

bool isLive(const SMBShare* section) {
    return section != nullptr && section->Type() == SMBGroup;
}

void addSMBPage(const Situation& situation, std::vector<Remark>* warnings) {
    const SMBConf* before = situation.before.smbConfModel();
    const SMBConf* after = situation.after.smbConfModel();
    if (before == nullptr || after == nullptr || after->Global() == nullptr) {
        return;
    }
    addSection(globalSettings(situation.before), before->Global(), *after->Global(), warnings);
    if (before->Homes() == nullptr || !isLive(after->Homes())) {
        return;
    }
    const std::vector<SMBSetting> homes = homesSettings(situation.before);
    if (isLive(before->Homes())) {
        addSection(homes, before->Homes(), *after->Homes(), warnings);
    } else {
        addWokenSettings(*after->Homes(), homes, warnings);
    }
}

/// Whether the user set the value of the control of an AFP setting.
using IsEdited = std::function<bool(const BROutlets& page)>;

template <class Kind>
IsEdited edited(Kind* BROutlets::*control) {
    return [control](const BROutlets& page) { return (page.*control)->isEdited(); };
}

IsEdited editedCell(NSMatrix* BROutlets::*matrix, int row, int column) {
    return [=](const BROutlets& page) { return (page.*matrix)->isEditedAt(row, column); };
}

const std::map<std::string_view, IsEdited>& afpControls() {
    using Page = BROutlets;
    static const std::map<std::string_view, IsEdited> controls{
        {"loginGreeting", edited(&Page::greeting)},
        {"sendGreetingOnce", edited(&Page::greetingOnce)},
        {"idleDisconnectOnOff", edited(&Page::idleDisconnectEnable)},
        {"idleDisconnectTime", edited(&Page::idleDisconnectTime)},
        {"idleDisconnectFlag.guestUsers", editedCell(&Page::idleDisconnectUsers, 0, 0)},
        {"idleDisconnectFlag.registeredUsers", editedCell(&Page::idleDisconnectUsers, 0, 1)},
        {"idleDisconnectFlag.adminUsers", editedCell(&Page::idleDisconnectUsers, 0, 2)},
        {"idleDisconnectFlag.usersWithOpenFiles", editedCell(&Page::idleDisconnectUsers, 0, 3)},
        {"activityLog", edited(&Page::loggingEnable)},
        {"activityLogTime", edited(&Page::logRolloverText)},
        {"activityLogPath", edited(&Page::logFilePath)},
        {"loggingAttributes.logLogin", editedCell(&Page::loggingAttributes1, 0, 0)},
        {"loggingAttributes.logLogout", editedCell(&Page::loggingAttributes1, 1, 0)},
        {"loggingAttributes.logCreateDir", editedCell(&Page::loggingAttributes2, 0, 0)},
        {"loggingAttributes.logCreateFile", editedCell(&Page::loggingAttributes2, 1, 0)},
        {"loggingAttributes.logOpenFork", editedCell(&Page::loggingAttributes3, 0, 0)},
        {"loggingAttributes.logDelete", editedCell(&Page::loggingAttributes3, 1, 0)},
        {"maxConnections", edited(&Page::numConnections)},
        {"maxGuests", edited(&Page::numGuestConnections)},
        {"afpTCPPort", edited(&Page::tcpPort)},
        {"adminGetsSp", edited(&Page::adminSpPrivsButton)},
        {"guestAccess", edited(&Page::allowGuestAccess)},
        {"registerNSL", edited(&Page::useRendezvous)},
        {"afpServerEncoding", edited(&Page::afpTextEncoding)},
    };
    return controls;
}

void addAFPPage(const Situation& situation, std::vector<Remark>* warnings) {
    for (const SettingChange& change : situation.plan.afpSettings) {
        const auto found = afpControls().find(change.key);
        if (found == afpControls().end() || !found->second(situation.before)) {
            warnings->push_back(remark("untouched-setting",
                                       "\"%@\" of the AFP settings changes from \"%@\" to \"%@\", although "
                                       "nobody touched its control.",
                                       change.key, change.before, change.after));
        }
    }
}

std::string lineOf(const SMBPair& pair) {
    return pair.Name.str() + " = " + pair.Value.str();
}

std::string valueOf(const ServerSetting& setting) {
    return setting.pair != nullptr ? setting.pair->Value.str() : std::string();
}

} // namespace

Remark untouchedSetting(const std::string& section, std::string_view key, const ServerSetting& before,
                        const ServerSetting& after) {
    if (before.pair != nullptr && after.pair != nullptr &&
        foldedSettingName(before.pair->Name) != foldedSettingName(after.pair->Name)) {
        return remark("untouched-setting",
                      "\"%@\" in the section [%@] of smb.conf is replaced by \"%@\", although nobody touched "
                      "its control.",
                      lineOf(*before.pair), section, lineOf(*after.pair));
    }
    const SMBPair* written = before.pair != nullptr ? before.pair : after.pair;
    return remark("untouched-setting",
                  "\"%@\" in the section [%@] of smb.conf changes from \"%@\" to \"%@\", although nobody "
                  "touched its control.",
                  written != nullptr ? written->Name.str() : std::string(key), section, valueOf(before),
                  valueOf(after));
}

void addSettingWarnings(const Situation& situation, std::vector<Remark>* warnings) {
    if (situation.is("updateSMBProperties:")) {
        addSMBPage(situation, warnings);
    } else if (situation.is("updateAFSProperties:")) {
        addAFPPage(situation, warnings);
    }
}

} // namespace review
