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

class QMenu;
class QPushButton;

namespace frontend {

class ActivityDialog;
class ElidedLabel;

/// The line at the window's foot that says what the last action has done, or what failed and why, and offers
/// what can be done about it. Also the panel "Activity". A child of the main window's widget.
class WindowStatus : public QObject {
  public:
    /// Becomes a child of `window`. The other arguments must outlive this object.
    WindowStatus(Activity& activity, QMainWindow& window, WindowActions& actions, RefreshQueue& queue);

    /// Lets the line offer to take back the last action, and adds the panel to `menu`.
    void useHistory(const review::History& history, QMenu& menu,
                    std::function<void(std::int64_t number)> takeBack);

    /// Shows where the shares can be reached, at the right of the line.
    void useServer(ShareServer server);

    /// Adds a text about a server at the right of the line. It gets the room that the news and their buttons
    /// leave.
    static ElidedLabel* addServerState(const QMainWindow& window);

    /// `hasSection` says whether the server's settings have a section with that name.
    void setSections(std::function<bool(const std::string& name)> hasSection) {
        hasSection_ = std::move(hasSection);
    }

    /// Emitted with the operation of each control whose action made changes, and made all of them.
    platform::Signal<const std::string&> saved;

    /// Says that an action that may change something is about to begin.
    void actionBegins();

    /// Shows a text for the last action.
    void show(const QString& text, bool isFailure = false);

  private:
    void eventEnded();
    /// Says it if the server of --serve has ended.
    void lookAtServer();
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
    std::string operation_;   ///< the operation of the control used in this event
    std::string edited_;      ///< the share in the editor when the last action began
    std::string address_;     ///< the address of the share in the line
    std::int64_t number_ = 0; ///< the number of the change in the line
    platform::Connection eventEnded_;
    platform::Connection used_;
};

} // namespace frontend
