#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/UnsavedEdits.h"
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

namespace frontend {

class WindowActions;

/// The window's part of the review. It asks before an action with a warning, and provides the menu "Changes".
/// It shows a notice above the share table when somebody else has changed smb.conf, and one above the pages
/// when the directory cannot be read. After a failed write it reads smb.conf again, so that a later action
/// does not write the failed change by the way; what was typed stays as an unsaved edit. A child of the main
/// window's widget.
class WindowReview : public QObject {
  public:
    /// Becomes a child of `window`. The other arguments must outlive this object.
    WindowReview(review::Reviewer& reviewer, UnsavedEdits& edits, QMainWindow& window, WindowActions& actions,
                 RefreshQueue& queue);

    ~WindowReview() override;

    /// Also marks in the share table what `find` returns: sentences by the name of a share. It is called
    /// whenever the table was read again, so it must not wait for anything.
    using FindRemarks = std::function<std::multimap<std::string, std::string>(
        const SMBConf& conf, const std::vector<NormalShare>& shares)>;
    void setShareRemarks(FindRemarks find);

    /// `allowed` is called with the plan of an action that is about to begin.
    void setAllowed(std::function<void(const review::Plan& plan)> allowed) { allowed_ = std::move(allowed); }

    /// Says that a user has used the control with this operation.
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
    /// Asks before unsaved edits are lost.
    void reread();
    void rereadBelowEdits();
    void planButtonInUse();
    [[nodiscard]] bool ask(const review::Plan& plan);
    [[nodiscard]] bool reviewsAll() const;

    review::Reviewer& reviewer_;
    UnsavedEdits& edits_;
    QMainWindow& window_;
    WindowActions& actions_;
    RefreshQueue& queue_;
    QFrame* notice_ = nullptr;
    QFrame* directoryNotice_ = nullptr;
    QLabel* directoryText_ = nullptr;
    QAction* reviewAll_ = nullptr;
    Binding* remarksShown_ = nullptr; ///< shows the remarks in the table after each reload
    FindRemarks findMore_;
    std::multimap<std::string, std::string> remarks_; ///< by share name
    std::string stamp_;                               ///< the stamp of smb.conf when it was last checked
    std::function<void(const review::Plan&)> allowed_;
    // They put back what was unsaved when the current action began.
    std::function<void()> putBackShare_;
    std::function<void()> putBackSettings_;
    platform::Connection eventEnded_;
    platform::Connection used_;
};

} // namespace frontend
