#pragma once

#include <optional>
#include <string>
#include <vector>

namespace accesscheck {

/// What somebody may do in a share's own folder. Files and deeper folders have their own owners and modes,
/// so this covers only what the share and its folder allow.
struct Permissions {
    bool connect = false;
    bool list = false;
    bool read = false;   ///< open a file of the folder that everyone may read
    bool write = false;  ///< change a file of the folder that everyone may write
    bool create = false; ///< make a file in the folder
    bool remove = false; ///< delete somebody else's file from the folder
    [[nodiscard]] bool operator==(const Permissions&) const = default;
};

/// The first thing that prevents some kind of access.
struct Reason {
    std::string code;   ///< the kind of reason, for programs: "read-only-share"
    std::string text;   ///< one sentence
    std::string where;  ///< the section with its line, the account or the folder
    std::string remedy; ///< the button or command that changes it; empty when there is none
};

struct Answer {
    std::string share;
    std::optional<std::string> user; ///< none for the guest
    Permissions may;
    std::optional<Reason> reason;   ///< none when everything is allowed
    std::vector<std::string> notes; ///< sentences about settings that were not taken into account
};

} // namespace accesscheck
