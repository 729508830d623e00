#pragma once

#include "platform/netinfo/ni.h"

#include <cstdint>
#include <optional>

namespace platform {

/// What tells one state of a store from another: equal as long as nobody has changed it.
struct StoreStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;    ///< bytes
    std::int64_t changed = 0; ///< when the file was, in nanoseconds since 1970
    std::uint32_t changes =
        0; ///< how often SQLite has changed it; see "File Change Counter" in its file format

    bool operator==(const StoreStamp&) const = default;
};

/// The state that the domain shows. None before the first read, and where records are read from a copy of the
/// store or from other files, too.
[[nodiscard]] std::optional<StoreStamp> stampOf(const ni_domain& domain);

} // namespace platform
