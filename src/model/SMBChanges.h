#pragma once

#include "model/SMBShare.h"

#include <cstddef>
#include <string>
#include <vector>

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
    /// For AddSection: how many active sections of that name were read.
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
[[nodiscard]] std::vector<SMBChange> changesBetween(const SMBEntries& read, const SMBEntries& now);
