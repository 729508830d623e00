#pragma once

#include "model/NormalShare.h"
#include "model/SMBConf.h"
#include "platform/appkit/Interface.h"
#include "platform/appkit/Presenter.h"
#include "review/Plan.h"
#include "review/Undo.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

class BRController;
class NSControl;

namespace review {

/// Says beforehand what an action would do, and checks every action that writes: an action that our own tools
/// are bound to refuse is not started, and the user can be asked about warnings first. There is one for the
/// main interface of a host; it is the host's action gate as long as it lives. Main thread only.
class Reviewer {
  public:
    /// `main` is the current host's main interface and must outlive this.
    explicit Reviewer(const platform::Interface& main);
    ~Reviewer();
    Reviewer(const Reviewer&) = delete;
    Reviewer& operator=(const Reviewer&) = delete;

    /// What pressing the control would do; a check box changes its state first. Nothing is changed, shown or
    /// asked.
    [[nodiscard]] Plan planPress(const NSControl& control) const;
    /// What sending the control's action would do, with the control in its current state.
    [[nodiscard]] Plan planAction(const NSControl& control) const;
    /// The same as planAction, without looking for warnings.
    [[nodiscard]] Plan planSteps(const NSControl& control) const;
    /// The same as planAction for the first control that is wired to the operation. If there is none, the
    /// plan's failure says so.
    [[nodiscard]] Plan planSend(const std::string& operation) const;
    /// Whether the alert is the question, asked at start-up, whether to rewrite old records.
    [[nodiscard]] static bool isMigrationQuestion(const platform::Alert& alert);
    /// What answering "Yes" to that question would do.
    [[nodiscard]] Plan planMigration() const;
    /// Whether nothing blocks that. Otherwise shows what does: "Yes" would delete records that our tools are
    /// bound to refuse to make again.
    [[nodiscard]] bool mayMigrate() const;

    /// What carrying out the undo would do. It is not checked for warnings.
    [[nodiscard]] Plan planUndo(const UndoPlan& undo) const;

    /// Reads smb.conf again and updates the model, rows and fields.
    void reread() const;
    /// Reads the AFP server's settings again and shows them.
    void rereadAFPSettings() const;
    /// Reads again everything that the window shows, as after a change that was not made with its controls.
    void rereadEverything() const;
    /// Whether smb.conf on disk differs from what was last read or written.
    [[nodiscard]] bool hasSMBConfChangedOnDisk() const;
    /// Whether the model of smb.conf has a change that is not on disk.
    [[nodiscard]] bool hasUnwrittenSMBConf() const;
    /// Where the SMB server reads smb.conf differently from what the window shows: by the name of the
    /// section, sentences that name "[NAME]" and the line.
    [[nodiscard]] std::multimap<std::string, std::string> otherReadings() const;

    // What was last read and is shown in the window.
    /// Null before start-up.
    [[nodiscard]] const SMBConf* smbConf() const;
    /// Whether smb.conf has a section of exactly that name, so that the server offers a share with that name.
    [[nodiscard]] bool hasSection(const std::string& name) const;
    [[nodiscard]] const std::vector<NormalShare>& shares() const;

    // The gate. Each handler is called with the plan of an action that is about to be performed.
    using Handler = std::function<void(const Plan& plan)>;
    using Question = std::function<bool(const Plan& plan)>;

    /// Sets what shows why a blocked action cannot be done; initially the alert "Not Possible".
    void setBlockedHandler(Handler handler) { showBlocked_ = std::move(handler); }

    /// Whether a person is served. Then plans have all warnings; an action is planned and asked about again
    /// when somebody else has written a settings file meanwhile; and one that makes or changes something is
    /// refused while the directory cannot be read, because planning has already waited for it, and every run
    /// would wait again and fail. Initially false, for scripts: their language has a fixed list of warnings,
    /// and the tools report what they cannot do.
    void setServesPerson(bool serves) { servesPerson_ = serves; }

    /// Sets a question that is asked before every action that writes and is not blocked, with or without
    /// warnings, and also when there is no plan (Plan::failure). If it returns false, the action is not
    /// performed. Initially nothing is asked.
    void setQuestion(Question question) { question_ = std::move(question); }

    /// The question for a script: an alert titled "Review" with the plan's warnings, one per line, and the
    /// buttons "Cancel", the default, and "Go On". Returns true at once for a plan without warnings.
    [[nodiscard]] static bool askAboutWarnings(const Plan& plan);

  private:
    /// The plan, with the warnings for whoever is served.
    [[nodiscard]] Plan withItsWarnings(Plan plan) const;
    [[nodiscard]] BRController& controller() const;
    [[nodiscard]] bool mayPerform(const NSControl& sender) const;
    /// Whether the settings files are still what they were when the plan was made. Somebody may have written
    /// them while the user was asked, or while this waited for its turn. True for scripts.
    [[nodiscard]] bool isStillTrue(const Plan& plan) const;
    /// If settings are saved line by line and somebody else has changed the file too, it now holds more than
    /// the model, so it is read again.
    void takeUpWrittenFile() const;

    const platform::Interface& main_;
    Handler showBlocked_;
    Question question_;
    bool servesPerson_ = false;
    mutable std::string textBefore_; ///< smb.conf as the model knew it before the action
};

} // namespace review
