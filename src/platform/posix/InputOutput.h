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

/// Opens standard input, output and error where the program was started without: the first file that it
/// opened would take their place, and get its messages. There is then nothing to read, and writing fails.
void openStandardDescriptors();

inline constexpr std::size_t noLimit = static_cast<std::size_t>(-1);

/// Reads from `descriptor` to its end. `name` is the file or program to name in a failure. With a limit (in
/// bytes), more than that is a failure, and no copies of the bytes, which may be a secret, are left in
/// memory. The caller keeps the descriptor.
[[nodiscard]] Result<std::string> readAll(int descriptor, const std::string& name,
                                          std::size_t limit = noLimit);

/// In bytes. A larger file cannot be a settings file, and reading it could exhaust the memory.
inline constexpr std::size_t largestWholeFile = std::size_t{64} << 20;

/// Reads the file at `path`, following links. systemError() is ENOENT for a missing file, EFBIG for one
/// larger than largestWholeFile. Fails for anything but a regular file, because a pipe or a device may never
/// end.
[[nodiscard]] Result<std::string> readWholeFile(const std::string& path);

/// Writes all of `bytes` to `descriptor`, which must be blocking. `name` is the file or program to name in a
/// failure; some of the bytes may have been written by then. The caller keeps the descriptor. Writing to a
/// pipe that nobody reads fails only where SIGPIPE is ignored (see IgnoredBrokenPipe).
[[nodiscard]] Status writeAll(int descriptor, std::string_view bytes, const std::string& name);

} // namespace platform
