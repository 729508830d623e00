#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace platform {

/// Fetches `address` synchronously: http or https only, following redirects to those, for at most 10 seconds
/// and 1 MiB. An HTTP status other than 2xx is a failure. Status::why of a failure is a sentence for the user
/// that names the address.
[[nodiscard]] Result<std::string> fetchContentsOfURL(const std::string& address);

} // namespace platform
