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
class TableView;

/// What the window does with a click on a button or menu item before, beside and after the control's own
/// action: what the interface file's attributes ask of the window alone. One an interface; a script follows
/// the controls and never comes here.
class WindowActions {
  public:
    /// Both are kept.
    WindowActions(const platform::Interface& interface, RefreshQueue& queue)
        : interface_(interface), queue_(queue) {}

    /// A user clicked the node's button or menu item.
    void use(const platform::InterfaceNode& node);

    /// Told the operation of each control that was used so, after its action.
    platform::Signal<const std::string&> used;

    /// Told each table's view when it has been made, which is when its page is shown first.
    platform::Signal<TableView&> tableMade;

    /// The enabled button of that role ("new", "edit", "delete") for the table of that name is used, as if it
    /// had been clicked; nothing where there is none.
    void useButtonOf(const std::string& table, const std::string& role);

    /// Adds an entry for each button that edits or deletes a row of that table.
    void addButtonsOf(const std::string& table, QMenu& menu);

    /// Begins a new row of that table with these texts in its editor's fields, as if a user had typed them.
    void beginWith(const std::string& table,
                   const std::vector<std::pair<std::string, std::string>>& textsOfFields);

    /// `refused` shows why what stands in that field cannot be saved.
    void setRefused(std::function<void(const std::string& field, const std::string& why)> refused) {
        refused_ = std::move(refused);
    }

    /// `begun` puts the cursor into that field: an editor begins with it. Where it is not on screen by then,
    /// the editor has closed.
    void setBegun(std::function<void(const std::string& field)> begun) { begun_ = std::move(begun); }

    /// What the control that is being used has to be confirmed with, in the interface file's words.
    struct Confirmation {
        std::string title;
        std::string question;
    };

    /// From now on an action that changes something is confirmed by whoever takes its confirmation, and here
    /// no more: one question says all that is to be said of it.
    void leaveConfirmations() { leavesConfirmations_ = true; }

    /// The confirmation that is left to be asked for, once; none when there is none.
    [[nodiscard]] std::optional<Confirmation> takeConfirmation() {
        return std::exchange(confirmation_, std::nullopt);
    }

    /// Asks for it in an alert; "No" is the default.
    [[nodiscard]] static bool isConfirmed(const Confirmation& confirmation);

    /// A user has changed a field and left it: where the field `chooses`, a folder in it counts as chosen in
    /// the panel that this operation opens, so that what belongs to the folder is filled in from the disk.
    void fieldWasLeft(const platform::InterfaceNode& node);

    /// `answer` is given what the next open panel returns without being shown, and none when it is to be
    /// shown again.
    void setPanelAnswer(std::function<void(std::optional<std::string> path)> answer) {
        answerPanel_ = std::move(answer);
    }

    /// The node's text in which "%@" is what its field `about` shows now.
    [[nodiscard]] std::string textAbout(const platform::InterfaceNode& node,
                                        std::string_view attribute) const;

    /// The model of that name, or null when it has none or one of another kind.
    template <class Model>
    [[nodiscard]] Model* find(const std::string& name) const {
        return dynamic_cast<Model*>(interface_.find(name));
    }

    /// Turns off the check boxes that belong to a row of `table`, where none is selected: what they say of
    /// the last row must not go into a new one.
    void turnOffBoxesWithoutRow(const NSTableView& table) const;

    /// Selects nothing in the menus that show a number of the selected row of `table`, where the row has
    /// none: a missing number reads as 0, and the menu would show, and write, what has the number 0.
    void showNothingForMissingNumbers(NSTableView& table) const;

    /// Shows a text in the warning of the sheet that is up; nothing without one.
    void showInSheet(const std::string& text) const;

    /// The interface as it was loaded.
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
    std::function<void(const std::string&)> begun_;
    std::function<void(const std::string&, const std::string&)> refused_;
    std::function<void(std::optional<std::string>)> answerPanel_;
};
