#pragma once

#include <string>

namespace platform {

// The user's own files, whichever host is used.

/// $HOME, or else the account's home folder. No trailing slash.
[[nodiscard]] std::string homeFolder();
/// The user defaults: `brindle/defaults.plist` in $XDG_CONFIG_HOME or ~/.config.
[[nodiscard]] std::string defaultsFileOf(const std::string& home);
/// What the user has changed on this computer: `brindle/history.db` in $XDG_STATE_HOME or ~/.local/state.
[[nodiscard]] std::string historyFileOf(const std::string& home);

} // namespace platform
