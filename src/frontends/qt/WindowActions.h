#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/Interface.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class NSTableView;
class QMenu;

namespace frontend {

class TableView;

/// What the window does before and after the action of a button or menu item that a user clicks, according to
/// attributes in the interface file that only concern the window. One per interface. Scripts use the controls
/// directly and never come here.
class WindowActions {
  public:
    /// Both must outlive this object.
    WindowActions(const platform::Interface& interface, RefreshQueue& queue)
        : interface_(interface), queue_(queue) {}

    /// Handles a user's click on the node's button or menu item.
    void use(const platform::InterfaceNode& node);

    /// Closes the main window, if that is allowed. The application decides whether it then ends.
    void closeMainWindow();

    /// Sets the function that asks whether the main window may be closed, as far as that is a question.
    void setMayClose(std::function<bool()> mayClose) { mayClose_ = std::move(mayClose); }

    /// Emitted with the operation of each control used in this way, after its action.
    platform::Signal<const std::string&> used;

    /// Emitted with each table's view when it has been made, which is when its page is first shown.
    platform::Signal<TableView&> tableMade;

    /// Uses the enabled button with that role ("new", "edit", "delete") for the table with that name, as if
    /// it had been clicked. Does nothing when there is none.
    void useButtonOf(const std::string& table, const std::string& role);

    /// Adds a menu entry for each button that edits or deletes a row of that table.
    void addButtonsOf(const std::string& table, QMenu& menu);

    /// Begins a new row of that table with these texts in its editor's fields, as if a user had typed them.
    void beginWith(const std::string& table,
                   const std::vector<std::pair<std::string, std::string>>& textsOfFields);

    /// Sets the function that shows why the text of a field cannot be saved.
    void setRefused(std::function<void(const std::string& field, const std::string& why)> refused) {
        refused_ = std::move(refused);
    }

    /// Sets the function that moves the focus to the first field of an editor that has just been started. If
    /// that field is not on screen by then, the editor has closed.
    void setBegun(std::function<void(const std::string& field)> begun) { begun_ = std::move(begun); }

    /// The question to confirm the control in use with, from the interface file.
    struct Confirmation {
        std::string title;
        std::string question;
    };

    /// Stops asking for confirmations here: from now on the caller of takeConfirmation asks, so that a single
    /// question says everything about an action.
    void leaveConfirmations() { leavesConfirmations_ = true; }

    /// Returns the confirmation that is still to be asked for, and removes it; none when there is none.
    [[nodiscard]] std::optional<Confirmation> takeConfirmation() {
        return std::exchange(confirmation_, std::nullopt);
    }

    /// Asks in an alert with "No" as the default. Returns true for "Yes".
    [[nodiscard]] static bool isConfirmed(const Confirmation& confirmation);

    /// Handles a field that a user has changed and left. If the node has the attribute `chooses`, which names
    /// an operation that opens a panel, a folder in the field is treated as chosen in that panel, so that the
    /// folder's values are filled in from the disk.
    void fieldWasLeft(const platform::InterfaceNode& node);

    /// Sets the function that receives the path that the next open panel returns without being shown, or none
    /// to show it again.
    void setPanelAnswer(std::function<void(std::optional<std::string> path)> answer) {
        answerPanel_ = std::move(answer);
    }

    /// Returns the text of the node's attribute, with "%@" replaced by the present text of the field that
    /// `about` names.
    [[nodiscard]] std::string textAbout(const platform::InterfaceNode& node,
                                        std::string_view attribute) const;

    /// Returns the model with that name; null when there is none or it is of another kind.
    template <class Model>
    [[nodiscard]] Model* find(const std::string& name) const {
        return dynamic_cast<Model*>(interface_.find(name));
    }

    /// When no row of `table` is selected, turns off the check boxes that belong to a row, and selects the
    /// first item in such menus: what they show for the last row must not go into a new one.
    void showDefaultsWithoutRow(const NSTableView& table) const;

    /// When the selected row of `table` has no number, selects nothing in the menus that show it: a missing
    /// number reads as 0, and the menu would show, and write, the item with the number 0.
    void showNothingForMissingNumbers(NSTableView& table) const;

    /// Shows a text as the warning of the open sheet. Does nothing without one.
    void showInSheet(const std::string& text) const;

    /// The loaded interface.
    [[nodiscard]] const platform::Interface& interface() const { return interface_; }

  private:
    void perform(const platform::InterfaceNode& node) const;
    [[nodiscard]] bool passesChecks(const platform::InterfaceNode& node) const;
    void beginNew(const platform::InterfaceNode& node) const;
    void beginEditing(const platform::InterfaceNode& node) const;
    void cancelSheet() const;

    const platform::Interface& interface_;
    RefreshQueue& queue_;
    std::optional<Confirmation> confirmation_;
    bool leavesConfirmations_ = false;
    std::function<bool()> mayClose_;
    std::function<void(const std::string&)> begun_;
    std::function<void(const std::string&, const std::string&)> refused_;
    std::function<void(std::optional<std::string>)> answerPanel_;
};

} // namespace frontend
