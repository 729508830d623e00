#pragma once

#include "review/HistoryEntry.h"
#include "review/Plan.h"

#include <string>
#include <vector>

namespace review {

/// The runs that lead the record at `path` from `now`, which is not the same, back to `before`, including the
/// order of its properties.
[[nodiscard]] std::vector<PlannedRun> recordRuns(const std::string& path, const RecordChange::State& now,
                                                 const RecordChange::State& before);

} // namespace review
