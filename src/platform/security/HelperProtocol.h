#pragma once

#include "platform/posix/Process.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// What Brindle and its helper say to each other. A request is the tool's path and its arguments, each ended
// by a NUL. A helper that serves one request reads it up to the end of its input. One that serves a session
// reads frames: a length of four bytes, the highest first, and that many bytes, which are a request; an empty
// frame asks for the commit of what the directory's tools have changed since the last one. It replies to each
// frame before it reads the next: one byte that it has started, a frame with what the tool wrote, and one
// byte for the exit status; or one byte alone where it refuses.

/// A helper that serves a session ends when it was asked nothing for so long.
inline constexpr std::chrono::milliseconds helperIdleLimit = std::chrono::minutes(5);

/// The largest request, in bytes.
inline constexpr std::size_t maximumHelperRequest = std::size_t{1024} * 1024;
/// A helper that gives up before it has started ends with this status; sudo, when it refuses, with another.
inline constexpr int helperNotStartedStatus = 125;
/// What the helper writes first: it has read its request and is the tool from now on.
inline constexpr char helperStarted = 0x06;
/// What it writes instead in a session when the tool is not on its list.
inline constexpr char helperRefused = 0x15;

/// Whether what this tool changes waits for a commit in a session: nicl's work. Any other's is done at once.
[[nodiscard]] bool waitsForCommit(std::string_view tool);

inline constexpr std::size_t frameHeaderSize = 4;

/// The length in front of a frame of `size` bytes (below 4 GiB).
[[nodiscard]] std::string frameHeader(std::size_t size);
/// The length that such a header, frameHeaderSize bytes, holds.
[[nodiscard]] std::size_t frameSize(std::string_view header);

/// The request as the helper reads it, after `reserved` bytes that are left for a header. None when it is
/// too large, or when a NUL in a word would cut it in two. May hold a password: wipe it.
[[nodiscard]] std::optional<std::string>
helperRequest(const std::string& tool, std::span<const std::string> arguments, std::size_t reserved = 0);

/// Starts the helper, or what stands in front of it, with pipes to it.
[[nodiscard]] Result<ChildProcess> startHelper(const std::vector<std::string>& command);

/// The outcome of handing a request over.
enum class HelperStart { Started, Refused, Ended, Failed };
/// Whether the request's end is told by the input's.
enum class HelperInput { Closes, StaysOpen };

/// Writes the request and reads the first byte, both at once: the helper may say something before it has read
/// everything. Failed when it says anything else, or nothing within `patience`.
[[nodiscard]] HelperStart handOver(ChildProcess& helper, std::string_view request, HelperInput input,
                                   std::chrono::milliseconds patience);

} // namespace platform
