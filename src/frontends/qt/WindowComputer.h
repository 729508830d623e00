#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSTabView.h"
#include "platform/foundation/Computer.h"
#include "review/ServerChange.h"

#include <QMainWindow>
#include <QObject>

class NSTableView;
class QPushButton;

namespace frontend {

class ElidedLabel;

/// The line at the window's foot about the computer itself: whether the SMB server runs, since when and where
/// it listens, and what is not installed, with buttons that start the server now or with the computer. While
/// the AFP page is shown, the line is about the AFP server. A child of the main window's widget.
class WindowComputer : public QObject {
  public:
    /// Becomes a child of `window`. The other arguments must outlive this object.
    WindowComputer(const platform::Computer& computer, NSTabView& tabs, NSTableView& users,
                   QMainWindow& window, RefreshQueue& queue);

  private:
    void showState();
    /// Marks the users whose Public folder is shared and cannot be offered, with the reason.
    void markUsers();
    void control(review::ServerChange change);

    const platform::Computer& computer_;
    NSTabView& tabs_;
    NSTableView& users_;
    QMainWindow& window_;
    RefreshQueue& queue_;
    ElidedLabel* state_ = nullptr;
    QPushButton* start_ = nullptr;
    QPushButton* atBoot_ = nullptr;
    bool marked_ = false;
};

} // namespace frontend
