#pragma once

#include "platform/foundation/Services.h"
#include "platform/posix/Status.h"
#include "platform/posix/TemporaryFolder.h"
#include "platform/security/AuthorizationTypes.h"
#include "review/FolderForecasts.h"
#include "tools/DirectorySession.h"

#include <memory>
#include <span>
#include <string>

namespace review {

/// Copies of everything that a tool run can change, in a scratch folder that is removed with this object: the
/// directory, the two settings files, the temporary files in the home folder, and the user defaults. Folders
/// are not copied; what runs would change about them is remembered (FolderForecasts). Runs are carried out on
/// the copies by the tools' own code. Processes are not signalled; passwords are only checked.
class WorkingCopy : public std::enable_shared_from_this<WorkingCopy> {
  public:
    /// Copies what the current host reads. Fails when the directory cannot be read or there is no room. A
    /// directory that does not exist does not exist in the copy either. `*lacksDirectory` (unless null)
    /// receives whether the failure was that the directory cannot be read.
    [[nodiscard]] static platform::Result<std::shared_ptr<WorkingCopy>> make(bool* lacksDirectory = nullptr);
    /// The same without the directory, for actions that do not touch it.
    [[nodiscard]] static platform::Result<std::shared_ptr<WorkingCopy>> makeWithoutDirectory();
    /// The same with the file of a directory that cannot be read, so that the copy cannot be read either.
    /// Fails when the copy can, because then the original was only in use.
    [[nodiscard]] static platform::Result<std::shared_ptr<WorkingCopy>>
    makeWithUnreadableDirectory(const platform::Status& why);
    ~WorkingCopy() = default;
    WorkingCopy(const WorkingCopy&) = delete;
    WorkingCopy& operator=(const WorkingCopy&) = delete;

    /// The services of the host that was copied, using the copies. The authority, the log and the presenter
    /// are left out.
    [[nodiscard]] platform::Services services();

    /// Carries a run out on the copies. Returns what the tool would write to its standard output.
    [[nodiscard]] std::string run(const std::string& tool, std::span<const std::string> arguments);
    /// The same with the interface of platform::Authority::execute.
    [[nodiscard]] OSStatus execute(const std::string& tool, std::span<const std::string> arguments,
                                   std::string* output);

    [[nodiscard]] std::string storeFile() const;

    /// The path of the copy of one of the two settings files; it need not exist.
    [[nodiscard]] std::string settingsFile(const std::string& path) const { return folder_.path() + path; }

    /// Copies the history, if there is one. `*copy` receives the path of the copy, where a new one will be
    /// begun otherwise; it is empty when the original host keeps none.
    [[nodiscard]] platform::Status copyHistory(std::string* copy) const;

    /// Lets runs of dscl fail when those in the embedded root at that folder would, because something is
    /// missing there or not installed.
    void checkPasswordsOf(const std::string& root) { passwordRoot_ = root; }

    [[nodiscard]] const FolderForecasts& folders() const { return *folders_; }

    /// Commits the changes of consecutive runs of nicl, which are one transaction, so that readers of
    /// storeFile() see them. A failure undoes them and is logged.
    void settle();
    /// Undoes them instead.
    void takeBack();

  private:
    explicit WorkingCopy(platform::TemporaryFolder folder);

    [[nodiscard]] platform::Status fill();
    /// Whether the original host is the system host, where the runs are root's.
    [[nodiscard]] bool changesComputer() const;
    [[nodiscard]] std::string copySettings(std::span<const std::string> arguments);

    platform::TemporaryFolder folder_;
    std::string passwordRoot_; ///< empty: dscl only checks its request and the user
    platform::Services original_;
    std::shared_ptr<FolderForecasts> folders_;
    std::unique_ptr<tools::DirectorySession> session_; ///< the runs since settle()
};

} // namespace review
