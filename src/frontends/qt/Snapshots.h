#pragma once

#include "frontends/qt/QtPresenter.h"
#include "platform/posix/Status.h"

#include <string>

namespace frontend {

/// Writes a picture of every page of every loaded interface into `folder`, each named after its page. Fails
/// at the first picture that cannot be written.
[[nodiscard]] platform::Status writeSnapshots(QtPresenter& presenter, const std::string& folder);

} // namespace frontend
