#pragma once

#include "frontends/script/ScriptError.h"
#include "frontends/script/ScriptOutput.h"
#include "platform/appkit/Interface.h"
#include "platform/appkit/Presenter.h"
#include "review/Reviewer.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace frontend {

/// The front-end of a scripted run: everything that would be shown, heard or asked becomes a line of output,
/// and questions get the answers that the script has prepared. It knows the loaded interface files, in which
/// the runner finds the controls that the script names. It never waits: timers do not fire, because what they
/// animate is not visible.
class ScriptPresenter : public platform::Presenter {
  public:
    explicit ScriptPresenter(std::shared_ptr<ScriptOutput> output) : output_(std::move(output)) {}

    /// Sets the function that returns the reviewer, or null.
    void useReviewer(std::function<review::Reviewer*()> reviewer) { findReviewer_ = std::move(reviewer); }

    // Answers that the script prepares; `line` is the line of the script, for messages.
    /// Answers the next alert titled `alert` with `button`. Without `alert`, answers any alert that has no
    /// answer of its own.
    void addAnswer(int line, std::optional<std::string> alert, std::string button);
    /// Confirms the next open panel with `path`.
    void addChoice(int line, std::string path);

    void setAdministratorAllows(bool allows) { administratorAllows_ = allows; }

    /// The fault that ended the script during a question: an answer or a choice that does not fit. The action
    /// that asked was abandoned.
    [[nodiscard]] const std::optional<ScriptError>& fault() const { return fault_; }

    /// Returns an error for every answer and choice that nothing asked for, in the script's order.
    [[nodiscard]] std::vector<ScriptError> unused() const;

    /// Returns the element with that name in the loaded interface files, searched in the order of loading;
    /// null when there is none.
    [[nodiscard]] const platform::InterfaceNode* find(const std::string& name) const;
    /// Returns the first control or menu item that is wired to the operation, or null.
    [[nodiscard]] NSControl* findWiredTo(const std::string& operation) const;
    /// Returns the window, sheet or panel that contains an element; null for menu items.
    [[nodiscard]] NSWindow* windowOf(const platform::Element& element) const;

    [[nodiscard]] platform::AlertAnswer runAlert(const platform::Alert& alert) override;
    [[nodiscard]] std::optional<std::string> runOpenPanel(const platform::OpenPanelRequest& request) override;
    [[nodiscard]] std::optional<platform::AdministratorAnswer>
    runAdministratorDialog(const platform::AdministratorRequest& request) override;
    void beep() override;
    void openAddress(const std::string& address) override;
    [[nodiscard]] platform::TimerId startTimer(double interval, std::function<void()> fire) override;
    void stopTimer(platform::TimerId timer) override;
    void interfaceDidLoad(platform::Interface& interface) override;
    void windowVisibilityDidChange(NSWindow& window) override;
    void editWasRefused(const NSTextField& field, const std::string& errorText) override;
    void applicationDidTerminate() override;
    void toolWillRun(const std::string& tool, std::span<const std::string> arguments) override;
    void toolDidWrite(std::string_view output) override;

  private:
    struct Answer {
        int line;
        std::optional<std::string> alert;
        std::string button;
    };

    struct Choice {
        int line;
        std::string path;
    };

    [[nodiscard]] std::optional<Answer> takeAnswer(const std::string& title);
    /// Keeps the fault, ends the output, and throws it through the action that asked.
    [[noreturn]] void fail(ScriptError error);
    void noteWindows(const platform::InterfaceNode& node, NSWindow* window);

    [[nodiscard]] bool mayMigrate() const;

    std::shared_ptr<ScriptOutput> output_;
    std::function<review::Reviewer*()> findReviewer_;
    std::deque<Answer> answers_;
    std::deque<Choice> choices_;
    bool administratorAllows_ = true;
    std::optional<ScriptError> fault_;
    std::vector<platform::Interface*> interfaces_;
    std::map<const platform::Element*, NSWindow*> windows_;
    platform::TimerId lastTimer_ = 0;
};

} // namespace frontend
