#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The text of a property list file as UTF-8 without a byte order mark: UTF-16 (with a mark, or with ASCII as
/// its first character) is converted, anything else is taken as it is. None when UTF-16 is malformed.
[[nodiscard]] std::optional<std::string> propertyListTextAsUTF8(std::string_view bytes);

/// A property list in the old ASCII form, `{ key = value; list = (a, "b"); bytes = <00ff>; }`, as a libplist
/// node that the caller frees. Every scalar but data is a string there. Null when it is malformed.
[[nodiscard]] void* readOldStylePropertyList(std::string_view text);
