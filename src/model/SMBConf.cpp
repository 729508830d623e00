#include "model/SMBConf.h"

#include "model/LargeBlocks.h"
#include "model/SMBInPlace.h"
#include "model/SMBLines.h"
#include "model/SMBParser.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/SystemPaths.h"
#include "privileged/NiutilTask.h"

#include <algorithm>
#include <cerrno>

namespace {

// What writeSMBConfFile returns.
constexpr int written = 0;
constexpr int copyFailed = 1;
constexpr int notWritten = 2;
constexpr int notRemoved = 3;

const char* yesOrNo(std::int32_t flag) {
    return flag == 1 ? "Yes" : "No";
}

/// In a section without the flag it is off already, so a line is added only for "Yes".
void updateFlag(SMBShare& section, std::string_view key, std::int32_t flag) {
    if (flag == 1 || section.firstProp(key) != nullptr) {
        section.setProp(key, yesOrNo(flag));
    }
}

SMBEntries copyOf(const SMBEntries& entries) {
    SMBEntries copies;
    copies.reserve(entries.size());
    for (const auto& entry : entries) {
        copies.push_back(std::make_unique<SMBShare>(*entry));
    }
    return copies;
}

std::vector<SMBHiddenSection> sectionsOnlyForServer(std::string_view text) {
    const SMBLines lines(text);
    std::vector<SMBHiddenSection> found;
    for (std::size_t index = 0; index < lines.lines().size(); ++index) {
        if (lines.isOnlyServersHeader(index)) {
            const SMBSectionLines* above = lines.sectionOf(index);
            found.push_back({index + 1, std::string(lines.content(lines.lines()[index])),
                             above == nullptr ? std::string() : above->name});
        }
    }
    return found;
}

bool keepsLayout() {
    return platform::Host::current().services().keepsLayout;
}

} // namespace

SMBConf::SMBConf() : SMBConf(platform::systempath::smbConf) {}

SMBConf::SMBConf(std::string path) : _path(std::move(path)) {
    parseSMBConfFile();
}

void SMBConf::parseSMBConfFile() {
    auto contents = contentsOfFile(_path);
    if (!contents.isOk() && contents.status().systemError() != ENOENT) {
        // Writing the model would replace such a file with next to nothing.
        NSLog("The SMB configuration %@ cannot be read (%@) and will not be written.  Make it readable and "
              "start again.",
              _path, contents.status().why());
        unreadableReason_ = contents.status().why();
    }
    if (contents.isOk()) {
        bytes_ = std::move(*contents);
    }
    parse();
}

void SMBConf::parse() {
    memory_ = std::make_unique<std::pmr::monotonic_buffer_resource>(std::max<std::size_t>(bytes_.size(), 1),
                                                                    &LargeBlocks::instance());
    SMBParser parser(bytes_, memory_.get());
    parser.parse();
    _entries = std::move(parser.entries);
    _global = parser.global;
    _homes = parser.homes;
    hasBrokenHeader_ =
        std::ranges::count(parser.lossNotices, SMBLoss::BrokenHeader, &SMBLossNotice::loss) > 0;
    if (!keepsLayout()) {
        lossNotices_ = std::move(parser.lossNotices);
    }
    rememberEntries();
}

void SMBConf::rememberEntries() {
    if (keepsLayout()) {
        known_ = copyOf(_entries);
    }
}

bool SMBConf::isCommentGroup(std::string_view line) {
    return SMBParser::isCommentGroup(line);
}

bool SMBConf::isComment(std::string_view line) {
    return SMBParser::isComment(line);
}

bool SMBConf::isGroup(std::string_view line) {
    return SMBParser::isGroup(line);
}

std::unique_ptr<SMBConf> SMBConf::ofText(std::string text) {
    std::unique_ptr<SMBConf> made(new SMBConf(Unread())); // make_unique cannot call the private constructor
    made->bytes_ = std::move(text);
    made->parse();
    return made;
}

std::unique_ptr<SMBConf> SMBConf::copy() const {
    std::unique_ptr<SMBConf> made(new SMBConf(Unread()));
    made->_path = _path;
    made->bytes_ = bytes_;
    made->textOnDisk_ = textOnDisk_;
    made->hasWritten_ = hasWritten_;
    made->lossNotices_ = lossNotices_;
    made->hasBrokenHeader_ = hasBrokenHeader_;
    made->unreadableReason_ = unreadableReason_;
    made->known_ = copyOf(known_);
    made->_entries = copyOf(_entries);
    for (std::size_t index = 0; index < _entries.size(); ++index) {
        SMBShare* const copied = made->_entries[index].get();
        made->_global = _entries[index].get() == _global ? copied : made->_global;
        made->_homes = _entries[index].get() == _homes ? copied : made->_homes;
    }
    return made;
}

void SMBConf::setEntries(SMBEntries entries) {
    _global = nullptr;
    _homes = nullptr;
    _entries = std::move(entries);
}

void SMBConf::setGlobal(std::unique_ptr<SMBShare> entry) {
    _global = entry.get();
    _entries.insert(_entries.begin(), std::move(entry));
}

void SMBConf::setHomes(std::unique_ptr<SMBShare> entry) {
    _homes = entry.get();
    _entries.insert(_entries.begin(), std::move(entry));
}

