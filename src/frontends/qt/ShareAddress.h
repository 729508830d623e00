#pragma once

#include "platform/appkit/NSTableView.h"

#include <functional>
#include <string>

/// Where the shares are reached.
struct ShareServer {
    std::string address; ///< "smb://HOST:PORT/", empty where nothing serves them
    std::string state;   ///< a sentence on it, or on why there is none; may be empty
    bool hasFailed = false;
};

/// What the column says of the row; empty where there is no such column.
[[nodiscard]] std::string valueOf(NSTableView& table, const char* identifier, int row);

/// Where others reach the share of that name over SMB, percent-encoded as a file manager reads it. Empty
/// where nothing serves it.
[[nodiscard]] std::string smbAddressOf(const ShareServer& server, const std::string& share);

/// Where others reach the share of that row, percent-encoded as a file manager reads it: over SMB, or over
/// AFP where nothing else publishes it. Empty where nothing serves it. `hasSection` says whether smb.conf has
/// a section of a name.
[[nodiscard]] std::string addressOf(const ShareServer& server, NSTableView& shares, int row,
                                    const std::function<bool(const std::string&)>& hasSection);
