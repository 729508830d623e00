#pragma once

#include "model/NormalShare.h"
#include "model/SMBConf.h"
#include "platform/appkit/Interface.h"
#include "platform/appkit/Presenter.h"
#include "review/Plan.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

class BRController;
class NSControl;

namespace review {

/// Says beforehand what an action would do, and stands before every action that writes: what our own tools
/// are bound to refuse never begins, and what holds a warning can be asked about first. One for the main
/// interface of a host, whose action gate it is for as long as it lives. Main thread only.
class Reviewer {
  public:
    /// `main` is the current host's main interface and must outlive this.
    explicit Reviewer(const platform::Interface& main);
    ~Reviewer();
    Reviewer(const Reviewer&) = delete;
    Reviewer& operator=(const Reviewer&) = delete;

    /// Whether the operation changes anything: those that do not are never planned by the gate.
    [[nodiscard]] static bool isWriting(const std::string& operation);

    /// What pressing the control would do: a check box changes its state first. Nothing is changed, shown or
    /// asked.
    [[nodiscard]] Plan planPress(const NSControl& control) const;
    /// What sending the control's action would do, with the control as it is.
    [[nodiscard]] Plan planAction(const NSControl& control) const;
    /// The same without looking for warnings.
    [[nodiscard]] Plan planSteps(const NSControl& control) const;
    /// The same for the first control that is wired to the operation; its failure says so when there is none.
    [[nodiscard]] Plan planSend(const std::string& operation) const;
    /// Whether the alert is the question at the start whether old records are to be rewritten.
    [[nodiscard]] static bool isMigrationQuestion(const platform::Alert& alert);
    /// What answering "Yes" to it would do.
    [[nodiscard]] Plan planMigration() const;

    /// What keeps the directory from being read, as the last attempt found; empty where nothing does.
    [[nodiscard]] static std::string directoryProblem();
    /// Who keeps others from using it now: "PROGRAM (process ID)"; empty where nobody does that can be told.
    [[nodiscard]] static std::string directoryHolder();

    /// Whether the directory has that record ("/users/root"), as far as can be told without waiting for
    /// anybody. What the window says of the directory stays.
    [[nodiscard]] static bool hasRecord(const std::string& path);

    enum class ServerChange { Start, StartAtBoot };
    /// Starts the computer's own SMB server, now or whenever the computer starts; false when that failed.
    static bool changeServer(ServerChange change);

    /// Reads smb.conf again: model, rows and fields.
    void reread() const;
    /// Reads all that the window shows again, as after a change that came from elsewhere than its controls.
    void rereadEverything() const;
    /// Whether smb.conf on disk is another than what was read or written last.
    [[nodiscard]] bool hasSMBConfChangedOnDisk() const;
    /// Whether the model of smb.conf holds a change that did not reach the disk.
    [[nodiscard]] bool hasUnwrittenSMBConf() const;
    /// Where the SMB server reads smb.conf otherwise than the window shows it: sentences that name "[NAME]"
    /// and the line, by the name of the section.
    [[nodiscard]] std::multimap<std::string, std::string> otherReadings() const;

    // What was read last, and shows in the window.
    /// Null before start-up.
    [[nodiscard]] const SMBConf* smbConf() const;
    /// Whether it has a section of exactly that name, so that the server offers a share called so.
    [[nodiscard]] bool hasSection(const std::string& name) const;
    [[nodiscard]] const std::vector<NormalShare>& shares() const;

    // The gate. Each handler is called with the plan of an action that is about to be performed.
    using Handler = std::function<void(const Plan& plan)>;
    using Question = std::function<bool(const Plan& plan)>;

    /// Shows why a blocked action cannot be done. At first the alert "Not Possible" does.
    void setBlockedHandler(Handler handler) { showBlocked_ = std::move(handler); }

    /// Whether an action that makes or changes something is refused while the directory cannot be read: it
    /// was waited for, and every run would wait again and fail. At first it is not: the tools report it.
    void setRefusesWithoutDirectory(bool refuses) { refusesWithoutDirectory_ = refuses; }

    /// Asked before an action that writes and is not blocked, warnings or none, and also where there is no
    /// plan (Plan::failure); false: it is not performed. At first nothing is asked.
    void setQuestion(Question question) { question_ = std::move(question); }

    /// The question of a script: an alert titled "Review" with the warnings of the plan, a line each, and the
    /// buttons "Cancel", which is the default, and "Go On". True at once for a plan without a warning.
    [[nodiscard]] static bool askAboutWarnings(const Plan& plan);

  private:
    [[nodiscard]] BRController& controller() const;
    [[nodiscard]] bool mayPerform(const NSControl& sender) const;
    /// Where settings are saved line by line, the file holds more than the model when somebody else has
    /// changed it, too: then it is read again.
    void takeUpWrittenFile() const;

    const platform::Interface& main_;
    Handler showBlocked_;
    Question question_;
    bool refusesWithoutDirectory_ = false;
    mutable std::string textBefore_; ///< smb.conf as the model knew it before the action
};

} // namespace review
