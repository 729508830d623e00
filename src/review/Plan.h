#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace review {

/// An alert that the action would show, and the button that the plan presses.
struct PlannedAsk {
    std::string title;
    std::string message;
    std::string button;     ///< the title of the button that the plan presses
    bool isQuestion = true; ///< false: the alert only tells something, and has only that button
};

/// A tool run as the presenter is told of it, with "********" instead of a password.
struct PlannedRun {
    std::string tool;
    std::vector<std::string> arguments;
    std::string output; ///< what the tool would write; empty when it would succeed
};

/// A tool run as a line for a person to read.
[[nodiscard]] std::string runText(const std::string& tool, std::span<const std::string> arguments);

/// A line that is removed from a text or added to it.
struct LineChange {
    enum class Kind { Goes, Comes };

    Kind kind = Kind::Goes;
    std::string line;       ///< without its line break
    std::size_t number = 0; ///< its number, from 1, in the old text for Goes, in the new text for Comes
    [[nodiscard]] bool operator==(const LineChange&) const = default;
};

/// A changed key of the AFP settings. A missing value is empty.
struct SettingChange {
    std::string key; ///< a nested key as "loggingAttributes.logLogin"
    std::string before;
    std::string after;
    [[nodiscard]] bool operator==(const SettingChange&) const = default;
};

/// A folder's owner, group and mode (07777) before and after.
struct FolderChange {
    std::string path; ///< as given to the tool
    uid_t ownerBefore = 0;
    uid_t ownerAfter = 0;
    gid_t groupBefore = 0;
    gid_t groupAfter = 0;
    mode_t modeBefore = 0;
    mode_t modeAfter = 0;
    /// "OWNER:GROUP", as names if the ids have names.
    std::string accountsBefore;
    std::string accountsAfter;

    [[nodiscard]] bool changesAccounts() const {
        return ownerBefore != ownerAfter || groupBefore != groupAfter;
    }

    [[nodiscard]] bool changesMode() const { return modeBefore != modeAfter; }
};

/// A warning, or why an action cannot be done.
struct Remark {
    std::string_view code;    ///< a string literal like "lines-lost"
    std::string sentence;     ///< for the user, in the user's language
    std::string control = {}; ///< the outlet of the control whose content it is about, if any
};

/// What an action would do, found by performing it on copies.
struct Plan {
    std::string operation; ///< its full name: "createShare:"
    std::vector<PlannedAsk> asks;
    std::vector<PlannedRun> runs;
    std::string smbConfBefore; ///< the file on disk, and below what it would become
    std::string smbConfAfter;
    std::vector<LineChange> smbConfLines;
    std::string afpBefore; ///< the AFP server's settings file on disk
    std::vector<SettingChange> afpSettings;
    std::vector<FolderChange> folders;
    std::vector<Remark> warnings;
    std::vector<Remark> blocks;  ///< if not empty, the action cannot be carried out
    std::string failure;         ///< why there is no plan; empty when there is one
    bool lacksDirectory = false; ///< there is no plan because the directory cannot be read
};

/// The steps of a plan as sentences in the user's language, in order.
[[nodiscard]] std::vector<std::string> sentencesOf(const Plan& plan);

} // namespace review
