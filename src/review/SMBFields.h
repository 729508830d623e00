#pragma once

#include "app/BROutlets.h"

#include <array>
#include <string_view>

namespace review {

/// A text field of the SMB page and the key of the section "global" that it shows.
struct SMBTextField {
    std::string_view key;
    NSTextField* BROutlets::*field;
};

inline constexpr std::array<SMBTextField, 7> smbTextFields{{
    {"netbios name", &BROutlets::smbNetBiosName},
    {"max connections", &BROutlets::smbMaxConnections},
    {"workgroup", &BROutlets::smbWorkGroup},
    {"wins server", &BROutlets::smbWINSServer},
    {"server string", &BROutlets::smbServerInfoString},
    {"hide files", &BROutlets::smbHideFiles},
    {"veto files", &BROutlets::smbVetoFiles},
}};

} // namespace review
