#pragma once

#include "tools/DirectorySession.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace tools {

// brindle-helper: the only program that runs with an administrator's rights. It acts as one of a short list
// of tools, once for each request, and refuses everything else.

/// What a helper works on.
struct HelperPlace {
    std::string root; ///< the embedded root's folder; empty: this computer itself
    uid_t user = 0;   ///< the user who runs Brindle; only this user's files are copied
    /// On this computer, the prefix of Brindle's own files (host/SystemFiles.h).
    std::string systemPrefix = {};
};

/// A request to the helper.
struct HelperRequest {
    std::string tool;
    std::vector<std::string> arguments;
};

/// Parses a request: the tool's path and the arguments, each ended by a NUL. None when it is empty or does
/// not end with a NUL.
[[nodiscard]] std::optional<HelperRequest> parseHelperRequest(std::string_view bytes);

[[nodiscard]] bool isHelperTool(const std::string& tool);

/// A tool's output and its exit status: 0, or 1 with one line that says what failed.
struct HelperResult {
    std::string output; ///< for standard output
    std::string errors; ///< for standard error
    int status = 0;
};

/// Acts as the requested tool. Needs a current host for its log.
[[nodiscard]] HelperResult runHelperTool(const HelperPlace& place, const HelperRequest& request);

/// The tools that one helper acts as. On an embedded root, the changes of nicl are one transaction until a
/// commit; on this computer itself every run is committed at once.
class HelperTools {
  public:
    explicit HelperTools(HelperPlace place);

    /// Acts as the requested tool. Any tool except nicl commits first, because it reads the directory, or
    /// takes so long that others should not have to wait for it. If the commit fails, the tool does nothing.
    [[nodiscard]] HelperResult run(const HelperRequest& request);
    /// Commits the changes of nicl.
    [[nodiscard]] HelperResult settle();

  private:
    HelperPlace place_;
    std::optional<DirectorySession> directory_; ///< only on an embedded root
};

/// The whole program: `brindle-helper --root DIR` or `--system`, with requests on standard input
/// (platform/security/HelperProtocol.h). Returns the exit status.
[[nodiscard]] int helperMain(int argc, char** argv);

} // namespace tools
