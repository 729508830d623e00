#pragma once

#include "platform/posix/Status.h"

#include <optional>
#include <string>
#include <string_view>

namespace tools {

/// Fails with the first complaint when the installed testparm finds `text` unusable as smb.conf, but `old`,
/// the text that it is to replace, usable: a running server must not be left without settings. Ok when
/// nothing can be checked, because testparm is not installed or does not end.
[[nodiscard]] platform::Status checkSmbConf(std::string_view text, std::string_view old);

/// testparm's first complaint about a text; none when the server can use it or nothing can be checked.
[[nodiscard]] std::optional<std::string> complaintAboutSmbConf(std::string_view text);

} // namespace tools
