#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace platform {

/// Fetches `address` (http or https only, redirects to those followed) synchronously: 10 seconds and 1 MiB at
/// most. An HTTP status other than 2xx is a failure. The reason of a failure is a sentence for the user,
/// which names the address.
[[nodiscard]] Result<std::string> fetchContentsOfURL(const std::string& address);

} // namespace platform
