#pragma once

#include "model/SMBChanges.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

// Changes smb.conf the way a person would edit it by hand: only the lines of what was changed are touched,
// and all other bytes (comments, indentation, continued lines, order) stay.

/// A setting that somebody else has changed in the file since it was read, and that is being changed here
/// too.
struct SMBConflict {
    std::string section;
    std::string key; ///< empty for the section itself
    std::string read;
    std::string inFile; ///< empty when it has been removed; the name for a section that has been added
    std::string written;
    [[nodiscard]] bool operator==(const SMBConflict&) const = default;
};

struct SMBInPlaceText {
    std::string text;
    std::vector<SMBConflict> conflicts; ///< `text` has our value in all of them
};

/// `text`, the file as it is on disk now, with the changes applied.
[[nodiscard]] SMBInPlaceText textWithChanges(std::string_view text, std::span<const SMBChange> changes);
