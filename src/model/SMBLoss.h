#pragma once

#include <cstddef>

/// What rewriting the whole file loses or spoils in a file that was written by hand.
enum class SMBLoss {
    Continuation, ///< a line ended by a backslash, live or in the commented-out "homes": it stays, and would
                  ///< swallow the line that is written after it
    NoValue,      ///< a section's line without a key or a value, or cut at the reader's end mark: lost
    BrokenHeader, ///< a line begins with "[" and is no header: what follows counts to the section before it;
                  ///< or it goes on after a "]", where its name is cut
    OutsideSection, ///< a line that stands in no section: lost
    ByteOrderMark ///< the first line begins with a byte order mark, which makes it no header and no comment,
                  ///< for the SMB server as well: lost
};

/// A line of the file that a write would not keep as it is. Lines are numbered from 1.
struct SMBLossNotice {
    std::size_t line = 0;
    SMBLoss loss = SMBLoss::NoValue;
    [[nodiscard]] bool operator==(const SMBLossNotice&) const = default;
};

struct SMBConflict; // model/SMBInPlace.h
