#include "review/RunOutcome.h"

#include "platform/foundation/SystemPaths.h"
#include "tools/StoreChange.h"

namespace review {

bool meansFailure(std::string_view tool, std::span<const std::string> arguments, std::string_view output) {
    const bool deletesShare = tool == platform::systempath::nicl && arguments.size() == 3 &&
                              arguments[1] == "-delete" && arguments[2].starts_with("/config/Brindle/");
    const bool foundNothing = deletesShare && output.find(tools::nothingToDelete) != output.npos;
    return !output.empty() && !foundNothing;
}

} // namespace review
