#pragma once

#include "frontends/ShareServer.h"
#include "platform/appkit/NSTableView.h"

#include <functional>
#include <string>

namespace frontend {

/// Returns the row's value in the column; empty when there is no such column.
[[nodiscard]] std::string valueOf(NSTableView& table, const char* identifier, int row);

/// Returns the SMB address of the share with that name, percent-encoded for a file manager. Empty when
/// nothing serves it.
[[nodiscard]] std::string smbAddressOf(const ShareServer& server, const std::string& share);

/// Returns the address of the share in that row, percent-encoded for a file manager: over SMB, or over AFP if
/// that alone publishes it. Empty when nothing serves it. `hasSection` says whether smb.conf has a section
/// with a name.
[[nodiscard]] std::string addressOf(const ShareServer& server, NSTableView& shares, int row,
                                    const std::function<bool(const std::string&)>& hasSection);

} // namespace frontend
