#pragma once

#include "model/SMBConf.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Writing smb.conf as a person would who edits it by hand: only the lines of what was changed are touched,
// and all other bytes (comments, indentation, continued lines, order) stay.

/// One change between the file as it was read and the model as it is now. `occurrence` counts, from 0, the
/// sections of the same name, and the parameters of the same key in a section.
struct SMBChange {
    enum class Kind {
        AddSection,     ///< `value` is its whole text
        RemoveSection,  ///< with its parameters and the comments right below them
        EnableSection,  ///< a commented-out section comes to life
        DisableSection, ///< a section is commented out
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
    std::string before;   ///< the value that was read, of SetValue and RemovePair
    bool atFront = false; ///< of AddSection: before all other lines
    std::string whole;    ///< of a change within a section: that as it is now, for a file that has lost it
    [[nodiscard]] bool operator==(const SMBChange&) const = default;
};

/// What leads from the entries `read` to `now`: first what is in `now`, in its order, then what is gone.
/// Comment blocks are not compared: the application changes none.
[[nodiscard]] std::vector<SMBChange> changesBetween(const SMBConf::EntryList& read,
                                                    const SMBConf::EntryList& now);

/// A setting that somebody else changed in the file since it was read, and that is being changed too.
struct SMBConflict {
    std::string section;
    std::string key; ///< empty when the section itself is meant
    std::string read;
    std::string inFile; ///< empty when it is gone
    std::string written;
    [[nodiscard]] bool operator==(const SMBConflict&) const = default;
};

struct SMBInPlaceText {
    std::string text;
    std::vector<SMBConflict> conflicts; ///< the written text has our side of them
};

/// `text`, the file as it is on disk now, with the changes made to it.
[[nodiscard]] SMBInPlaceText textWithChanges(std::string_view text, std::span<const SMBChange> changes);
