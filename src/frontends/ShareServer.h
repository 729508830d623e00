#pragma once

#include <functional>
#include <string>

namespace frontend {

/// The server that offers the shares, as the window shows it.
struct ShareServer {
    std::string address;                  ///< "smb://HOST:PORT/", empty when nothing serves them
    std::string state;                    ///< a sentence about it, or about why there is none; may be empty
    bool hasFailed = false;               ///< it should run, and could not be started
    std::function<bool()> runs = nullptr; ///< whether it is running now; null when that is not known
};

} // namespace frontend
