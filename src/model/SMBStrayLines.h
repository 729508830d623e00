#pragma once

#include "model/SMBLines.h"
#include "model/TextEdits.h"

#include <map>
#include <string_view>

/// What happens to a section.
enum class SMBFate { Enabled, Disabled, Removed };

/// Sections that have no fate stay as they are.
using SMBFates = std::map<const SMBSectionLines*, SMBFate>;

/// Lines that follow a commented-out section without a comment mark are in no section of the model. The
/// server takes them for lines of the active section above: what happens to that section happens to them, and
/// they do not fall to a section that is enabled between.
void keepStrayLines(std::string_view text, const SMBLines& lines, const SMBFates& fates,
                    std::string_view lineBreak, TextEdits& edits);
