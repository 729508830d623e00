#pragma once

#include "platform/foundation/Services.h"

#include <functional>
#include <map>
#include <string>
#include <utility>

#include <sys/types.h>

namespace platform {

/// Runs a shell command that lists processes, one ID per line, and leaves out the processes that this host
/// may not signal.
class HostProcesses : public Processes {
  public:
    /// `maySignal` is asked about each process of a listing.
    explicit HostProcesses(std::function<bool(pid_t process)> maySignal) : maySignal_(std::move(maySignal)) {}

    [[nodiscard]] std::FILE* open(const std::string& command, const char* mode) override;
    int close(std::FILE* stream) override;

  private:
    std::function<bool(pid_t)> maySignal_;
    std::map<std::FILE*, int> statuses_; ///< the exit statuses of the commands whose streams are open
};

} // namespace platform
