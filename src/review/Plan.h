#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace review {

/// An alert on the way, and how the plan takes it.
struct PlannedAsk {
    std::string title;
    std::string message;
    std::string button;     ///< the title of the button that the plan presses
    bool isQuestion = true; ///< false: it only tells something, and has that button alone
};

/// A tool run as the presenter is told of it: a password is "********".
struct PlannedRun {
    std::string tool;
    std::vector<std::string> arguments;
    std::string output; ///< what the tool would write; empty where it would do what it is asked
};

/// A line of a text that goes or comes.
struct LineChange {
    enum class Kind { Goes, Comes };

    Kind kind = Kind::Goes;
    std::string line;       ///< without its line break
    std::size_t number = 0; ///< in the text that it goes from or comes to, from 1
    [[nodiscard]] bool operator==(const LineChange&) const = default;
};

/// A key of the AFP settings; an absent value is empty.
struct SettingChange {
    std::string key; ///< nested ones as "loggingAttributes.logLogin"
    std::string before;
    std::string after;
    [[nodiscard]] bool operator==(const SettingChange&) const = default;
};

/// A folder's owner, group and mode (07777) before and after. Both sides of one that stays are equal.
struct FolderChange {
    std::string path; ///< as the tool was given it
    uid_t ownerBefore = 0;
    uid_t ownerAfter = 0;
    gid_t groupBefore = 0;
    gid_t groupAfter = 0;
    mode_t modeBefore = 0;
    mode_t modeAfter = 0;
    /// "OWNER:GROUP", names where the ids have one.
    std::string accountsBefore;
    std::string accountsAfter;

    [[nodiscard]] bool changesAccounts() const {
        return ownerBefore != ownerAfter || groupBefore != groupAfter;
    }

    [[nodiscard]] bool changesMode() const { return modeBefore != modeAfter; }
};

/// A warning, or why an action cannot be done.
struct Remark {
    std::string_view code;    ///< a literal: "lines-lost"
    std::string sentence;     ///< for the user, in the user's language
    std::string control = {}; ///< the outlet of the control whose content it is about; empty: of none
};

/// What one action would do. Worked out on copies, so that it changes nothing.
struct Plan {
    std::string operation; ///< the full name, "createShare:"
    std::vector<PlannedAsk> asks;
    std::vector<PlannedRun> runs;
    std::string smbConfBefore; ///< the file as it is on disk, and as it would be
    std::string smbConfAfter;
    std::vector<LineChange> smbConfLines;
    std::vector<SettingChange> afpSettings;
    std::vector<FolderChange> folders;
    std::vector<Remark> warnings;
    std::vector<Remark> blocks;  ///< not empty: our own tools are bound to refuse it
    std::string failure;         ///< why there is no plan; empty where there is one
    bool lacksDirectory = false; ///< there is none because the directory cannot be read
};

/// The steps of a plan as sentences in the user's language, in their order.
[[nodiscard]] std::vector<std::string> sentencesOf(const Plan& plan);

} // namespace review
