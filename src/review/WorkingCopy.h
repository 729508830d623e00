#pragma once

#include "platform/foundation/Services.h"
#include "platform/posix/Status.h"
#include "platform/security/AuthorizationTypes.h"
#include "review/FolderForecasts.h"
#include "tools/DirectorySession.h"

#include <memory>
#include <span>
#include <string>

namespace review {

/// Copies of all that a tool run can change, in a scratch folder that goes with this object: the directory,
/// the two settings files, the temporary files in the home folder, the user defaults. Folders are not copied;
/// what runs would make of them is remembered (FolderForecasts). Runs are carried out on the copies by the
/// tools' own code; processes are not signalled and passwords are checked and go nowhere.
class WorkingCopy : public std::enable_shared_from_this<WorkingCopy> {
  public:
    /// Copies what the current host reads. Fails when the directory cannot be read or there is no room; a
    /// directory that does not exist is copied as such.
    /// `*lacksDirectory`, when not null, tells whether it was the directory that failed it.
    [[nodiscard]] static platform::Result<std::shared_ptr<WorkingCopy>> make(bool* lacksDirectory = nullptr);
    /// The same without the directory, for what does not touch it: there is none in the copy.
    [[nodiscard]] static platform::Result<std::shared_ptr<WorkingCopy>> makeWithoutDirectory();
    ~WorkingCopy();
    WorkingCopy(const WorkingCopy&) = delete;
    WorkingCopy& operator=(const WorkingCopy&) = delete;

    /// The current host's services with the copies in place of what they are copies of. The authority is left
    /// out, and so are the log and the presenter.
    [[nodiscard]] platform::Services services();

    /// Carries a run out on the copies. Returns what the tool would write to its standard output.
    [[nodiscard]] std::string run(const std::string& tool, std::span<const std::string> arguments);
    /// The same as an authority does it: see platform::Authority::execute.
    [[nodiscard]] OSStatus execute(const std::string& tool, std::span<const std::string> arguments,
                                   std::string* output);

    [[nodiscard]] std::string storeFile() const;

    /// The copy of one of the two settings files, which need not exist.
    [[nodiscard]] std::string settingsFile(const std::string& path) const { return folder_ + path; }

    [[nodiscard]] const FolderForecasts& folders() const { return *folders_; }

    /// Makes what runs of nicl have changed visible to readers of storeFile(): those that follow one another
    /// are one transaction. A failure takes them back, and is logged.
    void settle();
    /// Takes it back instead.
    void takeBack();

  private:
    WorkingCopy() = default;

    [[nodiscard]] platform::Status fill();
    /// Whether the runs are an administrator's, on the computer itself.
    [[nodiscard]] bool changesComputer() const;
    [[nodiscard]] std::string copySettings(std::span<const std::string> arguments);

    std::string folder_;
    platform::Services original_;
    std::shared_ptr<FolderForecasts> folders_;
    std::unique_ptr<DirectorySession> session_; ///< of the runs since the last settling
};

/// Makes a folder for files that go again: in memory rather than on a disk, where there is such a place.
/// Empty, with errno set, when it cannot be made.
[[nodiscard]] std::string makeScratchFolder();

} // namespace review
