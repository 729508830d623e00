#pragma once

#include <string>

namespace platform {

/// Where the file server of a root has its files.
struct SambaPaths {
    std::string folder;    ///< its private folder: configuration, account lists, password database
    std::string smbConf;   ///< the settings that its configuration includes
    std::string storeFile; ///< the directory whose accounts it serves
};

} // namespace platform