std::string SMBConf::writtenText() const {
    std::string text;
    text.reserve(bytes_.size() + bytes_.size() / 4);
    for (const auto& entry : _entries) {
        if (entry->isOfKnownKind()) {
            entry->appendTo(text);
            text += "\n\n";
        }
    }
    return text;
}

std::vector<SMBHiddenSection> SMBConf::hiddenSections() const {
    return hasBrokenHeader_ ? sectionsOnlyForServer(textOnDisk()) : std::vector<SMBHiddenSection>();
}

platform::Result<std::string> SMBConf::textToWrite(std::vector<SMBConflict>* conflicts) const {
    if (!keepsLayout()) {
        return writtenText();
    }
    const auto onDisk = contentsOfFile(_path);
    if (!onDisk.isOk()) {
        // The part of the file that is kept has to be read; without it the file would be replaced with next
        // to nothing.
        return onDisk.status().systemError() == ENOENT ? platform::Result(writtenText()) : onDisk.status();
    }
    // The changes are found by comparing with the entries that this model knew, not with the file that it
    // wrote: that may hold what somebody else had added, which would count as removed here.
    SMBInPlaceText result = textWithChanges(*onDisk, changesBetween(known_, _entries));
    if (conflicts != nullptr) {
        *conflicts = std::move(result.conflicts);
    }
    return std::move(result.text);
}

int SMBConf::writeSMBConfFile() {
    if (!unreadableReason_.empty()) {
        logReason("The SMB configuration %@ was not written because it could not be read at the start.",
                  _path);
        return notWritten;
    }
    const std::string temporary = stringByExpandingTildeInPath(platform::systempath::temporarySmbConf);
    std::string text;
    const auto writeTemporary = [&] {
        auto now = textToWrite();
        if (!now.isOk()) {
            logReason("The SMB configuration %@ was not written: %@", _path, now.status().text());
            return false;
        }
        text = std::move(*now);
        // Readable only by its owner, as the configuration may be.
        const auto status = writeToFileAtomically(temporary, text, 0600);
        if (!status.isOk()) {
            logReason("%@ could not be written: %@", temporary, status.why());
        }
        return status.isOk();
    };
    if (!writeTemporary()) {
        return notWritten;
    }
    NiutilTask& task = NiutilTask::sharedInstance();
    if (keepsLayout() && !task.isAuthenticated()) {
        if (!task.authenticate()) {
            return copyFailed;
        }
        // While the user looked for the password, somebody else may have changed the file.
        if (!writeTemporary()) {
            if (const auto status = removeFileAtPath(temporary); !status.isOk()) {
                logReason("%@ could not be removed: %@", temporary, status.why());
            }
            return notWritten;
        }
    }
    if (!task.cp(temporary, _path)) {
        return copyFailed;
    }
    lossNotices_.clear();
    textOnDisk_ = std::move(text);
    hasBrokenHeader_ = !sectionsOnlyForServer(textOnDisk_).empty(); // somebody else may have added one
    hasWritten_ = true;
    rememberEntries();
    if (const auto status = removeFileAtPath(temporary); !status.isOk()) {
        logReason("%@ could not be removed: %@", temporary, status.why());
        return notRemoved;
    }
    return written;
}

std::size_t SMBConf::indexOfSection(std::string_view name) const {
    const auto found = std::find_if(_entries.begin(), _entries.end(), [&](const auto& entry) {
        return entry->Type() == SMBGroup && !entry->isUnnamed() && entry->ShareName() == name;
    });
    return static_cast<std::size_t>(found - _entries.begin());
}

const SMBShare* SMBConf::section(std::string_view name) const {
    const std::size_t index = indexOfSection(name);
    return index < _entries.size() ? _entries[index].get() : nullptr;
}

int SMBConf::modifySMBShare(const std::string& shareName, const std::string& withDirectory,
                            std::int32_t sharingSMB, std::int32_t inherit, std::int32_t guestAccess) {
    const std::size_t index = indexOfSection(shareName);
    const bool exists = index < _entries.size();
    if (exists && sharingSMB == 0) {
        const auto entry = _entries.begin() + static_cast<std::ptrdiff_t>(index);
        _global = entry->get() == _global ? nullptr : _global;
        _homes = entry->get() == _homes ? nullptr : _homes;
        _entries.erase(entry);
    } else if (exists) {
        updateFlag(*_entries[index], "inherit permissions", inherit);
        updateFlag(*_entries[index], "guest ok", guestAccess);
    } else if (sharingSMB == 1) {
        auto entry = std::make_unique<SMBShare>();
        entry->setType(SMBGroup);
        entry->setShareName(shareName);
        entry->setProps({{"path", withDirectory},
                         {"read only", "No"},
                         {"inherit permissions", yesOrNo(inherit)},
                         {"guest ok", yesOrNo(guestAccess)}});
        entry->setText(";Created by Brindle");
        _entries.push_back(std::move(entry));
    } else {
        return written;
    }
    return writeSMBConfFile();
}

std::string SMBConf::description() const {
    std::string entries = "(\n";
    for (const auto& entry : _entries) {
        entries += entry->description();
    }
    return stringWithFormat("Path: %@\n%@\n", _path, entries + ")");
}
