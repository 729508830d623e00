#include "platform/host/InstalledFiles.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace platform {

std::string programFolder() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? "." : program.parent_path().string();
}

std::string defaultHelper() {
    const std::string installed =
        std::filesystem::path(programFolder() + "/../libexec/brindle-helper").lexically_normal().string();
    std::error_code ignored; // a helper that cannot be examined cannot be run either
    return std::filesystem::exists(installed, ignored) ? installed : programFolder() + "/brindle-helper";
}

std::string defaultResources() {
    const char* resources = std::getenv("BRINDLE_RESOURCES");
    return resources == nullptr || *resources == '\0'
               ? std::filesystem::path(programFolder() + "/../share/brindle").lexically_normal().string()
               : resources;
}

} // namespace platform
