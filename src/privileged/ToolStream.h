#pragma once

#include <cstdio>
#include <optional>
#include <string>

/// Reads `stream` to its end, in pieces of 512 bytes. None when the bytes are not UTF-8. The caller closes
/// the stream.
[[nodiscard]] std::optional<std::string> readToolStream(std::FILE* stream);
