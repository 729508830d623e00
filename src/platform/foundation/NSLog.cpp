#include "platform/foundation/NSLog.h"

#include "platform/foundation/Host.h"

void platform::logText(std::string_view text) {
    Host::current().log().write(text);
}

void platform::logExplanation(std::string_view text) {
    Host::current().log().explain(text);
}
