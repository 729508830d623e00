#include "access/AccessCheck.h"
#include "access/HiddenSection.h"
#include "model/ServerSettings.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/posix/LetterCase.h"
#include "platform/samba/SettingsComplaints.h"
#include "platform/samba/UserShares.h"

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>

namespace accesscheck {

namespace {

/// Whether the server offers a user share of that name, or nobody but root can tell.
bool mayBeUserShare(const std::string& name, std::string folder) {
    struct stat status {};

    folder = folder.empty() ? "/var/lib/samba/usershares" : folder;
    if (::lstat((folder + "/" + platform::lowercased(name)).c_str(), &status) == 0) {
        return true;
    }
    return errno == EACCES && name.ends_with(platform::publicShareName(""));
}

} // namespace

Server serverWith(const SMBConf& conf, bool isOfRoot) {
    const std::string& text = conf.textOnDisk();
    return {platform::Host::current().paths().map(conf.Path()), isOfRoot,
            platform::serverStartsWith(isOfRoot ? platform::withoutShareSecurity(text) : text)};
}

std::string AccessCheck::commandName(const Account& account) const {
    return server_.isOfRoot ? std::to_string(account.uid) : account.name;
}

std::optional<Reason> AccessCheck::hiddenReason(const std::string& share) const {
    for (const SMBHiddenSection& hidden : conf_.hiddenSections()) {
        const std::string name = nameOf(hidden);
        // Brindle takes the section's settings for those of the one above it.
        if (isEqualIgnoringCase(name, share) || isEqualIgnoringCase(hidden.above, share) ||
            isServerGlobal(name) || isServerGlobal(hidden.above)) {
            return Reason{"cannot-tell", sentenceAbout(hidden),
                          server_.file + ":" + std::to_string(hidden.line),
                          remedyFor(hidden, server_.file, server_.isOfRoot)};
        }
    }
    return std::nullopt;
}

std::optional<Reason> AccessCheck::serverReason() const {
    if (!server_.isOfRoot && isEqualIgnoringCase(shares_.global().text("security"), "share")) {
        return Reason{"server-does-not-start",
                      NSLocalizedString("Samba 4 does not start with the security level \"Share\"."),
                      stringWithFormat(NSLocalizedString("[%@] in %@"), std::string("global"), server_.file),
                      NSLocalizedString("On the SMB page, choose the security level \"User\".")};
    }
    if (!server_.starts) {
        return Reason{"server-does-not-start", NSLocalizedString(serverDoesNotStart), server_.file, {}};
    }
    return std::nullopt;
}

std::optional<Reason> AccessCheck::reasonElsewhere(const std::string& share) {
    if (auto reason = hiddenReason(share)) {
        return reason;
    }
    const auto cannotTell = [&](const std::string& text) {
        return Reason{"cannot-tell", text, server_.file, {}};
    };
    for (const auto& entry : conf_.Entries()) {
        if (entry->Type() != SMBGroup) {
            continue;
        }
        if (const auto found = serverSetting(*entry, "include"); found.pair != nullptr) {
            return cannotTell(stringWithFormat(
                NSLocalizedString(
                    "\"%@\" is not in the settings file itself, and \"include = %@\" was not read."),
                share, found.pair->Value.str()));
        }
        if (isServerHomes(entry->ShareName()) && accountNamed(share)) {
            return cannotTell(stringWithFormat(
                NSLocalizedString("\"%@\" is a user's home folder, which [homes] offers: it was not judged."),
                share));
        }
    }
    if (!server_.isOfRoot && mayBeUserShare(share, std::string(shares_.global().text("usershare path")))) {
        return cannotTell(stringWithFormat(
            NSLocalizedString(
                "\"%@\" is a user share, which is offered without the settings file: it was not judged."),
            share));
    }
    return std::nullopt;
}

void AccessCheck::noteWhatIsNotJudged(const ServerShare& share, Answer* answer) {
    for (const char* key :
         {"hosts allow", "hosts deny", "username map", "veto files", "max connections", "include", "copy"}) {
        if (const auto value = share.text(key); !value.empty()) {
            answer->notes.push_back(
                stringWithFormat(NSLocalizedString("\"%@ = %@\" was not taken into account."),
                                 std::string(key), std::string(value)));
        }
    }
}

bool AccessCheck::mapsUnknownToGuest() const {
    const std::string mapping = foldedSettingName(shares_.global().text("map to guest"));
    return mapping.empty() ? server_.isOfRoot : mapping == "baduser" || mapping == "badpassword";
}

} // namespace accesscheck
