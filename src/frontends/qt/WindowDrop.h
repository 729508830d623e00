#pragma once

#include "frontends/qt/WindowActions.h"
#include "platform/appkit/NSTabView.h"

#include <QMainWindow>
#include <QObject>

/// A folder that is dropped anywhere on the page of the shares begins a new share of it, named after it. A
/// child of the main window's widget.
class WindowDrop : public QObject {
  public:
    /// All but `window`, whose child it becomes, are kept.
    WindowDrop(NSTabView& tabs, QMainWindow& window, WindowActions& actions);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    NSTabView& tabs_;
    WindowActions& actions_;
};

class QMimeData;

/// The path of the one folder of this computer that is dragged; empty where it is anything else.
[[nodiscard]] QString draggedFolder(const QMimeData& data);
