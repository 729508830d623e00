#include "tools/SudoUser.h"

#include <charconv>
#include <cstdlib>
#include <string_view>

std::optional<uid_t> sudoUser() {
    const char* const text = std::getenv("SUDO_UID");
    if (text == nullptr) {
        return std::nullopt;
    }
    uid_t user = 0;
    const std::string_view digits(text);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), user);
    return error == std::errc() && end == digits.data() + digits.size() ? std::optional(user) : std::nullopt;
}
