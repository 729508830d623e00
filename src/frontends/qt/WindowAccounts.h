#pragma once

#include "frontends/qt/WindowActions.h"
#include "platform/foundation/Computer.h"

#include <QMainWindow>
#include <QObject>

class QAction;
class TableView;

/// Keeps the accounts that the computer has for its own programs out of the lists' view, unless the user
/// wants to see them, which is remembered. A child of the main window's widget.
class WindowAccounts : public QObject {
  public:
    /// All but `window`, whose child it becomes, are kept.
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
