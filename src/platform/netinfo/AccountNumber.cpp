#include "platform/netinfo/AccountNumber.h"

#include "platform/posix/WholeNumber.h"

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
    const auto number = wholeNumber<std::int64_t>(text);
    *valid = number && *number >= std::numeric_limits<std::int32_t>::min() &&
             *number < std::numeric_limits<std::uint32_t>::max();
    if (!*valid) {
        return 0;
    }
    return *number == nobodyInDirectory ? nobodyNumber
                                        : static_cast<unsigned>(static_cast<std::uint32_t>(*number));
}

} // namespace platform
