#pragma once

#include "platform/appkit/Presenter.h"
#include "platform/foundation/Host.h"
#include "platform/security/Authority.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A recorded privileged tool run.
struct RecordedRun {
    std::string tool;
    std::vector<std::string> arguments;
    /// Returns "TOOL ARGUMENT ARGUMENT", to compare lists of runs.
    [[nodiscard]] std::string text() const;
};

/// A recorded request for rights.
struct RecordedRightsRequest {
    AuthorizationRights rights;
    AuthorizationFlags flags = kAuthorizationFlagDefaults;
};

/// A host for one test: a temporary folder as the root (with HOME in it), recorded tool runs, queued answers,
/// a captured log, a clock that the test sets. It is the current host during its lifetime. The destructor
/// removes the folder, and fails the test when a queued answer was not used or an alert came without an
/// answer (unless allowUnaskedAlerts was called).
class TestHost {
  public:
    struct Options {
        /// Entries of "Localizable", in place of the real bundle's.
        std::map<std::string, std::string> strings;
        bool realResources = true; ///< use the project's own resources folder
        std::optional<std::int32_t> systemVersion = 0x1040;
        std::vector<std::string> languages = {"English"}; ///< by the names of their folders
        bool keepsLayout = false;                         ///< of smb.conf, as on the computer itself
    };

    TestHost();
    explicit TestHost(Options options);
    ~TestHost();

    // Paths.
    /// Mapped system files are in it: root()/"etc/smb.conf".
    [[nodiscard]] std::filesystem::path root() const;
    [[nodiscard]] std::filesystem::path home() const;
    [[nodiscard]] std::filesystem::path storeFile() const; ///< the domain's store; not made here
    void write(const std::string& relativePath, std::string_view bytes);
    [[nodiscard]] std::string read(const std::string& relativePath) const;

    // Answers. Alerts are matched by title, first in, first out.
    void answerAlert(const std::string& title, const std::string& button);
    void choosePath(std::optional<std::string> path); ///< for the next open panel; none cancels it
    void allowUnaskedAlerts();                        ///< they get their default button
    bool administratorAllows = true;
    std::deque<std::string> passwords; ///< for the administrator dialogs, in order; then ""

    // The authority.
    bool makesSessions = true;
    bool rightHeld = true; ///< the result of the silent test

    /// The output of a run and the status of its launch; by default empty and 0. Called after the run was
    /// recorded.
    struct RunAnswer {
        std::string output;
        OSStatus status = 0;
    };

    std::function<RunAnswer(const RecordedRun&)> onRun;
    /// Returns the output of a listing command; with none, the pipe cannot be opened.
    std::function<std::optional<std::string>(const std::string& command)> onListing;

    /// Called before the directory is opened for a report. It may throw, to end the report.
    std::function<void()> onReport;

    // Recorded, in order.
    std::vector<RecordedRightsRequest> rightsRequests;
    std::vector<RecordedRun> runs;
    [[nodiscard]] std::vector<std::string> runTexts() const;
    std::vector<platform::Alert> alerts;
    std::vector<platform::OpenPanelRequest> panels;
    std::vector<std::string> log;
    std::vector<std::string> opened;
    std::vector<std::string> refusals;
    std::vector<std::string> events; ///< all of the above except requests for rights, and beeps, as short
                                     ///< lines: "beep", "log ...", "run ...", "alert TITLE"
    int beeps = 0;
    int administratorDialogs = 0;
    std::vector<platform::AdministratorRequest>
        administratorRequests;          ///< the dialogs that the presenter showed
    std::vector<std::string> shownRuns; ///< the runs that the presenter was told of: "TOOL ARGUMENT ARGUMENT"
    std::vector<std::string> shownOutputs;          ///< the outputs that the presenter was told of
    platform::Interface* loadedInterface = nullptr; ///< the interface file that was loaded last

    double now = 0; ///< the clock's time in seconds
    /// Fires every running timer once.
    void fireTimers();
    [[nodiscard]] std::size_t runningTimers() const;

    [[nodiscard]] platform::Host& host();

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};
