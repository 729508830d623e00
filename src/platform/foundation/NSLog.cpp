#include "NSLog.h"

#include "Host.h"

void platform::logText(std::string_view text) {
    Host::current().log().write(text);
}
