#include "frontends/cli/ServedShares.h"

#include "access/HiddenSection.h"
#include "platform/foundation/NSString.h"

#include <algorithm>

namespace frontend {

bool ServedShares::has(const std::string& name) const {
    return find(name) != nullptr || std::ranges::any_of(conf_.hiddenSections(), [&](const auto& section) {
               return isEqualIgnoringCase(accesscheck::nameOf(section), name);
           });
}

bool ServedShares::has(const std::string& name, const std::string& folder) const {
    const accesscheck::ServerShare* const share = find(name);
    return share != nullptr && withoutQuotes(share->text("path")) == folder;
}

std::optional<bool> ServedShares::letsGuestsIn(const std::string& name) const {
    const accesscheck::ServerShare* const share = find(name);
    return share == nullptr ? std::nullopt : std::optional(share->flag("guest ok", false));
}

const accesscheck::ServerShare* ServedShares::find(const std::string& name) const {
    return isServerGlobal(name) || isServerHomes(name) ? nullptr : shares_.find(name);
}

} // namespace frontend
