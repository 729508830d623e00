#pragma once

#include <cstdint>
#include <string>
#include <vector>

using OSStatus = std::int32_t;
using AuthorizationFlags = std::uint32_t;

inline constexpr AuthorizationFlags kAuthorizationFlagDefaults = 0;
inline constexpr AuthorizationFlags kAuthorizationFlagInteractionAllowed = 1;
inline constexpr AuthorizationFlags kAuthorizationFlagExtendRights = 2;
inline constexpr AuthorizationFlags kAuthorizationFlagDestroyRights = 8;

inline constexpr OSStatus errAuthorizationSuccess = 0;
inline constexpr OSStatus errAuthorizationInvalidRef = -60002;
inline constexpr OSStatus errAuthorizationDenied = -60005;
inline constexpr OSStatus errAuthorizationCanceled = -60006;
inline constexpr OSStatus errAuthorizationInteractionNotAllowed = -60007;
inline constexpr OSStatus errAuthorizationToolExecuteFailure = -60031;

struct AuthorizationItem {
    std::string name;
    std::string value; ///< bytes, without a terminating zero
    std::uint32_t flags = 0;
};

using AuthorizationItemSet = std::vector<AuthorizationItem>;
using AuthorizationRights = AuthorizationItemSet;
