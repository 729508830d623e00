#pragma once

#include <optional>
#include <string>
#include <vector>

namespace accesscheck {

/// What somebody may do in a share's own folder. What stands deeper has owners and modes of its own, and so
/// have the files in it: these say what the share and its folder allow.
struct Permissions {
    bool connect = false;
    bool list = false;
    bool read = false;   ///< open a file of the folder that everyone may read
    bool write = false;  ///< change a file of the folder that everyone may write
    bool create = false; ///< make a file in the folder
    bool remove = false; ///< delete somebody else's file from the folder
    [[nodiscard]] bool operator==(const Permissions&) const = default;
};

/// The first thing on the way that keeps somebody from something.
struct Reason {
    std::string code;   ///< what kind of thing, for programs: "read-only-share"
    std::string text;   ///< one sentence
    std::string where;  ///< the section with its line, the account or the folder
    std::string remedy; ///< the button or the command that changes it; empty where there is none
};

struct Answer {
    std::string share;
    std::optional<std::string> user; ///< none: the guest
    Permissions may;
    std::optional<Reason> reason;   ///< none where everything is allowed
    std::vector<std::string> notes; ///< sentences about what was not judged
};

} // namespace accesscheck
