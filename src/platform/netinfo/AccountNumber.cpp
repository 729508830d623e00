#include "platform/netinfo/AccountNumber.h"

#include <charconv>
#include <cstdint>
#include <limits>

namespace platform {

namespace {

constexpr int nobodyInDirectory = -2;

} // namespace

std::string directoryNumber(unsigned number) {
    if (number == nobodyNumber) {
        return std::to_string(nobodyInDirectory);
    }
    return std::to_string(static_cast<std::int32_t>(number));
}

unsigned accountNumber(std::string_view text, bool* valid) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    *valid = error == std::errc() && end == text.data() + text.size() &&
             number >= std::numeric_limits<std::int32_t>::min() &&
             number < std::numeric_limits<std::uint32_t>::max();
    if (!*valid) {
        return 0;
    }
    return number == nobodyInDirectory ? nobodyNumber
                                       : static_cast<unsigned>(static_cast<std::uint32_t>(number));
}

} // namespace platform
