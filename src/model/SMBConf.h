#pragma once

#include "model/SMBLoss.h"
#include "model/SMBShare.h"
#include "platform/posix/Status.h"

#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The model of smb.conf: its entries in order, of which "global" and "homes" are singled out. Read once,
/// when it is made; from then on the model is the authority, and every change reaches the disk by a write of
/// the whole file. It owns its entries, which keep their addresses for as long as they are in the list.
class SMBConf {
  public:
    using EntryList = std::vector<std::unique_ptr<SMBShare>>;

    /// Reads and parses /etc/smb.conf. A missing file is an empty model. A file that exists and cannot be
    /// read is logged and leaves an empty model that refuses to be written.
    SMBConf();
    explicit SMBConf(std::string path);
    SMBConf(const SMBConf&) = delete;
    SMBConf& operator=(const SMBConf&) = delete;

    /// The model of a file that holds `text`.
    [[nodiscard]] static std::unique_ptr<SMBConf> ofText(std::string text);

    /// A model of its own in the same state. The file is not read again.
    [[nodiscard]] std::unique_ptr<SMBConf> copy() const;

    [[nodiscard]] const std::string& Path() const { return _path; }

    /// Part of the model's public operations; nothing here calls it.
    void setPath(std::string path) { _path = std::move(path); }

    [[nodiscard]] const EntryList& Entries() const { return _entries; }

    /// Global() and Homes() are none afterwards. Part of the model's public operations; nothing here calls
    /// it.
    void setEntries(EntryList entries);

    /// The last section named exactly "global", or null.
    [[nodiscard]] SMBShare* Global() const { return _global; }

    /// The last section or commented-out section named exactly "homes", or null.
    [[nodiscard]] SMBShare* Homes() const { return _homes; }

    /// Puts the entry at the front of the file and makes it Global() or Homes().
    void setGlobal(std::unique_ptr<SMBShare> entry);
    void setHomes(std::unique_ptr<SMBShare> entry);

    /// What a write would lose, in the file's order; found when the file was read. Empty once it was written,
    /// and on a host that keeps the layout.
    [[nodiscard]] const std::vector<SMBLossNotice>& lossNotices() const { return lossNotices_; }

    /// Why a file that exists could not be read; empty when it was read, or is missing.
    [[nodiscard]] const std::string& unreadableReason() const { return unreadableReason_; }

    /// The file as this model read or wrote it last, empty for a missing one: what is on disk now unless
    /// somebody else changed it.
    [[nodiscard]] const std::string& textOnDisk() const { return hasWritten_ ? textOnDisk_ : bytes_; }

    // Part of the model's public operations: the parser's tests of one line, leading white space already
    // gone.
    [[nodiscard]] static bool isCommentGroup(std::string_view line);
    [[nodiscard]] static bool isComment(std::string_view line);
    [[nodiscard]] static bool isGroup(std::string_view line);

    /// The file's text as the model has it now.
    [[nodiscard]] std::string writtenText() const;

    /// The text that a write puts in place: the whole model's, or, on a host that keeps the layout of
    /// settings files, the file as it is on disk now with only those lines changed that the model changes.
    /// There it fails when the file exists and cannot be read. `*conflicts`, when not null, gets the settings
    /// that somebody else changed in the file, too.
    [[nodiscard]] platform::Result<std::string>
    textToWrite(std::vector<SMBConflict>* conflicts = nullptr) const;

    /// Writes textToWrite(): to ~/smb_test.conf, then over the file by an administrator's copy. Returns 0;
    /// 1 when the copy failed or was refused (the temporary file stays); 2 when the temporary file could not
    /// be written, or the file could not be read (at the start, or where its layout is kept); 3 when the
    /// temporary file could not be removed. The entries stay as they are; lossNotices() is empty once the
    /// file was replaced.
    [[nodiscard]] int writeSMBConfFile();

    /// Creates, updates or removes the section of a share, then writes the file. Returns the write's result,
    /// 0 when there was nothing to write. The change stays in the model when the write fails. The share is
    /// the first section of exactly that name. `sharingSMB` 0 removes it (Global() or Homes() goes with it);
    /// another value updates its two flags, and only 1 makes a new section, at the end. A flag is on for 1
    /// and off for any other value.
    int modifySMBShare(const std::string& shareName, const std::string& withDirectory,
                       std::int32_t sharingSMB, std::int32_t inherit, std::int32_t guestAccess);

    /// For the log. Part of the model's public operations; nothing here calls it.
    [[nodiscard]] std::string description() const;

  private:
    void parseSMBConfFile();
    void parse();
    void rememberEntries();
    [[nodiscard]] std::size_t indexOfSection(std::string_view name) const;

    std::string _path;

    struct Unread {};

    explicit SMBConf(Unread /*tag*/) {}

    std::string bytes_;      ///< the file as it was read; the entries' parameters are views of it
    std::string textOnDisk_; ///< the file as it was written last
    bool hasWritten_ = false;
    /// The lists of parameters that were read: one block for a whole file, freed with the model.
    std::unique_ptr<std::pmr::memory_resource> memory_;
    EntryList _entries;
    /// The entries as they were last read or written, on a host that keeps the layout: from these the changes
    /// are told.
    EntryList known_;
    SMBShare* _global = nullptr;
    SMBShare* _homes = nullptr;
    std::vector<SMBLossNotice> lossNotices_;
    std::string unreadableReason_;
};
