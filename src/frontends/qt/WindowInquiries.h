#pragma once

#include "access/Doctor.h"
#include "frontends/qt/Binding.h"
#include "frontends/qt/WindowReview.h"
#include "platform/appkit/NSTableView.h"

#include <QDialog>
#include <QMainWindow>
#include <QObject>

#include <memory>

class QMenu;

namespace frontend {

/// The window's menu "Check": who may use a share and what a user may do, what is wrong with the computer,
/// and who is connected. It also marks shares with faults in the share table. A child of the main window's
/// widget.
class WindowInquiries : public QObject {
  public:
    /// Becomes a child of `window`. `shares`, `users` and `queue` must outlive this object. `review` gets the
    /// marks; it may be null.
    WindowInquiries(accesscheck::ExaminedHost host, NSTableView& shares, NSTableView& users,
                    QMainWindow& window, WindowReview* review, RefreshQueue& queue);

    // Each of these makes the dialog of a menu item without showing it.
    [[nodiscard]] std::unique_ptr<QDialog> makeAccessDialog(QWidget* parent);
    [[nodiscard]] std::unique_ptr<QDialog> makeFindingsDialog(QWidget* parent);
    [[nodiscard]] std::unique_ptr<QDialog> makeSessionsDialog(QWidget* parent);

  private:
    accesscheck::ExaminedHost host_;
    NSTableView& shares_;
    NSTableView& users_;
    RefreshQueue& queue_;
};

} // namespace frontend
