#include "review/WorkingCopy.h"

#include "directory/DirectoryView.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/host/DirectoryAccounts.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/StoreCopy.h"
#include "platform/posix/WholeFile.h"
#include "tools/DirectoryTools.h"
#include "tools/Helper.h"
#include "tools/HelperComplaint.h"
#include "tools/SmbConfCheck.h"

#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <utility>

#include <unistd.h>

namespace review {

namespace {

namespace fs = std::filesystem;
using platform::Result;
using platform::Status;

constexpr std::array<const char*, 2> settingsFiles = {platform::systempath::smbConf,
                                                      platform::systempath::appleFileServer};
/// The files that an action writes in the home folder before they are copied over the settings files.
constexpr std::array temporaryFiles = {
    std::string_view(platform::systempath::temporarySmbConf).substr(1), // after "~"
    std::string_view(platform::systempath::temporaryAppleFileServer).substr(1)};
constexpr const char* storeName = "/directory.db";
constexpr const char* homeName = "/home";
constexpr const char* lockedHomeName = "/locked-home"; ///< may not be written to
constexpr const char* defaultsName = "/defaults.plist";
constexpr const char* historyName = "/history.db";
/// As long as an action would wait for the directory.
constexpr int waitSeconds = 30;

/// Maps the copied files to their copies, and every other path as the original does.
class CopiedPaths : public platform::Paths {
  public:
    CopiedPaths(const platform::Services& original, std::string folder)
        : original_(original.paths), history_(original.historyFile),
          store_(original.localDomain->storeFile()), folder_(std::move(folder)) {}

    [[nodiscard]] std::string map(const std::string& path) const override {
        for (const char* each : settingsFiles) {
            if (path == each) {
                return folder_ + path;
            }
        }
        const std::string home = original_->home();
        for (const std::string_view each : temporaryFiles) {
            if (path.size() == home.size() + each.size() && path.starts_with(home) && path.ends_with(each)) {
                return mapTemporary(home, each);
            }
        }
        return original_->map(path);
    }

    [[nodiscard]] std::string shown(const std::string& file) const override {
        for (const char* each : settingsFiles) {
            if (file == folder_ + each) {
                return original_->shown(original_->map(each));
            }
        }
        return original_->shown(file == folder_ + defaultsName  ? original_->defaultsFile()
                                : file == folder_ + historyName ? history_
                                : file == folder_ + storeName   ? store_
                                                                : file);
    }

    [[nodiscard]] std::string home() const override { return original_->home(); }

    [[nodiscard]] std::string defaultsFile() const override {
        return original_->defaultsFile().empty() ? std::string() : folder_ + defaultsName;
    }

    [[nodiscard]] std::string resources() const override { return original_->resources(); }

  private:
    /// If the home folder is not writable or missing, so is the folder of the copy, so that writing fails in
    /// the same way.
    [[nodiscard]] std::string mapTemporary(const std::string& home, std::string_view name) const {
        const bool isWritable = ::access(home.c_str(), W_OK | X_OK) == 0;
        const bool isMissing = !isWritable && errno == ENOENT;
        return folder_ +
               (isWritable  ? homeName
                : isMissing ? "/no-home"
                            : lockedHomeName) +
               std::string(name);
    }

    std::shared_ptr<platform::Paths> original_;
    std::string history_;
    std::string store_;
    std::string folder_;
};

/// Settles a working copy whenever the application is about to read the directory.
class CopyWrites : public platform::PendingWrites {
  public:
    explicit CopyWrites(std::shared_ptr<WorkingCopy> copy) : copy_(std::move(copy)) {}

    void settle() override { copy_->settle(); }

    void takeBack() override { copy_->takeBack(); }

    void endAction() override { copy_->settle(); }

