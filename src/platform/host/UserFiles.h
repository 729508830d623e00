#pragma once

#include "platform/foundation/Services.h"

#include <string>

namespace platform {

// The user's own files, whichever host is used.

/// $HOME, or else the account's home folder. No trailing slash.
[[nodiscard]] std::string homeFolder();
/// The user defaults: `brindle/defaults.plist` in $XDG_CONFIG_HOME or ~/.config.
[[nodiscard]] std::string defaultsFileOf(const std::string& home);
/// What the user has changed on this computer: `brindle/history.db` in $XDG_STATE_HOME or ~/.local/state.
[[nodiscard]] std::string historyFileOf(const std::string& home);
[[nodiscard]] std::string writersFileOf(const std::string& home);

/// The paths that are the same on every host.
class UserPaths : public Paths {
  public:
    UserPaths(std::string home, std::string defaultsFile, std::string resources);

    [[nodiscard]] std::string home() const override { return home_; }

    [[nodiscard]] std::string defaultsFile() const override { return defaultsFile_; }

    [[nodiscard]] std::string resources() const override { return resources_; }

  private:
    std::string home_;
    std::string defaultsFile_;
    std::string resources_;
};

} // namespace platform
