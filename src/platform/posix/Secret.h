#pragma once

#include <string>

#include <string.h>

namespace platform {

/// Overwrites a text that held a password, in a way that the compiler keeps, and empties it.
inline void wipe(std::string& secret) {
    ::explicit_bzero(secret.data(), secret.size());
    secret.clear();
}

} // namespace platform
