#include "platform/posix/CapturedRun.h"

#include <utility>

namespace platform {

CapturedRun runCaptured(std::vector<std::string> arguments, std::vector<std::string> environment,
                        std::string_view input) {
    auto finished =
        runProcess({std::move(arguments), ErrorOutput::WithOutput, std::move(environment)}, input);
    return finished.isOk() ? CapturedRun{true, finished->status, std::move(finished->output)} : CapturedRun{};
}

} // namespace platform
