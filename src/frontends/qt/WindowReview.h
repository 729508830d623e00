#pragma once

#include "frontends/qt/Binding.h"
#include "review/Reviewer.h"

#include <QMainWindow>
#include <QObject>

#include <functional>
#include <map>
#include <string>
#include <vector>

class QAction;
class QFrame;
class QLabel;
class WindowActions;

/// The window's side of the review: asks before an action that holds a warning, has the menu "Changes", says
/// above the share table when smb.conf was changed by somebody else and above all when the directory cannot
/// be read, and reads smb.conf again after a write that failed, so that no later save carries a change of
/// which the user was told that it had failed. A child of the main window's widget.
class WindowReview : public QObject {
  public:
    /// All but `window`, whose child it becomes, are kept.
    WindowReview(review::Reviewer& reviewer, QMainWindow& window, WindowActions& actions,
                 RefreshQueue& queue);

    ~WindowReview() override;

    /// The share table marks what `find` has found, too: sentences by the name of a share. Asked whenever the
    /// table was read again, so it must not wait for anything.
    using FindRemarks = std::function<std::multimap<std::string, std::string>(
        const SMBConf& conf, const std::vector<NormalShare>& shares)>;
    void setShareRemarks(FindRemarks find);

    /// `allowed` is given the plan of an action that may begin now.
    void setAllowed(std::function<void(const review::Plan& plan)> allowed) { allowed_ = std::move(allowed); }

    /// A user's event has used the control with this operation.
    void actionWasUsed(const std::string& operation);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void addMenu();
    void addNotice();
    void showNotice();
    void lookAtFile();
    void addDirectoryNotice();
    void showDirectoryNotice();
    void showRemarks();
    void showBlocked(const review::Plan& plan) const;
    void reread();
    void planButtonInUse();
    [[nodiscard]] bool ask(const review::Plan& plan);
    [[nodiscard]] bool reviewsAll() const;

    review::Reviewer& reviewer_;
    QMainWindow& window_;
    WindowActions& actions_;
    RefreshQueue& queue_;
    QFrame* notice_ = nullptr;
    QFrame* directoryNotice_ = nullptr;
    QLabel* directoryText_ = nullptr;
    QAction* reviewAll_ = nullptr;
    Binding* remarksShown_ = nullptr; ///< in the table, after each reload
    FindRemarks findMore_;
    std::multimap<std::string, std::string> remarks_; ///< by the name of a share
    std::string stamp_;                               ///< of smb.conf, as of the last look at it
    std::function<void(const review::Plan&)> allowed_;
    platform::Connection eventEnded_;
    platform::Connection used_;
};
