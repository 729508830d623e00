#pragma once

#include "platform/foundation/Services.h"
#include "platform/posix/Status.h"

namespace review {

/// The services `real`, but with working copies of everything that a tool run can change: what is done with
/// them looks real but changes nothing. The administrator right is still requested from the real authority.
/// The log and the presenter are left out. `root` is the folder of an embedded root, empty for this computer.
/// Fails when the copies cannot be made. A directory that cannot be read cannot be read in the copy either;
/// `*directory` then receives why.
[[nodiscard]] platform::Result<platform::Services>
servicesOnCopies(const platform::Services& real, const std::string& root, platform::Status* directory);

} // namespace review
