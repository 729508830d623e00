#pragma once

#include "platform/posix/Status.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace platform {

/// The translations of one language, by their English originals.
using StringTable = std::map<std::string, std::string, std::less<>>;

/// Reads the entries `"key" = "value";` with comments (/* */ and //) between their parts. A string may hold
/// line breaks and the escapes \" \\ \n \t \r and \U with four hexadecimal digits of UTF-16. Of two entries
/// with the same key the first counts. Status::why of a failure names the line and what was expected there.
[[nodiscard]] Result<StringTable> readStringTable(std::string_view bytes);

} // namespace platform
