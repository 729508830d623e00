#pragma once

#include "frontends/qt/Activity.h"
#include "frontends/qt/Binding.h"
#include "frontends/qt/ShareAddress.h"
#include "frontends/qt/WindowActions.h"
#include "review/History.h"

#include <QMainWindow>
#include <QObject>
#include <QPointer>

#include <cstdint>
#include <optional>

class ActivityDialog;
class ElidedLabel;
class QMenu;
class QPushButton;

/// The line at the window's foot that says what the last action has done, or what failed and why, with what
/// can be done about it; and the panel "Activity". A child of the main window's widget.
class WindowStatus : public QObject {
  public:
    /// All but `window`, whose child it becomes, are kept.
    WindowStatus(Activity& activity, QMainWindow& window, WindowActions& actions, RefreshQueue& queue);

    /// Has the line offer to take back what was done, and `menu` hold the panel.
    void useHistory(const review::History& history, QMenu& menu,
                    std::function<void(std::int64_t number)> takeBack);

    /// Says where the shares are reached, at the right of the line.
    void useServer(ShareServer server);

    /// `hasSection` says whether the server's settings have a section of that name.
    void setSections(std::function<bool(const std::string& name)> hasSection) {
        hasSection_ = std::move(hasSection);
    }

    /// Told the operation of each control whose action has changed something, and all that it was to.
    platform::Signal<const std::string&> saved;

    /// Shows a text for the last action.
    void show(const QString& text, bool isFailure = false);

  private:
    void eventEnded();
    void showOutcome(const std::optional<review::HistoryEntry>& added);
    [[nodiscard]] bool showShare(const std::string& name);
    void showActivity();
    void fillShareMenu(QMenu& menu, NSTableView& shares, int row);
    [[nodiscard]] QPushButton* addButton(const char* name, const char* text);

    Activity& activity_;
    QMainWindow& window_;
    WindowActions& actions_;
    const review::History* history_ = nullptr;
    std::function<void(std::int64_t)> takeBack_;
    ShareServer server_;
    std::function<bool(const std::string&)> hasSection_;
    ElidedLabel* text_ = nullptr;
    ElidedLabel* serverState_ = nullptr;
    QPushButton* copy_ = nullptr;
    QPushButton* open_ = nullptr;
    QPushButton* undo_ = nullptr;
    QPushButton* more_ = nullptr;
    QPointer<ActivityDialog> dialog_;
    std::string operation_;   ///< of the control that was used in this event
    std::string address_;     ///< of the share that the line is about
    std::int64_t number_ = 0; ///< of the change that the line tells of
    platform::Connection eventEnded_;
    platform::Connection used_;
};
