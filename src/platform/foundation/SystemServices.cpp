#include "platform/foundation/SystemServices.h"

#include <chrono>
#include <cstdio>
#include <string>

#include <syslog.h>

namespace platform {

void SystemLog::write(std::string_view text) {
    while (text.ends_with('\n')) {
        text.remove_suffix(1);
    }
    const std::string line = "brindle: " + std::string(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
    ::syslog(LOG_USER | LOG_NOTICE, "brindle: %.*s", static_cast<int>(text.size()), text.data());
}

double SystemClock::now() const {
    using namespace std::chrono;
    constexpr sys_days referenceDate = 2001y / January / 1;
    return duration<double>(system_clock::now() - referenceDate).count();
}

} // namespace platform
