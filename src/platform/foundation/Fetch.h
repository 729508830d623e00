#pragma once

#include <optional>
#include <string>

namespace platform {

/// A document fetched over the network, or why there is none.
struct Fetched {
    std::optional<std::string> bytes;
    std::string error; ///< for the user: what failed and on which address; empty on success
};

/// Fetches `address` (http or https only, redirects to those followed) synchronously: 10 seconds and 1 MiB at
/// most. An HTTP status other than 2xx is a failure.
[[nodiscard]] Fetched fetchContentsOfURL(const std::string& address);

} // namespace platform
