#pragma once

#include "platform/foundation/Services.h"

#include <functional>
#include <map>
#include <string>
#include <utility>

namespace platform {

/// Runs a shell command that lists processes, one ID per line, and leaves out the processes that this host
/// may not signal.
class HostProcesses : public Processes {
  public:
    /// `maySignal` is called for each line of a listing.
    explicit HostProcesses(std::function<bool(const std::string& processId)> maySignal)
        : maySignal_(std::move(maySignal)) {}

    [[nodiscard]] std::FILE* open(const std::string& command, const char* mode) override;
    int close(std::FILE* stream) override;

  private:
    std::function<bool(const std::string&)> maySignal_;
    std::map<std::FILE*, int> statuses_; ///< the exit statuses of the commands whose streams are open
};

/// Whether the process is an smbd that was started with the configuration of the root at `rootFolder`, or one
/// of its children that serves a connection.
[[nodiscard]] bool isServerOfRoot(const std::string& processId, const std::string& rootFolder);

/// Whether the process is a file server of this computer itself.
[[nodiscard]] bool isServerOfComputer(const std::string& processId);

} // namespace platform
