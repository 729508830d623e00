#pragma once

#include "platform/foundation/Services.h"
#include "platform/posix/Status.h"

namespace review {

/// The services `real` with working copies in place of all that a tool run can change: what is done with them
/// looks as it would come, and changes nothing. The administrator right is asked for as it would be. The log
/// and the presenter are left out. Fails where nothing can be copied.
[[nodiscard]] platform::Result<platform::Services> servicesOnCopies(const platform::Services& real);

} // namespace review
