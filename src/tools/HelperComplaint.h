#pragma once

#include <string>

/// Why a tool of the helper could not do what it was asked: one line, with its line break. Empty where it
/// did.
using HelperComplaint = std::string;

/// "TOOL: SUBJECT: WHY\n". Line breaks in the subject are shown as "?", so that it stays one line.
[[nodiscard]] HelperComplaint complaint(const std::string& tool, const std::string& subject,
                                        const std::string& why);

/// The system's text for `error` (an errno) and what the user can do about it.
[[nodiscard]] std::string reason(int error);
