#pragma once

#include <string>

/// `text` as one line that ends in a line break: what a complaint quotes may hold line breaks of its own,
/// which show as "?".
[[nodiscard]] std::string oneLine(std::string text);