  private:
    std::shared_ptr<WorkingCopy> copy_;
};

Status copyFileIfThere(const std::string& from, const std::string& to) {
    std::error_code error;
    fs::create_directories(fs::path(to).parent_path(), error);
    if (error) {
        return Status::failure("cannot make a folder for", to, error.message());
    }
    const auto contents = contentsOfFile(from);
    if (contents.isOk()) {
        return platform::writeWholeFile(to, *contents, {.mode = 0600});
    }
    // A file that cannot be read must not seem to be missing: the application would write it anew.
    if (contents.status().systemError() == EACCES) {
        return platform::writeWholeFile(to, "", {.mode = 0});
    }
    if (contents.status().systemError() != ENOENT) {
        fs::create_directory(to, error);
    }
    return error ? Status::failure("cannot make", to, error.message()) : Status();
}

} // namespace

WorkingCopy::WorkingCopy(platform::TemporaryFolder folder)
    : folder_(std::move(folder)), original_(platform::Host::current().services()),
      folders_(std::make_shared<FolderForecasts>(original_.folderForecast)) {}

Result<std::shared_ptr<WorkingCopy>> WorkingCopy::makeWithoutDirectory() {
    platform::Host::settlePendingWrites();
    auto folder = platform::TemporaryFolder::makeInMemory("plan");
    if (!folder.isOk()) {
        return folder.status();
    }
    // make_shared cannot call the private constructor
    std::shared_ptr<WorkingCopy> copy(new WorkingCopy(std::move(*folder)));
    Status status = copy->fill();
    return status.isOk() ? Result<std::shared_ptr<WorkingCopy>>(std::move(copy)) : status;
}

Result<std::shared_ptr<WorkingCopy>> WorkingCopy::make(bool* lacksDirectory) {
    auto copy = makeWithoutDirectory();
    if (!copy.isOk()) {
        return copy;
    }
    bool isUnreadable = false;
    Status status = platform::copyDirectory(*(*copy)->original_.localDomain, (*copy)->storeFile(),
                                            waitSeconds, &isUnreadable);
    if (lacksDirectory != nullptr) {
        *lacksDirectory = isUnreadable;
    }
    return status.isOk() ? std::move(copy) : status;
}

Result<std::shared_ptr<WorkingCopy>> WorkingCopy::makeWithUnreadableDirectory(const Status& why) {
    auto copy = makeWithoutDirectory();
    if (!copy.isOk()) {
        return copy;
    }
    Status status = copyFileIfThere((*copy)->original_.localDomain->storeFile(), (*copy)->storeFile());
    if (status.isOk() && DirectoryView((*copy)->storeFile()).isReadable()) {
        status = why;
    }
    return status.isOk() ? std::move(copy) : status;
}

Status WorkingCopy::fill() {
    std::error_code error;
    fs::create_directories(folder_.path() + homeName, error);
    if (!error) {
        fs::create_directory(folder_.path() + lockedHomeName, error);
    }
    if (!error) {
        fs::permissions(folder_.path() + lockedHomeName, fs::perms::owner_read | fs::perms::owner_exec,
                        error);
    }
    if (error) {
        return Status::failure("cannot make a home folder in", folder_.path(), error.message());
    }
    for (const char* file : settingsFiles) {
        if (Status status = copyFileIfThere(file, settingsFile(file)); !status.isOk()) {
            return status;
        }
    }
    const std::string defaults = original_.paths->defaultsFile();
    if (!defaults.empty()) {
        if (Status status = copyFileIfThere(defaults, folder_.path() + defaultsName); !status.isOk()) {
            return status;
        }
    }
    return {};
}

platform::Services WorkingCopy::services() {
    platform::Services copied = original_;
    copied.log = nullptr;
    copied.presenter = nullptr;
    copied.authority = nullptr;
    copied.pendingWrites = std::make_shared<CopyWrites>(shared_from_this());
    copied.historyFile.clear();
    copied.writersFile.clear();
    copied.paths = std::make_shared<CopiedPaths>(original_, folder_.path());
    copied.localDomain = std::make_shared<platform::CopiedDomain>(storeFile(), original_.localDomain);
    copied.folderForecast = folders_;
    return copied;
}

bool WorkingCopy::changesComputer() const {
    return original_.computer != nullptr;
}

Status WorkingCopy::copyHistory(std::string* copy) const {
    copy->clear();
    if (original_.historyFile.empty()) {
        return {};
    }
    *copy = folder_.path() + historyName;
    return copyFileIfThere(original_.historyFile, *copy);
}

std::string WorkingCopy::storeFile() const {
    return folder_.path() + storeName;
}

void WorkingCopy::takeBack() {
    session_ = nullptr;
}

void WorkingCopy::settle() {
    if (!session_) {
        return;
    }
    const Status status = std::exchange(session_, nullptr)->commit();
    if (!status.isOk()) {
        NSLog("%@", status.text());
    }
}

std::string WorkingCopy::run(const std::string& tool, std::span<const std::string> arguments) {
    tools::DirectoryPlace directory(storeFile());
    directory.keepsPasswords = false;
    if (tool == platform::systempath::nicl) {
        if (!session_) {
            session_ = std::make_unique<tools::DirectorySession>(directory);
        }
        return session_->nicl(arguments).output;
    }
    settle();
    if (tool == platform::systempath::dscl) {
        directory.root = passwordRoot_;
        return tools::runDscl(directory, arguments).output;
    }
    if (tool == platform::systempath::cp) {
        return copySettings(arguments);
    }
    if ((tool == platform::systempath::chown || tool == platform::systempath::chmod) &&
        arguments.size() == 2) {
        const bool isMode = tool == platform::systempath::chmod;
        const uid_t caller = changesComputer() ? 0 : ::geteuid();
        const auto host = changesComputer() ? tools::FolderHost::Computer : tools::FolderHost::Embedded;
        const auto order = isMode
                               ? tools::examineMode(arguments[0], arguments[1], caller, host)
                               : tools::examineOwner(arguments[0], arguments[1],
                                                     platform::DirectoryAccounts(storeFile()), caller, host);
        if (!order.isOk()) {
            return tools::complaint(isMode ? "chmod" : "chown", order.status());
        }
        folders_->add(arguments[1], *order);
        return {};
    }
    return {}; // kill: no process is signalled, and kill writes nothing to standard output
}

std::string WorkingCopy::copySettings(std::span<const std::string> arguments) {
    tools::HelperRequest request{platform::systempath::cp, {arguments.begin(), arguments.end()}};
    if (arguments.size() == 2) {
        const CopiedPaths paths(original_, folder_.path());
        request.arguments[0] = paths.map(arguments[0]);
    }
    if (arguments.size() == 2 && changesComputer()) {
        // root may write the files wherever they are, but the text of smb.conf is checked as the helper does.
        const auto text = contentsOfFile(arguments[0]);
        if (text.isOk() && arguments[1] == settingsFiles[0]) {
            const auto old = contentsOfFile(arguments[1]).valueOr("");
            if (Status status = tools::checkSmbConf(*text, old); !status.isOk()) {
                return tools::complaint("cp", status);
            }
        }
    } else if (arguments.size() == 2) {
        const std::string target = original_.paths->map(arguments[1]);
        const std::string targetFolder = stringByDeletingLastPathComponent(target);
        std::error_code error;
        if (::access(targetFolder.c_str(), W_OK | X_OK) != 0) {
            return tools::complaint("cp", Status::ofErrno("cannot write in", targetFolder, errno));
        }
        if (fs::exists(target, error) && !fs::is_regular_file(target, error)) {
            return tools::complaint(
                "cp", Status::failure("cannot replace", target, "is not a regular file; move it away"));
        }
    }
    return tools::runHelperTool({folder_.path(), ::getuid()}, request).output;
}

OSStatus WorkingCopy::execute(const std::string& tool, std::span<const std::string> arguments,
                              std::string* output) {
    std::string text = run(tool, arguments);
    if (output != nullptr) {
        *output = std::move(text);
    }
    return errAuthorizationSuccess;
}

} // namespace review
