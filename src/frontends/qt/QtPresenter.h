#pragma once

#include "access/Doctor.h"
#include "frontends/qt/Activity.h"
#include "frontends/qt/FrameTimers.h"
#include "frontends/qt/QtFrontend.h"
#include "frontends/qt/RunProgress.h"
#include "frontends/qt/UnsavedEdits.h"
#include "frontends/qt/WindowStatus.h"
#include "frontends/qt/WindowView.h"
#include "platform/appkit/Presenter.h"
#include "platform/foundation/Services.h"

#include <memory>
#include <vector>

namespace frontend {

class WindowInquiries;
class WindowReview;

/// The presenter of the window front-end: renders the loaded interfaces, and asks, shows and beeps. The
/// front-end and the host share it. After closeAll, when Qt may be gone, every operation returns as if the
/// user had refused.
class QtPresenter : public platform::Presenter {
  public:
    explicit QtPresenter(QtFrontend::Manner manner);
    ~QtPresenter() override;

    [[nodiscard]] platform::AlertAnswer runAlert(const platform::Alert& alert) override;
    [[nodiscard]] std::optional<std::string> runOpenPanel(const platform::OpenPanelRequest& request) override;
    [[nodiscard]] std::optional<platform::AdministratorAnswer>
    runAdministratorDialog(const platform::AdministratorRequest& request) override;
    void beep() override;
    void openAddress(const std::string& address) override;
    [[nodiscard]] platform::TimerId startTimer(double interval, std::function<void()> fire) override;
    void stopTimer(platform::TimerId timer) override;
    void interfaceDidLoad(platform::Interface& interface) override;
    void windowVisibilityDidChange(NSWindow& window) override;
    void editWasRefused(const NSTextField& field, const std::string& errorText) override;
    void applicationDidTerminate() override;
    void toolWillRun(const std::string& tool, std::span<const std::string> arguments) override;
    void toolDidWrite(std::string_view output) override;

    /// The loaded interfaces, in the order of loading.
    [[nodiscard]] const std::vector<platform::Interface*>& interfaces() const { return interfaces_; }

    /// Returns the view of a window, or null.
    [[nodiscard]] WindowView* viewOf(const NSWindow& window) const;

    /// Adds the review to the main window.
    void useReviewer(review::Reviewer& reviewer);
    /// Adds the history to it. Call it after useReviewer.
    void useHistory(const review::History& history);
    /// Makes it say where the shares can be reached. Call it after useReviewer.
    void useServer(ShareServer server);

    /// Adds the menu "Check" to it. Call it after useReviewer.
    void useDoctor(accesscheck::ExaminedHost host);

    /// Brings the main window and its open dialogs to the front. `token` is the desktop's permission to do
    /// so; it may be empty.
    void bringToFront(const std::string& token);

    /// The menu's dialogs; null before useDoctor.
    [[nodiscard]] WindowInquiries* inquiries() const { return inquiries_; }

    [[nodiscard]] RefreshQueue& queue() const { return *queue_; }

    /// The reviewer given to useReviewer; null before.
    [[nodiscard]] const review::Reviewer* reviewer() const { return reviewer_; }

    /// Destroys all windows and timers, permanently.
    void closeAll();

  private:
    [[nodiscard]] QWidget* parentForDialogs() const;
    /// Asks the question together with the plan of how records would be rewritten.
    [[nodiscard]] platform::AlertAnswer askAboutMigration(const platform::Alert& alert) const;
    void beginProgress(const std::string& operation, std::size_t runs) const;
    void watchLog();
    void leaveLog();

    [[nodiscard]] bool asks() const {
        return queue_ != nullptr && manner_ == QtFrontend::Manner::Interactive;
    }

    QtFrontend::Manner manner_;
    std::unique_ptr<RefreshQueue> queue_; ///< null after closeAll
    std::unique_ptr<FrameTimers> timers_;
    std::shared_ptr<platform::Patience>
        patience_; ///< shows that another program is waited for; null where nobody is asked anything
    std::vector<platform::Interface*> interfaces_;
    std::vector<std::unique_ptr<WindowActions>> actions_; ///< one per interface; outlive the views
    std::optional<std::string> panelAnswer_; ///< the result of the next open panel, which is then not shown
    unsigned refusedIn_ = 0; ///< the user's event in which the administrator refused last; 0 before that
    std::vector<std::unique_ptr<WindowView>> views_; ///< the main window's first
    review::Reviewer* reviewer_ = nullptr;
    WindowReview* review_ = nullptr;       ///< the main window's child
    WindowInquiries* inquiries_ = nullptr; ///< the main window's child
    QWidget* mainWidget_ = nullptr;
    bool isPlaced_ = false;               ///< the window was given time to get its place
    std::unique_ptr<UnsavedEdits> edits_; ///< the main window's; null when there is no reviewer
    Activity activity_;
    std::shared_ptr<platform::Log> log_;       ///< the host's own log while activityLog_ replaces it
    std::shared_ptr<ActivityLog> activityLog_; ///< wraps log_
    std::unique_ptr<RunProgress> progress_;    ///< null when there is no reviewer
    platform::Connection saved_;
    WindowStatus* status_ = nullptr; ///< the main window's child; null when there is none
};

} // namespace frontend
