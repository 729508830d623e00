#pragma once

#include "platform/posix/Status.h"

#include <string>
#include <string_view>

#include <sys/types.h>

namespace tools {

/// Fails when `text` must not replace `old`.
using CopyCheck = platform::Status (*)(std::string_view text, std::string_view old);

/// The helper's cp: replaces a server's settings with a file that the user wrote.
///
/// `source` must be a regular file that belongs to `user`, not a link. `target` is replaced in one step, so
/// that a server reads the old text or the new one, never a part; if it is a link, the file that it names is
/// replaced. The new file gets the old one's owner and mode, or 0644 if there was none. Two files are kept
/// beside it: NAME.before-brindle, the text from before the very first copy (empty if there was no file), and
/// NAME.previous, the text that was replaced last. On failure the target is unchanged.
///
/// `check`, unless null, is called with the new text and the text that it replaces (empty if there is no
/// file); its failure refuses the copy.
[[nodiscard]] platform::Status copyIntoPlace(const std::string& source, const std::string& target, uid_t user,
                                             CopyCheck check = nullptr);

} // namespace tools
