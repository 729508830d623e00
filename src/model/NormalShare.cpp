#include "model/NormalShare.h"

#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSString.h"

#include <algorithm>
#include <array>

void NormalShare::setPathandPermissions(const std::string& path) {
    _directorypath = path;
    const auto attributes = fileAttributesAtPath(path);
    const int mode = attributes ? attributes->posixPermissions : 0;
    _owner = permissionsToString(ownerPrivilegeCode(mode));
    _group = permissionsToString(groupPrivilegeCode(mode));
    _everyone = permissionsToString(everyonePrivilegeCode(mode));
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

const std::string* NormalShare::valueForKey(std::string_view getterName) const {
    struct Key {
        std::string_view name;
        std::string NormalShare::*field;
    };

    static constexpr std::array<Key, 12> keys{{
        {"ShareName", &NormalShare::_sharename},
        {"AFPShared", &NormalShare::_afpshared},
        {"AFPName", &NormalShare::_afpname},
        {"DirectoryPath", &NormalShare::_directorypath},
        {"Owner", &NormalShare::_owner},
        {"Group", &NormalShare::_group},
        {"Everyone", &NormalShare::_everyone},
        {"AFS", &NormalShare::_afs},
        {"Inherit", &NormalShare::_inheritperms},
        {"InheritOwner", &NormalShare::_inheritowner},
        {"SMB", &NormalShare::_smb},
        {"SMBGuestAccess", &NormalShare::_smbguestaccess},
    }};
    const auto* const key = std::find_if(keys.begin(), keys.end(),
                                         [&](const Key& candidate) { return candidate.name == getterName; });
    return key == keys.end() ? nullptr : &(this->*key->field);
}

std::string NormalShare::description() const {
    return stringWithFormat("Share Name: %@\nAFP Shared: %@   AFP Name: %@\nDirectory Path: %@\n"
                            "Owner: %@   Group: %@   Everyone: %@\nAFS: %@   SMB: %@\n"
                            "Inherit: %@   Inherit Owner: %@   SMB Guest Access: %@\n",
                            _sharename, _afpshared, _afpname, _directorypath, _owner, _group, _everyone, _afs,
                            _smb, _inheritperms, _inheritowner, _smbguestaccess);
}
