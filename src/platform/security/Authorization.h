#pragma once

#include "platform/security/Authority.h"

#include <cstddef>
#include <cstdio>
#include <optional>
#include <span>
#include <string>

// The platform's Authorization Services, as far as they are used, implemented by the host's authority.

using AuthorizationRef = platform::AuthorizationSession*;

/// Makes a session without rights and puts it into `*authorization`. On failure `*authorization` is
/// unchanged. Rights are requested with AuthorizationCopyRights only; `rights` and `flags` are ignored.
OSStatus AuthorizationCreate(const AuthorizationRights& rights, AuthorizationFlags flags,
                             AuthorizationRef* authorization);
/// Requests `rights`; with kAuthorizationFlagInteractionAllowed the user may be asked. On success
/// `*authorized` (unless null) receives a new item set of what was granted, to be released with
/// AuthorizationFreeItemSet. Returns errAuthorizationInvalidRef for a null session.
OSStatus AuthorizationCopyRights(AuthorizationRef authorization, const AuthorizationRights& rights,
                                 AuthorizationFlags flags, AuthorizationRights** authorized);
OSStatus AuthorizationFreeItemSet(AuthorizationItemSet* set);
/// Destroys the session, and with kAuthorizationFlagDestroyRights its rights as well.
OSStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags flags);
/// Runs `tool` as root (on the embedded host: as the user) with `arguments`. On success `*stream` (unless
/// `stream` is null) receives the tool's standard output, to be closed with fclose. The result says only
/// whether the tool was started. The presenter is told before the start, and of the output when the stream
/// has been read to its end. `secretArgument` is the index of an argument that must not be shown; the
/// presenter gets "********" instead.
OSStatus AuthorizationExecuteWithPrivileges(AuthorizationRef authorization, const std::string& tool,
                                            AuthorizationFlags options,
                                            std::span<const std::string> arguments, std::FILE** stream,
                                            std::optional<std::size_t> secretArgument = std::nullopt);
