#pragma once

#include "SMBShare.h"

#include <memory>
#include <string>
#include <utility>
#include <string_view>
#include <vector>

/// The model of smb.conf: its entries in order, of which "global" and "homes" are singled out. Read once, when it is made;
/// from then on the model is the authority, and every change reaches the disk by a write of the whole file. It owns
/// its entries, which keep their addresses for as long as they are in the list.
class SMBConf {
  public:
    using EntryList = std::vector<std::unique_ptr<SMBShare>>;

    /// Reads and parses /etc/smb.conf. A missing file is an empty model. A file that exists and cannot be read is
    /// logged and leaves an empty model that refuses to be written.
    SMBConf();
    explicit SMBConf(std::string path);

    [[nodiscard]] const std::string& Path() const { return _path; }

    void setPath(std::string path) { _path = std::move(path); }

    [[nodiscard]] const EntryList& Entries() const { return _entries; }

    void setEntries(EntryList entries) { _entries = std::move(entries); }

    /// The last section named exactly "global", or null.
    [[nodiscard]] SMBShare* Global() const { return _global; }

    /// The last section or commented-out section named exactly "homes", or null.
    [[nodiscard]] SMBShare* Homes() const { return _homes; }

    /// Puts the entry at the front of the file and makes it Global() or Homes().
    void setGlobal(std::unique_ptr<SMBShare> entry);
    void setHomes(std::unique_ptr<SMBShare> entry);

    // Tests of one line, leading white space already gone.
    [[nodiscard]] static bool isCommentGroup(std::string_view line);
    [[nodiscard]] static bool isComment(std::string_view line);
    [[nodiscard]] static bool isGroup(std::string_view line);

    /// The file's text as the model has it now.
    [[nodiscard]] std::string writtenText() const;

    /// Writes the whole model: to ~/smb_test.conf, then over the file by an administrator's copy. Answers 0; 1 when the
    /// copy failed or was refused (the temporary file stays); 2 when the temporary file could not be written, or the
    /// file could not be read at the start; 3 when the temporary file could not be removed. The model stays as it is.
    [[nodiscard]] int writeSMBConfFile() const;

    /// Creates, updates or removes the section of a share, then writes the file. Answers the write's result, 0 when
    /// there was nothing to write. The change stays in the model when the write fails.
    int modifySMBShare(const std::string& shareName, const std::string& withDirectory, std::int32_t sharingSMB,
                       std::int32_t inherit, std::int32_t guestAccess);

    /// For the log.
    [[nodiscard]] std::string description() const;

  private:
    void parseSMBConfFile();

    std::string _path;
    EntryList _entries;
    SMBShare* _global = nullptr;
    SMBShare* _homes = nullptr;
    bool _unreadable = false;
};
