#pragma once

#include "model/SMBConf.h"

#include <string>

// What is said of a section that only the SMB server sees.

namespace accesscheck {

/// The share's name for the server; empty when the line does not show it, because the header is continued in
/// the next one.
[[nodiscard]] std::string nameOf(const SMBHiddenSection& section);
[[nodiscard]] std::string sentenceAbout(const SMBHiddenSection& section);
/// The command that makes the header in `file` one that Brindle sees too; empty when there is none.
[[nodiscard]] std::string remedyFor(const SMBHiddenSection& section, const std::string& file, bool isOfRoot);

} // namespace accesscheck
