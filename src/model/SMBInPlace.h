#pragma once

#include "model/SMBConf.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Changes smb.conf the way a person would edit it by hand: only the lines of what was changed are touched,
// and all other bytes (comments, indentation, continued lines, order) stay.

/// One difference between the file as it was read and the model as it is now. Occurrences count from 0:
/// sections with the same name, and parameters with the same key in a section.
struct SMBChange {
    enum class Kind {
        AddSection,     ///< `value` is its whole text
        RemoveSection,  ///< also its parameters and the comments right below them
        EnableSection,  ///< a commented-out section becomes active
        DisableSection, ///< an active section is commented out
        SetValue,
        AddPair,
        RemovePair
    };

    Kind kind = Kind::SetValue;
    std::string section;
    std::size_t sectionOccurrence = 0;
    std::string key;
    std::size_t occurrence = 0;
    std::string value;
    std::string before;   ///< for SetValue and RemovePair: the value that was read
    bool atFront = false; ///< for AddSection: before all other sections
    /// For a change within a section: the text of the whole section, for a file that has lost it.
    std::string whole;
    [[nodiscard]] bool operator==(const SMBChange&) const = default;
};

/// The changes that lead from the entries `read` to `now`: first those of entries in `now`, in order, then
/// removals. Comment blocks are not compared, because the application does not change them.
[[nodiscard]] std::vector<SMBChange> changesBetween(const SMBConf::EntryList& read,
                                                    const SMBConf::EntryList& now);

/// A setting that somebody else has changed in the file since it was read, and that is being changed here
/// too.
struct SMBConflict {
    std::string section;
    std::string key; ///< empty for the section itself
    std::string read;
    std::string inFile; ///< empty when it has been removed
    std::string written;
    [[nodiscard]] bool operator==(const SMBConflict&) const = default;
};

struct SMBInPlaceText {
    std::string text;
    std::vector<SMBConflict> conflicts; ///< `text` has our value in all of them
};

/// `text`, the file as it is on disk now, with the changes applied.
[[nodiscard]] SMBInPlaceText textWithChanges(std::string_view text, std::span<const SMBChange> changes);
