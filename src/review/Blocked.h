#pragma once

#include "app/BROutlets.h"
#include "review/AccountForecast.h"
#include "review/Plan.h"

#include <optional>
#include <vector>

namespace review {

/// Why the runs of a plan cannot be done, whatever the directory holds: our own tools are bound to refuse one
/// of them, or a value that ends in a backslash would take in the line after it. Looks only at the
/// plan's runs, so that what the operation itself refuses first is not reported twice. Deleting is never
/// blocked. `controls` are those that the plan was made
/// with; the folder, key or name is quoted as it stands there; `accounts` are this computer's own before the
/// first run, where they are the directory's.
[[nodiscard]] std::vector<Remark> blocksOf(const Plan& plan, const BROutlets& controls,
                                           std::optional<AccountForecast> accounts);

} // namespace review
