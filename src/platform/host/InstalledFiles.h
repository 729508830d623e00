#pragma once

#include <string>

namespace platform {

/// The folder that holds the running program.
[[nodiscard]] std::string programFolder();

/// The path of the brindle-helper that is installed with this program (../libexec), or else of the one in its
/// folder, as in a build.
[[nodiscard]] std::string defaultHelper();

/// The folder with Info.plist and the interface files: $BRINDLE_RESOURCES, or else ../share/brindle relative
/// to the folder of the running program.
[[nodiscard]] std::string defaultResources();

} // namespace platform
