#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/WindowActions.h"
#include "platform/appkit/NSTabView.h"

#include <QMainWindow>
#include <QObject>

#include <string>

class QAction;

namespace frontend {

/// The window's menu "Page": actions with shortcuts for whichever page is visible, and commands to change the
/// page. F10 opens the menu bar. A child of the main window's widget.
class WindowPages : public QObject {
  public:
    /// Becomes a child of `window`. The other arguments must outlive this object.
    WindowPages(NSTabView& tabs, QMainWindow& window, WindowActions& actions, RefreshQueue& queue);

  private:
    QAction* addAction(QMenu& menu, const char* name, const QString& text, const QKeySequence& key,
                       std::function<void()> act);
    void load();
    /// Returns the button with that role on the visible page; null when it has none.
    [[nodiscard]] const platform::InterfaceNode* buttonOf(const std::string& role) const;
    void use(const std::string& role);
    void find();
    void turn(int pages);

    NSTabView& tabs_;
    QMainWindow& window_;
    WindowActions& actions_;
    RefreshQueue& queue_;
    QAction* new_ = nullptr;
    QAction* find_ = nullptr;
    QAction* refresh_ = nullptr;
};

} // namespace frontend
