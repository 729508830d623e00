#pragma once

#include "model/NormalShare.h"
#include "model/SMBConf.h"
#include "platform/samba/SambaPaths.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace accesscheck {

/// One thing that is wrong, or may be.
struct Finding {
    enum class Level {
        Problem, ///< somebody cannot use what they should, or can use what they should not
        Notice   ///< unusual, but possibly intended
    };

    Level level = Level::Problem;
    std::string code;   ///< the kind of finding, for programs: "folder-gone"
    std::string text;   ///< one sentence
    std::string where;  ///< the section, the record, the account, or the file with its line
    std::string remedy; ///< the command that mends it, or what to do; empty when there is nothing to do
    std::optional<std::string> share = std::nullopt; ///< the share concerned, as the window names it
    std::optional<std::string> user = std::nullopt;  ///< the user concerned
};

struct Examination {
    std::vector<Finding> findings;  ///< in the order of the examination: shares first
    std::vector<std::string> notes; ///< sentences about what could not be examined
    [[nodiscard]] bool hasProblems() const;
};

/// What the examination has to know of the current host, whose computer it examines.
struct ExaminedHost {
    std::optional<platform::SambaPaths> root; ///< an embedded root's server; none for this computer's
    std::string commandPrefix;                ///< what suggested commands begin with: "brindle --system"
};

/// Looks for faults in the shares, the accounts, the SMB server's settings, the servers and the permissions
/// of Brindle's own files. Only reads.
[[nodiscard]] Examination examine(const ExaminedHost& host);

/// Looks for faults in shares that the caller has already read. It reads neither the directory nor smb.conf,
/// so it waits for nothing; it only looks at the folders.
[[nodiscard]] std::vector<Finding> examineShares(const ExaminedHost& host, const SMBConf& conf,
                                                 std::span<const NormalShare> shares);

} // namespace accesscheck
