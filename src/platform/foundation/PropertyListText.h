#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The text of a property list file as UTF-8 without a byte order mark: UTF-16 (with a mark, or starting with
/// an ASCII character) is converted, anything else is returned as it is. None for malformed UTF-16.
[[nodiscard]] std::optional<std::string> propertyListTextAsUTF8(std::string_view bytes);

/// Parses a property list in the old ASCII form, `{ key = value; list = (a, "b"); bytes = <00ff>; }`. Returns
/// a libplist node that the caller frees, in which every scalar except data is a string, or null when the
/// text is malformed.
[[nodiscard]] void* readOldStylePropertyList(std::string_view text);
