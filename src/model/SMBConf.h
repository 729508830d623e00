#pragma once

#include "model/SMBLoss.h"
#include "model/SMBShare.h"
#include "platform/posix/Status.h"

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct SMBConflict; // model/SMBInPlace.h

/// A section that the SMB server sees and this model does not, because something follows its header's "]".
struct SMBHiddenSection {
    std::size_t line = 0; ///< the header's, from 1
    std::string header;   ///< the line as it is, without the white space around it
    /// The section whose settings the lines below the header are in the model; empty if they are in none.
    std::string above;
    [[nodiscard]] bool operator==(const SMBHiddenSection&) const = default;
};

/// The model of smb.conf: its entries in order, with quick access to "global" and "homes". The file is read
/// once, when the model is made; from then on the model is authoritative, and every change is written to disk
/// at once. It owns its entries, which keep their addresses as long as they are in the list.
class SMBConf {
  public:
    /// Reads and parses /etc/smb.conf. A missing file gives an empty model. A file that exists but cannot be
    /// read is logged, and gives an empty model that refuses to be written.
    SMBConf();
    explicit SMBConf(std::string path);
    SMBConf(const SMBConf&) = delete;
    SMBConf& operator=(const SMBConf&) = delete;

    /// The model of a file with this text.
    [[nodiscard]] static std::unique_ptr<SMBConf> ofText(std::string text);

    /// An independent copy. The file is not read again.
    [[nodiscard]] std::unique_ptr<SMBConf> copy() const;

    [[nodiscard]] const std::string& Path() const { return _path; }

    /// Part of the model's public operations; nothing here calls it.
    void setPath(std::string path) { _path = std::move(path); }

    [[nodiscard]] const SMBEntries& Entries() const { return _entries; }

    /// Global() and Homes() are null afterwards. Part of the model's public operations; nothing here calls
    /// it.
    void setEntries(SMBEntries entries);

    /// The last section named exactly "global", or null.
    [[nodiscard]] SMBShare* Global() const { return _global; }

    /// The last section or commented-out section named exactly "homes", or null.
    [[nodiscard]] SMBShare* Homes() const { return _homes; }

    /// The first section of exactly that name, which is the share's; null when there is none.
    [[nodiscard]] const SMBShare* section(std::string_view name) const;

    /// Inserts the entry at the front of the file and makes it Global() or Homes().
    void setGlobal(std::unique_ptr<SMBShare> entry);
    void setHomes(std::unique_ptr<SMBShare> entry);

    /// What a write would lose, in the file's order; found when the file was read. Empty after a write, and
    /// on a host that keeps the layout.
    [[nodiscard]] const std::vector<SMBLossNotice>& lossNotices() const { return lossNotices_; }

    /// Those of the file as this model last read or wrote it.
    [[nodiscard]] std::vector<SMBHiddenSection> hiddenSections() const;

    /// Why an existing file could not be read; empty when it was read or is missing.
    [[nodiscard]] const std::string& unreadableReason() const { return unreadableReason_; }

    /// The file's text as this model last read or wrote it, empty for a missing file. It is still on disk
    /// unless somebody else has changed the file.
    [[nodiscard]] const std::string& textOnDisk() const { return hasWritten_ ? textOnDisk_ : bytes_; }

    // Part of the model's public operations: the parser's tests of one line without leading white space.
    [[nodiscard]] static bool isCommentGroup(std::string_view line);
    [[nodiscard]] static bool isComment(std::string_view line);
    [[nodiscard]] static bool isGroup(std::string_view line);

    /// The text of the file that the model describes.
    [[nodiscard]] std::string writtenText() const;

    /// The text that a write would write: writtenText(), or, on a host that keeps the layout of settings
    /// files, the text that is on disk now, with only the lines changed that the model changes. On such a
    /// host it fails when the file exists but cannot be read. `*conflicts` (unless null) receives the
    /// settings that somebody else has also changed in the file.
    [[nodiscard]] platform::Result<std::string>
    textToWrite(std::vector<SMBConflict>* conflicts = nullptr) const;

    /// Writes textToWrite() to ~/smb_test.conf and has NiutilTask::cp copy that over the file. Returns 0 on
    /// success; 1 when the copy failed or was refused (the temporary file stays); 2 when the temporary file
    /// could not be written, or the file could not be read (at the start, or now if its layout is kept); 3
    /// when the temporary file could not be removed. The entries do not change; lossNotices() is empty once
    /// the file has been replaced.
    [[nodiscard]] int writeSMBConfFile();

    /// Creates, updates or removes the section of a share, then writes the file. Returns the result of
    /// writeSMBConfFile(), or 0 when there was nothing to write. The change stays in the model when the write
    /// fails. The share's section is the first with exactly that name. A `sharingSMB` of 0 removes it
    /// (Global() or Homes() becomes null if that was the section); any other value updates its two flags, and
    /// 1 makes a new section at the end if there is none. A flag is on for 1 and off for any other value.
    int modifySMBShare(const std::string& shareName, const std::string& withDirectory,
                       std::int32_t sharingSMB, std::int32_t inherit, std::int32_t guestAccess);

    /// For the log. Part of the model's public operations; nothing here calls it.
    [[nodiscard]] std::string description() const;

  private:
    struct Unread {};

    explicit SMBConf(Unread /*tag*/) {}

    void parseSMBConfFile();
    void parse();
    void rememberEntries();
    [[nodiscard]] std::size_t indexOfSection(std::string_view name) const;

    std::string _path;
    std::string bytes_; ///< the file as it was read; the entries' parameters and comments are views into it
    std::string textOnDisk_; ///< the file as it was last written
    bool hasWritten_ = false;
    /// Memory for the lists of parameters that were read: one block for the whole file, freed with the model.
    std::unique_ptr<std::pmr::memory_resource> memory_;
    SMBEntries _entries;
    /// The entries as they were last read or written, on a host that keeps the layout. The changes to write
    /// are found by comparing with these.
    SMBEntries known_;
    SMBShare* _global = nullptr;
    SMBShare* _homes = nullptr;
    std::vector<SMBLossNotice> lossNotices_;
    bool hasBrokenHeader_ =
        false; ///< in the file as it was last read or written; without one no section is hidden
    std::string unreadableReason_;
};
