#pragma once

#include "frontends/qt/WindowActions.h"
#include "platform/appkit/NSTabView.h"

#include <QMainWindow>
#include <QObject>

class QMimeData;

namespace frontend {

/// Begins a new share when a folder is dropped anywhere on the page of the shares; the share gets the
/// folder's name. A child of the main window's widget.
class WindowDrop : public QObject {
  public:
    /// Becomes a child of `window`. The other arguments must outlive this object.
    WindowDrop(NSTabView& tabs, QMainWindow& window, WindowActions& actions);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    NSTabView& tabs_;
    WindowActions& actions_;
};

/// Returns the path of the single local folder that is dragged; empty for anything else.
[[nodiscard]] QString draggedFolder(const QMimeData& data);

} // namespace frontend
