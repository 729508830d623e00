#pragma once

#include "review/Plan.h"

#include <string>
#include <vector>

namespace review {

/// The keys of the AFP settings that differ between two contents of their file, in the new file's order, then
/// those that go. A file that cannot be parsed has none.
[[nodiscard]] std::vector<SettingChange> settingChanges(const std::string& before, const std::string& after);

} // namespace review
