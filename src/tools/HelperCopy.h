#pragma once

#include "platform/posix/Status.h"

#include <string>
#include <string_view>

#include <sys/types.h>

/// Whether a text may take the place of another.
using CopyCheck = platform::Status (*)(std::string_view text, std::string_view old);

/// The helper's cp: replaces a server's settings by a file that the user wrote.
///
/// `source` must be a regular file that belongs to `user`, and no link. `target` is replaced in one step, so
/// that a server reads the old text or the new one, never a part; where it is a link, the file that it names
/// is. The new file takes the old one's owner and mode, 0644 where there was none. Beside it stay
/// NAME.before-brindle, the text that was there before the first copy of all (empty where there was no file),
/// and NAME.previous, the text replaced last. On failure the target is as it was.
///
/// `check`, where there is one, is asked about the new text and the one that it replaces (empty for no file);
/// its failure refuses the copy.
[[nodiscard]] platform::Status copyIntoPlace(const std::string& source, const std::string& target, uid_t user,
                                             CopyCheck check = nullptr);
