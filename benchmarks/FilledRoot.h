#pragma once

#include "platform/host/EmbeddedHost.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/netinfo/Store.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Returns options for a benchmark's host that only uses files below `root`.
inline platform::EmbeddedHostOptions optionsFor(const std::string& root) {
    platform::EmbeddedHostOptions options;
    options.root = root;
    options.home = root;
    options.keepsUserDefaults = false;
    return options;
}

/// Adds a record to the folder `place` ("config/Brindle"), with a property for each pair.
inline void addRecord(platform::Store& store, std::string_view place, const std::string& name,
                      const std::vector<std::pair<const char*, std::string>>& properties) {
    std::vector<std::string> components;
    for (std::size_t begin = 0; begin < place.size();) {
        const std::size_t end = std::min(place.find('/', begin), place.size());
        components.emplace_back(place.substr(begin, end - begin));
        begin = end + 1;
    }
    const auto record = store.addRecord(store.find(components).value(), name);
    for (const auto& [property, value] : properties) {
        store.setValues(record, property, std::array{value});
    }
}

/// Makes a root with that many shares and users in addition to the computer's own. The shares' folders exist;
/// every second one is also shared over SMB.
inline void fillRoot(const std::filesystem::path& root, int shares, int users) {
    constexpr int firstUserId = 1001;
    std::filesystem::create_directories(root / "etc");
    std::ofstream configuration(root / "etc/smb.conf");
    configuration << "[global]\nworkgroup = OFFICE\n";
    if (const auto status = platform::EmbeddedRoot(root.string()).makeIfMissing(); !status.isOk()) {
        throw std::runtime_error(status.text());
    }
    platform::Store store(platform::EmbeddedRoot(root.string()).storeFile());
    for (int share = 0; share < shares; ++share) {
        const std::string name = "share" + std::to_string(share);
        const std::filesystem::path folder = root / "shared" / name;
        std::filesystem::create_directories(folder);
        addRecord(store, "config/Brindle", name,
                  {{"directory_path", folder.string()},
                   {"afp_shared", "1"},
                   {"afp_name", name},
                   {"afp_use_parent_privs", "0"},
                   {"afp_use_parent_owner", "0"}});
        if (share % 2 == 0) {
            configuration << '[' << name << "]\npath = " << folder.string() << "\nguest ok = yes\n";
        }
    }
    for (int user = 0; user < users; ++user) {
        const std::string name = "person" + std::to_string(user);
        addRecord(store, "users", name,
                  {{"uid", std::to_string(firstUserId + user)},
                   {"gid", "20"},
                   {"realname", "Person number " + std::to_string(user)},
                   {"sharedDir", ""},
                   {"passwd", "*"},
                   {"home", "/home/" + name},
                   {"shell", "/bin/sh"}});
    }
    if (!store.commit().isOk()) {
        throw std::runtime_error(store.status().text());
    }
}
