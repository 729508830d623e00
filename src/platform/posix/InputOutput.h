#pragma once

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

/// The two ends of a pipe. Neither is inherited by programs that are started.
struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

/// Fails when no more descriptors can be opened.
[[nodiscard]] Result<Pipe> makePipe();

inline constexpr std::size_t noLimit = static_cast<std::size_t>(-1);

/// Everything that can be read from `descriptor` to its end. `name` is the file or program that a failure is
/// about. With a limit (in bytes), more than that is a failure. The memory for it is reserved first, so that
/// the bytes do not move while they are read and a secret leaves no copies. The descriptor stays the
/// caller's.
[[nodiscard]] Result<std::string> readAll(int descriptor, const std::string& name,
                                          std::size_t limit = noLimit);

/// In bytes. A larger file is not a settings file, and reading it could exhaust the memory.
inline constexpr std::size_t largestWholeFile = std::size_t{64} << 20;

/// The bytes of the file at `path`, links followed. systemError() is ENOENT for a missing one, EFBIG for one
/// larger than largestWholeFile. Only a regular file is read: a pipe or a device may never end.
[[nodiscard]] Result<std::string> readWholeFile(const std::string& path);

/// Writes all of `bytes` to `descriptor`, which blocks. `name` is what a failure is about; some of the bytes
/// may be written by then. The descriptor stays the caller's. Writing to a pipe that nobody reads fails only
/// where SIGPIPE is ignored (see IgnoredBrokenPipe).
[[nodiscard]] Status writeAll(int descriptor, std::string_view bytes, const std::string& name);

} // namespace platform
