#pragma once

#include <span>
#include <string>

#include <string.h>

namespace platform {

/// Overwrites bytes that held a password, in a way that the compiler does not optimise away.
inline void wipe(std::span<char> secret) {
    ::explicit_bzero(secret.data(), secret.size());
}

/// The same, then empties the string. A string that has grown has left copies in memory: reserve its size
/// first.
inline void wipe(std::string& secret) {
    wipe(std::span(secret));
    secret.clear();
}

/// Prevents core dumps, which could contain passwords, of this process and of programs that it starts from
/// now on, as far as the system allows.
void leaveNoCore();

} // namespace platform
