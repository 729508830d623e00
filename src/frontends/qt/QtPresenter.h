#pragma once

#include "access/Doctor.h"
#include "frontends/qt/Activity.h"
#include "frontends/qt/FrameTimers.h"
#include "frontends/qt/QtFrontend.h"
#include "frontends/qt/RunProgress.h"
#include "frontends/qt/WindowStatus.h"
#include "frontends/qt/WindowView.h"
#include "platform/appkit/Presenter.h"
#include "platform/foundation/Services.h"

#include <memory>
#include <vector>

class WindowInquiries;
class WindowReview;

/// The presenter of the window front-end: renders the interfaces that are loaded, and asks, shows and beeps.
/// Owned by the front-end and the host together; after closeAll, when Qt may be gone, every operation answers
/// as if the user refused.
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

    /// The interfaces that were loaded, in order.
    [[nodiscard]] const std::vector<platform::Interface*>& interfaces() const { return interfaces_; }

    /// The view of a window, or null.
    [[nodiscard]] WindowView* viewOf(const NSWindow& window) const;

    /// Gives the main window its side of the review.
    void useReviewer(review::Reviewer& reviewer);
    /// Gives it its history. After useReviewer.
    void useHistory(const review::History& history);
    /// Has it say where the shares are reached. After useReviewer.
    void useServer(ShareServer server);

    /// Gives it the menu "Check". After useReviewer.
    void useDoctor(accesscheck::Patient patient);

    /// Brings the main window, and what is asked before it, to the front. `token` is the desktop's leave to
    /// do so; it may be empty.
    void bringToFront(const std::string& token);

    /// The menu's dialogs; null before useDoctor.
    [[nodiscard]] WindowInquiries* inquiries() const { return inquiries_; }

    [[nodiscard]] RefreshQueue& queue() const { return *queue_; }

    /// As given to useReviewer; null before.
    [[nodiscard]] const review::Reviewer* reviewer() const { return reviewer_; }

    /// Takes all windows and timers down, for good.
    void closeAll();

  private:
    [[nodiscard]] QWidget* parentForDialogs() const;
    /// Shows which records would be rewritten, and how, with the question.
    [[nodiscard]] platform::AlertAnswer askAboutMigration(const platform::Alert& alert) const;
    [[nodiscard]] bool refusalHolds() const;
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
    std::vector<std::unique_ptr<WindowActions>> actions_; ///< outlive the views; one an interface
    std::optional<std::string> panelAnswer_;              ///< of the next open panel, which is not shown then
    unsigned refusedIn_ = 0; ///< the user's event in which the administrator refused last
    int refusals_ = 0;       ///< how often in that event
    std::vector<std::unique_ptr<WindowView>> views_; ///< the main window's first
    review::Reviewer* reviewer_ = nullptr;
    WindowReview* review_ = nullptr;       ///< the main window's child
    WindowInquiries* inquiries_ = nullptr; ///< the same
    QWidget* mainWidget_ = nullptr;
    Activity activity_;
    std::shared_ptr<platform::Log> log_;       ///< the host's own; null while it is in place
    std::shared_ptr<ActivityLog> activityLog_; ///< stands before it
    std::unique_ptr<RunProgress> progress_;    ///< null where there is no reviewer
    platform::Connection saved_;
    WindowStatus* status_ = nullptr; ///< the main window's child; null where there is none
};
