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

// The protocol between Brindle and its helper. Brindle sends frames: a length of four bytes, big-endian,
// followed by a request of that many bytes, which is the tool's path and its arguments, each ended by a NUL.
// An empty frame asks for a commit of what the directory's tools have changed since the last commit. The
// helper replies to each frame before it reads the next: the byte helperStarted, a frame with the tool's
// output, and one byte for the exit status; or the byte helperRefused alone. It ends at the end of its input.

/// A helper also ends after so long without a request.
inline constexpr std::chrono::milliseconds helperIdleLimit = std::chrono::minutes(5);

/// The largest reply, in bytes: far more than the longest list of sessions.
inline constexpr std::size_t maximumHelperAnswer = std::size_t{64} * 1024 * 1024;
/// The largest request, in bytes.
inline constexpr std::size_t maximumHelperRequest = std::size_t{1024} * 1024;
/// The exit status of a helper that cannot read a request or write its reply. sudo uses another one when it
/// refuses.
inline constexpr int helperGaveUpStatus = 125;
/// The first byte that the helper writes: it has read its request, and what follows is the tool's output.
inline constexpr char helperStarted = 0x06;
/// Written instead when the tool is not on the helper's list.
inline constexpr char helperRefused = 0x15;

/// Whether the changes of this tool wait for a commit. Only nicl's do; other tools' changes are made at once.
[[nodiscard]] bool waitsForCommit(std::string_view tool);

inline constexpr std::size_t frameHeaderSize = 4;

/// The header of a frame of `size` bytes (below 4 GiB).
[[nodiscard]] std::string frameHeader(std::size_t size);
/// The length in such a header of frameHeaderSize bytes.
[[nodiscard]] std::size_t frameSize(std::string_view header);

/// Builds a request, preceded by `reserved` bytes that are left for a header. None when it is too large, or
/// when a word contains a NUL, which would cut it in two. The request may hold a password, so wipe it.
[[nodiscard]] std::optional<std::string>
helperRequest(const std::string& tool, std::span<const std::string> arguments, std::size_t reserved = 0);

/// Starts the helper, or the program that starts it (sudo), with pipes to it.
[[nodiscard]] Result<ChildProcess> startHelper(const std::vector<std::string>& command);

/// The outcome of handing a request over.
enum class HelperStart { Started, Refused, Ended, Failed };

/// Writes the request and reads the helper's first byte at the same time, because the helper may write before
/// it has read everything. Returns Ended when the output ends without a byte, and Failed for any other byte,
/// or when there is none within `patience`.
[[nodiscard]] HelperStart handOver(ChildProcess& helper, std::string_view request,
                                   std::chrono::milliseconds patience);

} // namespace platform
