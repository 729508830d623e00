#pragma once

#include "platform/appkit/Interface.h"
#include "platform/appkit/SilentPresenter.h"
#include "review/History.h"
#include "review/RunOutcome.h"

#include <optional>
#include <string>
#include <vector>

namespace frontend {

/// The front-end of a command. It suppresses the questions of the start-up. From begin() on, a question is
/// answered by --yes or at the terminal, or else it ends the command. An alert that asks nothing is the
/// reason why the command failed.
class CommandPresenter : public platform::SilentPresenter {
  public:
    explicit CommandPresenter(bool saysYes) : saysYes_(saysYes) {}

    /// Says that the application has started: everything from here on belongs to the command.
    void begin() { hasBegun_ = true; }

    [[nodiscard]] platform::AlertAnswer runAlert(const platform::Alert& alert) override;
    [[nodiscard]] std::optional<std::string> runOpenPanel(const platform::OpenPanelRequest& request) override;
    [[nodiscard]] std::optional<platform::AdministratorAnswer>
    runAdministratorDialog(const platform::AdministratorRequest& request) override;

    void beep() override;

    void interfaceDidLoad(platform::Interface& interface) override;

    void editWasRefused(const NSTextField& field, const std::string& errorText) override;
    void toolWillRun(const std::string& tool, std::span<const std::string> arguments) override;
    void toolDidWrite(std::string_view output) override;

    /// Once the command is interrupted, the rest of the current action is not carried out.
    void stopWith(const review::History& history) { history_ = &history; }

    /// Confirms the next open panel with this path.
    void choose(std::string path) { choice_ = std::move(path); }

    /// The main interface. Must not be called before it is loaded.
    [[nodiscard]] const platform::Interface& interface() const { return *interface_; }

    // What has happened since begin().
    /// The number of tool runs that could change something.
    [[nodiscard]] int runs() const { return runs_; }

    [[nodiscard]] const std::vector<std::string>& faults() const { return faults_; }

    [[nodiscard]] const std::optional<std::string>& unanswered() const { return unanswered_; }

    [[nodiscard]] bool wasRefused() const { return wasRefused_; }

    /// True when the person at the terminal said no to a question.
    [[nodiscard]] bool wasDeclined() const { return wasDeclined_; }

    [[nodiscard]] bool hasBeeped() const { return hasBeeped_; }

  private:
    [[nodiscard]] bool isConfirmed(const platform::Alert& alert);

    bool saysYes_;
    bool hasBegun_ = false;
    bool hasBeeped_ = false;
    bool wasRefused_ = false;
    bool wasDeclined_ = false;
    bool isTelling_ = false; ///< the present tool run changes nothing
    review::RunOutcome outcome_;
    std::optional<std::string> choice_;
    std::optional<std::string> unanswered_;
    int runs_ = 0;
    std::vector<std::string> faults_;
    const platform::Interface* interface_ = nullptr;
    const review::History* history_ = nullptr;
};

} // namespace frontend
