#pragma once

#include "platform/appkit/Interface.h"
#include "review/Plan.h"
#include "review/Rehearsal.h"

#include <functional>
#include <string>

namespace review {

/// Does something to the rehearsal of an application.
using RehearsedAction = std::function<void(const Rehearsal& rehearsal)>;

/// How much of a plan is worked out.
enum class PlanDepth {
    Blocks,  ///< the steps, and whether they are blocked
    Warnings ///< the warnings as well
};

/// Carries `action` out on a copy of the application of the current host, whose main interface is `main`, and
/// tells what it has done to the copy, with warnings and blocks. Nothing else is changed.
[[nodiscard]] Plan planOf(const platform::Interface& main, const std::string& operation,
                          const RehearsedAction& action, PlanDepth depth = PlanDepth::Warnings);

} // namespace review
