#include "frontends/qt/WindowAccounts.h"

#include "frontends/qt/Binding.h"
#include "frontends/qt/Menus.h"
#include "frontends/qt/TableView.h"
#include "frontends/qt/WindowNames.h"
#include "platform/appkit/NSButton.h"
#include "platform/foundation/NSUserDefaults.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

namespace frontend {

namespace {

constexpr const char* settingKey = "BrindleShowSystemAccounts";
constexpr const char* groupPagesBox = "showSystemUsersGroups3";

} // namespace

WindowAccounts::WindowAccounts(const platform::Computer& computer, WindowActions& actions,
                               QMainWindow& window)
    : QObject(&window), computer_(computer), actions_(actions), window_(window) {
    addMenu();
    for (TableView* table : window.findChildren<TableView*>()) {
        watch(*table);
    }
    tableMade_ = actions.tableMade.connect([this](TableView& table) { watch(table); });
}

void WindowAccounts::addMenu() {
    auto* menu = new QMenu(localizedTitle("View"), window_.menuBar());
    menu->setObjectName("viewMenu");
    insertBeforeHelp(*window_.menuBar(), *menu);
    show_ = menu->addAction(localizedTitle("Show System Accounts"));
    show_->setObjectName("showSystemAccounts");
    show_->setCheckable(true);
    show_->setChecked(NSUserDefaults::standardUserDefaults().integerForKey(settingKey).value_or(0) != 0);
    connect(show_, &QAction::toggled, this, [this](bool isOn) {
        NSUserDefaults::standardUserDefaults().setInteger(isOn ? 1 : 0, settingKey);
        for (TableView* table : window_.findChildren<TableView*>()) {
            table->reloadLater();
        }
    });
}

bool WindowAccounts::showsAll(const std::string& table) const {
    // The page of the groups has its own box for showing them.
    const auto* box = table == userTable ? nullptr : actions_.find<NSButton>(groupPagesBox);
    return show_->isChecked() || (box != nullptr && box->state() == NSOnState);
}

void WindowAccounts::watch(TableView& table) {
    const std::string name = table.objectName().toStdString();
    if (name != userTable && name != groupTable && name != memberTable) {
        return;
    }
    table.setLeftOut([this, name] {
        if (showsAll(name)) {
            return std::set<std::string>();
        }
        platform::SystemAccounts accounts = computer_.systemAccounts();
        return name == groupTable ? std::move(accounts.groups) : std::move(accounts.users);
    });
}

} // namespace frontend
