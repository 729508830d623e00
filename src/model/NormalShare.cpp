#include "model/NormalShare.h"

#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSString.h"

#include <algorithm>
#include <array>
#include <deque>
#include <unordered_map>

namespace {

/// All shared texts, by number.
struct SharedTexts {
    std::deque<std::string> texts; ///< never moved: `numbers` refers to them
    std::unordered_map<std::string_view, std::uint32_t> numbers;

    static SharedTexts& instance() {
        static SharedTexts shared;
        return shared;
    }
};

} // namespace

SharedText::SharedText(std::string_view text) {
    auto& [texts, numbers] = SharedTexts::instance();
    auto known = numbers.find(text);
    if (known == numbers.end()) {
        texts.emplace_back(text);
        known = numbers.emplace(texts.back(), static_cast<std::uint32_t>(texts.size() - 1)).first;
    }
    number_ = known->second;
}

const std::string& SharedText::str() const {
    return SharedTexts::instance().texts[number_];
}

void NormalShare::setPathandPermissions(const std::string& path) {
    _directorypath = path;
    const auto attributes = fileAttributesAtPath(path);
    const int mode = attributes ? attributes->posixPermissions : 0;
    setOwner(permissionsToString(ownerPrivilegeCode(mode)));
    setGroup(permissionsToString(groupPrivilegeCode(mode)));
    setEveryone(permissionsToString(everyonePrivilegeCode(mode)));
}

std::string NormalShare::permissionsToString(int code) {
    switch (code) {
    case 3:
        return "r/w";
    case 2:
        return "r";
    case 1:
        return "w";
    default:
        return "";
    }
}

void NormalShare::setShareName(std::string text) {
    std::string afpName = AFPName();
    _sharename = std::move(text);
    setAFPName(std::move(afpName));
}

void NormalShare::setAFPName(std::string text) {
    if (text == _sharename) {
        _afpname = RareText();
    } else {
        _afpname.made() = std::move(text);
    }
}

const std::string* NormalShare::valueForKey(std::string_view getterName) const {
    struct Key {
        std::string_view name;
        const std::string& (NormalShare::*getter)() const;
    };

    static constexpr std::array<Key, 12> keys{{
        {"ShareName", &NormalShare::ShareName},
        {"AFPShared", &NormalShare::AFPShared},
        {"AFPName", &NormalShare::AFPName},
        {"DirectoryPath", &NormalShare::DirectoryPath},
        {"Owner", &NormalShare::Owner},
        {"Group", &NormalShare::Group},
        {"Everyone", &NormalShare::Everyone},
        {"AFS", &NormalShare::AFS},
        {"Inherit", &NormalShare::Inherit},
        {"InheritOwner", &NormalShare::InheritOwner},
        {"SMB", &NormalShare::SMB},
        {"SMBGuestAccess", &NormalShare::SMBGuestAccess},
    }};
    const auto* const key = std::ranges::find(keys, getterName, &Key::name);
    return key == keys.end() ? nullptr : &(this->*key->getter)();
}

std::string NormalShare::description() const {
    return stringWithFormat("Share Name: %@\nAFP Shared: %@   AFP Name: %@\nDirectory Path: %@\n"
                            "Owner: %@   Group: %@   Everyone: %@\nAFS: %@   SMB: %@\n"
                            "Inherit: %@   Inherit Owner: %@   SMB Guest Access: %@\n",
                            _sharename, _afpshared.str(), AFPName(), _directorypath, _owner.str(),
                            _group.str(), _everyone.str(), _afs.str(), _smb.str(), _inheritperms.str(),
                            _inheritowner.str(), _smbguestaccess.str());
}
