#pragma once

#include "platform/appkit/Interface.h"
#include "review/Plan.h"
#include "review/Rehearsal.h"

#include <functional>
#include <string>

namespace review {

/// Performs the action to be planned on the rehearsal.
using RehearsedAction = std::function<void(const Rehearsal& rehearsal)>;

/// How much of a plan to work out.
enum class PlanDepth {
    Blocks,  ///< the steps, and whether they are blocked
    Warnings ///< the warnings as well
};

/// Performs `action` on a copy of the current host's application, whose main interface is `main`, and returns
/// what it has done to the copy, with warnings and blocks. Nothing else is changed. A plan that cannot be
/// worked out has its `failure` set. An exception from the code outside the action leaves this function; the
/// action is then not performed.
[[nodiscard]] Plan planOf(const platform::Interface& main, const std::string& operation,
                          const RehearsedAction& action, PlanDepth depth = PlanDepth::Warnings);

/// Plans taking back a change, without warnings. `isOfSettings` says that this changes settings files only
/// and so needs no copy of the directory.
[[nodiscard]] Plan planOfUndo(const platform::Interface& main, const RehearsedAction& action,
                              bool isOfSettings);

} // namespace review
