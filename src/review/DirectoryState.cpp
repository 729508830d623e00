#include "review/DirectoryState.h"

#include "directory/DirectoryView.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/StoreWait.h"

#include <utility>

namespace review {

std::string directoryProblem() {
    return platform::directoryProblem();
}

std::string directoryNotice() {
    const std::string problem = directoryProblem();
    if (problem.empty()) {
        return {};
    }
    return stringWithFormat(
        NSLocalizedString("The directory could not be read, so the lists are incomplete: %@."), problem);
}

std::string directoryHolder() {
    return platform::storeHolder(platform::Host::current().localDomain().storeFile());
}

bool hasRecord(const std::string& path) {
    if (!directoryHolder().empty()) {
        return false;
    }
    std::string problem = platform::directoryProblem(); // reading sets it again
    const bool isThere =
        DirectoryView(platform::Host::current().services().localDomain).record(path).has_value();
    platform::setDirectoryProblem(std::move(problem)); // the lists still show what was read before
    return isThere;
}

} // namespace review
