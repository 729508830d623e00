#pragma once

#include "frontends/script/ScriptOutput.h"
#include "frontends/script/ScriptPresenter.h"
#include "review/History.h"
#include "review/Reviewer.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class NSButton;
class NSControl;
class NSTextField;
class NSWindow;

namespace frontend {

/// Carries out a script: reads its commands line by line and finishes each before it reads the next. A
/// command does to a control only what a user could do, through the control's own operations; a command that
/// a user could not carry out ends the script.
class ScriptRunner {
  public:
    /// `name` names the script in messages; `input` and `errors` must outlive the runner. `launch` loads the
    /// interface and starts the application; its failure ends the script. `presenter` must be the current
    /// host's presenter.
    ScriptRunner(std::string name, std::istream& input, std::shared_ptr<ScriptOutput> output,
                 std::shared_ptr<ScriptPresenter> presenter, std::function<platform::Status()> launch,
                 std::ostream& errors);

    /// Sets the function that returns the reviewer. The presenter and the commands that plan, review and read
    /// again call it from `start` on; it may return null, and then these commands fail.
    void useReviewer(const std::function<review::Reviewer*()>& reviewer) {
        presenter_->useReviewer(reviewer);
        findReviewer_ = reviewer;
    }

    /// Sets the history for the commands that print it and take changes back; it must outlive the runner.
    void useHistory(const review::History& history) { history_ = &history; }

    /// Runs the whole script and then ends the application. Returns the exit status: 0, or 1 after a fault,
    /// which has then been written to `errors` as "NAME:LINE: what is wrong".
    [[nodiscard]] int run();

  private:
    using Words = std::vector<std::string>; ///< the words after a command's name

    struct Command {
        std::string_view name;
        std::string_view usage; ///< the words after the name, for messages
        std::size_t least;      ///< the fewest words after the name
        std::size_t most;
        bool preparesOnly; ///< only prepares answers, so may come before `start`
        void (ScriptRunner::*run)(const Words& words);
    };

    [[nodiscard]] static const Command* findCommand(const std::string& name);
    void carryOut(const std::string& line);
    void checkTime(const Command& command) const;
    void finish();

    void start(const Words& words);
    void answer(const Words& words);
    void choose(const Words& words);
    void administrator(const Words& words);
    void type(const Words& words);
    void append(const Words& words);
    void select(const Words& words);
    void page(const Words& words);
    void rows(const Words& words);
    void check(const Words& words);
    void press(const Words& words);
    void send(const Words& words);
    void show(const Words& words);
    void items(const Words& words);
    void close(const Words& words);
    void quit(const Words& words);

    // Planning (ScriptRunner+Review.cpp).
    void plan(const Words& words);
    void review(const Words& words);
    void reread(const Words& words);
    void history(const Words& words);
    void undo(const Words& words);
    [[nodiscard]] review::Reviewer& reviewer() const;
    [[nodiscard]] const review::History& pastChanges() const;

    /// Ends the script with a fault at the current line.
    [[noreturn]] void fail(const std::string& text) const;
    /// Runs a user's action as one event of the application; a fault in it ends the script.
    void perform(const std::function<void()>& event);

    [[nodiscard]] const platform::InterfaceNode& node(const std::string& name) const;
    /// Returns the control with that name. Ends the script when a user could not use it now, or when it is
    /// not of the kind that `what` names.
    template <class Kind>
    [[nodiscard]] Kind& usable(const std::string& name, const char* what) const;
    void requireUsable(const platform::Element& element, const std::string& name) const;
    [[nodiscard]] NSTextField& editableField(const std::string& name) const;
    [[nodiscard]] NSButton& pushButton(const std::string& name) const;
    /// Returns the first control wired to the operation. Ends the script when a user could not use it now.
    [[nodiscard]] NSControl& usableSender(const std::string& operation) const;
    [[nodiscard]] int number(const std::string& word) const;
    /// Returns the state for the word "on" or "off".
    [[nodiscard]] int state(const std::string& word) const;
    void checkCell(const Words& words);

    std::string name_;
    std::istream& input_;
    std::shared_ptr<ScriptOutput> output_;
    std::shared_ptr<ScriptPresenter> presenter_;
    std::function<platform::Status()> launch_;
    std::function<review::Reviewer*()> findReviewer_;
    const review::History* history_ = nullptr;
    std::ostream& errors_;
    int line_ = 0;
    bool started_ = false;
};

} // namespace frontend
