#pragma once

#include "model/NormalShare.h"
#include "model/SMBConf.h"
#include "platform/samba/SambaPaths.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace accesscheck {

/// What is wrong with one thing.
struct Finding {
    enum class Level {
        Problem, ///< somebody cannot use what they are meant to use, or may what they should not
        Notice   ///< so it is, and it may be meant to be so
    };

    Level level = Level::Problem;
    std::string code;   ///< what kind of thing, for programs: "folder-gone"
    std::string text;   ///< one sentence
    std::string where;  ///< the section, the record, the account, or the file with its line
    std::string remedy; ///< the command that mends it, or what to do; empty where there is nothing
    std::optional<std::string> share = std::nullopt; ///< the share that is concerned, as the window names it
    std::optional<std::string> user = std::nullopt;  ///< the user
};

struct Examination {
    std::vector<Finding> findings;  ///< in the order in which they are looked for: shares first
    std::vector<std::string> notes; ///< sentences about what could not be looked at
    [[nodiscard]] bool hasProblems() const;
};

/// The computer that is looked at is the current host's.
struct Patient {
    std::optional<platform::SambaPaths> root; ///< an embedded root's server; none: this computer's
    std::string brindle;                      ///< what the commands begin with: "brindle --system"
};

/// Looks for what is wrong with the shares, the accounts, the SMB server's settings, the servers and the
/// rights of Brindle's own files. Reads only.
[[nodiscard]] Examination examine(const Patient& patient);

/// What of it is wrong with shares, as somebody has read them: neither the directory nor smb.conf is read, so
/// that nothing is waited for. Only the folders are looked at.
[[nodiscard]] std::vector<Finding> examineShares(const Patient& patient, const SMBConf& conf,
                                                 std::span<const NormalShare> shares);

/// A word as the shell takes it: in quotes where it has to be.
[[nodiscard]] std::string shellWord(const std::string& word);

} // namespace accesscheck
