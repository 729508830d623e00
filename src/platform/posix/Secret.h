#pragma once

#include <span>
#include <string>

#include <string.h>

namespace platform {

/// Overwrites bytes that held a password, in a way that the compiler keeps.
inline void wipe(std::span<char> secret) {
    ::explicit_bzero(secret.data(), secret.size());
}

/// The same, and empties the text. One that has grown has left copies behind: reserve its room first.
inline void wipe(std::string& secret) {
    wipe(std::span(secret));
    secret.clear();
}

} // namespace platform
