#pragma once

#include "frontends/qt/WindowActions.h"
#include "platform/foundation/Computer.h"

#include <QMainWindow>
#include <QObject>

class QAction;

namespace frontend {

class TableView;

/// Hides the accounts that the computer has for its own programs in the lists, unless the user wants to see
/// them. The choice is remembered. A child of the main window's widget.
class WindowAccounts : public QObject {
  public:
    /// Becomes a child of `window`. The other arguments must outlive this object.
    WindowAccounts(const platform::Computer& computer, WindowActions& actions, QMainWindow& window);

  private:
    void addMenu();
    void watch(TableView& table);
    [[nodiscard]] bool showsAll(const std::string& table) const;

    const platform::Computer& computer_;
    WindowActions& actions_;
    QMainWindow& window_;
    QAction* show_ = nullptr;
    platform::Connection tableMade_;
};

} // namespace frontend
