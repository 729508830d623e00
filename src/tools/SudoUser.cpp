#include "tools/SudoUser.h"

#include "platform/posix/WholeNumber.h"

#include <cstdlib>

namespace tools {

std::optional<uid_t> sudoUser() {
    const char* const text = std::getenv("SUDO_UID");
    return text == nullptr ? std::nullopt : platform::wholeNumber<uid_t>(text);
}

} // namespace tools
