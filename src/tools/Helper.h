#pragma once

#include "tools/DirectorySession.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

// brindle-helper: the one program that runs with an administrator's rights. It is one tool of a short list,
// once or, in a session, several times, and refuses everything else.

/// What one helper works on.
struct HelperPlace {
    std::string root; ///< the embedded root's folder; empty: this computer itself
    uid_t user = 0;   ///< who runs Brindle: only this user's files are copied
    /// On this computer, of the files that are Brindle's own (host/SystemFiles.h).
    std::string systemPrefix = {};
};

/// What a request asks for.
struct HelperRequest {
    std::string tool;
    std::vector<std::string> arguments;
};

/// Reads a request as Brindle sends it: the tool's path and each argument, each ended by a NUL. None when it
/// is empty or its last text has no end.
[[nodiscard]] std::optional<HelperRequest> parseHelperRequest(std::string_view bytes);

[[nodiscard]] bool isHelperTool(const std::string& tool);

/// What a tool says, and its exit status: 0, or 1 with one line of complaint.
struct HelperResult {
    std::string output; ///< for standard output
    std::string errors; ///< for standard error
    int status = 0;
};

/// Acts as the tool, which must be on the list. Needs a current host for its log.
[[nodiscard]] HelperResult runHelperTool(const HelperPlace& place, const HelperRequest& request);

/// The tools of one session. On an embedded root, what nicl changes is one transaction up to a commit; on
/// this computer itself every run is done at once.
class HelperTools {
  public:
    explicit HelperTools(HelperPlace place);

    /// Is the tool. Any but nicl commits first, and does nothing where that fails: it reads the directory, or
    /// takes longer than others should wait for it.
    [[nodiscard]] HelperResult run(const HelperRequest& request);
    /// Commits.
    [[nodiscard]] HelperResult settle();

  private:
    HelperPlace place_;
    std::optional<DirectorySession> directory_; ///< of an embedded root
};

/// The whole program: `brindle-helper --root DIR [--session]` or `--system [--session]`, the requests on
/// standard input (platform/security/HelperProtocol.h). Returns the exit status.
[[nodiscard]] int helperMain(int argc, char** argv);
