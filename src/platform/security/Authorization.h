#pragma once

#include "platform/security/Authority.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <vector>

// The platform's Authorization Services, as far as they are used, over the host's authority.

using AuthorizationRef = platform::AuthorizationSession*;

/// Makes a session. `rights` and `flags` are handed to the authority as they are. On failure `*authorization`
/// stays as it was.
OSStatus AuthorizationCreate(const AuthorizationRights& rights, AuthorizationFlags flags,
                             AuthorizationRef* authorization);
/// Asks for `rights`; with kAuthorizationFlagInteractionAllowed the user may be asked. On success
/// `*authorized` is a new item set of what was granted, to be released with AuthorizationFreeItemSet.
/// errAuthorizationInvalidRef for a null session.
OSStatus AuthorizationCopyRights(AuthorizationRef authorization, const AuthorizationRights& rights,
                                 AuthorizationFlags flags, AuthorizationRights** authorized);
OSStatus AuthorizationFreeItemSet(AuthorizationItemSet* set);
/// Ends the session; with kAuthorizationFlagDestroyRights its rights go with it.
OSStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags flags);
/// Starts `tool` as root (on the embedded host: as the user) with `arguments`. On success `*stream` (when
/// `stream` is not null) is the tool's standard output, to be closed with fclose. The result says only
/// whether the tool started. The presenter is told before the start, and of the output when the stream's end
/// has been read. `secretArgument` is the index of an argument that must not be shown; the presenter gets
/// "********" in its place.
OSStatus AuthorizationExecuteWithPrivileges(AuthorizationRef authorization, const std::string& tool,
                                            AuthorizationFlags options,
                                            std::span<const std::string> arguments, std::FILE** stream,
                                            std::optional<std::size_t> secretArgument = std::nullopt);
