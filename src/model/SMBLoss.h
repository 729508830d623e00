#pragma once

#include <cstddef>

/// What rewriting the whole file loses or spoils in a file that was written by hand.
enum class SMBLoss {
    /// A line that ends with a backslash, in a section or in the commented-out "homes". It is kept, and would
    /// swallow the line that is written after it.
    Continuation,
    /// A section's line that has no key or no value, or that the reader's end mark cuts short. It is lost.
    NoValue,
    /// A line that begins with "[" but is no header, so the lines after it count as part of the section
    /// before. Or a header whose name contains a "]": the name is cut there.
    BrokenHeader,
    /// A line outside any section. It is lost.
    OutsideSection,
    /// The first line begins with a byte order mark, so that neither this program nor the SMB server takes
    /// it for a header or a comment. It is lost.
    ByteOrderMark
};

/// A line of the file that a write would not keep as it is. Lines are numbered from 1.
struct SMBLossNotice {
    std::size_t line = 0;
    SMBLoss loss = SMBLoss::NoValue;
    [[nodiscard]] bool operator==(const SMBLossNotice&) const = default;
};
