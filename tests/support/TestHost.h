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

/// A privileged tool run that a test saw.
struct RecordedRun {
    std::string tool;
    std::vector<std::string> arguments;
    /// "TOOL ARGUMENT ARGUMENT", for comparing lists of runs.
    [[nodiscard]] std::string text() const;
};

/// A request for rights that a test saw.
struct RecordedRightsRequest {
    AuthorizationRights rights;
    AuthorizationFlags flags = kAuthorizationFlagDefaults;
};

/// A host for one test: a temporary folder as the root (with HOME in it), recorded tool runs, queued answers,
/// a captured log, a clock that the test sets. It is the current host for as long as it lives; the destructor
/// removes the folder and fails the test when a queued answer was never used, or an alert came that had none
/// and was not allowed (allowUnaskedAlerts).
class TestHost {
  public:
    struct Options {
        /// Extra entries of "Localizable", instead of the real bundle's.
        std::map<std::string, std::string> strings;
        bool realResources = true; ///< the project's own resources folder
        std::optional<std::int32_t> systemVersion = 0x1040;
        std::vector<std::string> languages = {"English"}; ///< the names of their folders
    };

    TestHost();
    explicit TestHost(Options options);
    ~TestHost();

    // Where things are.
    /// Mapped system files are below it: root()/"etc/smb.conf".
    [[nodiscard]] std::filesystem::path root() const;
    [[nodiscard]] std::filesystem::path home() const;
    [[nodiscard]] std::filesystem::path storeFile() const; ///< the local domain's store; not made by TestHost
    /// Writes a file below root(), with its folders.
    void write(const std::string& relativePath, std::string_view bytes);
    [[nodiscard]] std::string read(const std::string& relativePath) const;

    // What is answered. Alerts are matched by title, first in first out.
    void answerAlert(const std::string& title, const std::string& button);
    void choosePath(std::optional<std::string> path); ///< for the next open panel; none cancels
    void allowUnaskedAlerts();                        ///< they are answered by their default button
    bool administratorAllows = true;
    std::deque<std::string> passwords; ///< for the administrator dialogs, in order; none left: ""

    // The authority.
    bool rightHeld = true; ///< what the silent test answers

    /// What a run writes and how its launch ends; by default nothing and 0. Called after the run was
    /// recorded.
    struct RunAnswer {
        std::string output;
        OSStatus status = 0;
    };

    std::function<RunAnswer(const RecordedRun&)> onRun;
    /// What a listing command prints; none makes the pipe fail to open.
    std::function<std::optional<std::string>(const std::string& command)> onListing;

    /// Called before the directory is opened for a report; what it throws leaves the report.
    std::function<void()> onReport;

    // What was seen, in order.
    std::vector<RecordedRightsRequest> rightsRequests;
    std::vector<RecordedRun> runs;
    [[nodiscard]] std::vector<std::string> runTexts() const;
    std::vector<platform::Alert> alerts;
    std::vector<platform::OpenPanelRequest> panels;
    std::vector<std::string> log;
    std::vector<std::string> opened;
    std::vector<std::string> refusals;
    std::vector<std::string> events; ///< all of the above but requests for rights, and beeps, as short lines:
                                     ///< "beep", "log ...", "run ...", "alert TITLE"
    int beeps = 0;
    int administratorDialogs = 0;
    std::vector<platform::AdministratorRequest>
        administratorRequests;             ///< of the dialogs that the presenter showed
    std::vector<std::string> shownRuns;    ///< what the presenter was told of runs: "TOOL ARGUMENT ARGUMENT"
    std::vector<std::string> shownOutputs; ///< and of their outputs
    platform::Interface* loadedInterface = nullptr; ///< of the interface file that was loaded last

    double now = 0; ///< the clock
    /// Fires every running timer once.
    void fireTimers();
    [[nodiscard]] std::size_t runningTimers() const;

    [[nodiscard]] platform::Host& host();

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};
