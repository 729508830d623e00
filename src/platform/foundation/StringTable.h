#pragma once

#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

namespace platform {

/// The translations of one language: what a user reads by the English text that stands for it.
using StringTable = std::map<std::string, std::string, std::less<>>;

/// A string table that cannot be read. The text names the line and what was expected there.
class StringTableError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Reads the entries `"key" = "value";` with comments (/* */ and //) between their parts. A text may hold
/// line breaks and the escapes \" \\ \n \t \r and \U with four hexadecimal digits of UTF-16. Of two entries
/// with one key the first counts. Throws StringTableError.
[[nodiscard]] StringTable readStringTable(std::string_view bytes);

} // namespace platform
