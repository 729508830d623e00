#pragma once

#include "app/BRController.h"
#include "directory/DirectoryView.h"
#include "review/AccountForecast.h"
#include "review/Plan.h"

#include <optional>
#include <vector>

namespace review {

/// Why a plan cannot be carried out: our own tools are bound to refuse one of its runs, or a value that ends
/// in a backslash is written to smb.conf, where it would join the next line. Looks only at the plan's runs,
/// so that what the operation itself refuses is not reported twice. Deleting is never blocked, nor is
/// updating a share of a system folder, whose owner and mode the tools leave as they are. `now` is the
/// application that the plan was made with; folders, keys and names are quoted from its controls. `directory`
/// is the one before the first run. `accounts` are this computer's own before the first run, if the directory
/// shows them.
[[nodiscard]] std::vector<Remark> blocksOf(const Plan& plan, const BRController& now,
                                           const DirectoryView& directory,
                                           std::optional<AccountForecast> accounts);

} // namespace review
