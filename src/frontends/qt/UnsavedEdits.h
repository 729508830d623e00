#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/WindowActions.h"

#include <functional>
#include <map>
#include <set>
#include <string>

namespace frontend {

/// Knows what a user has changed in the main window and not saved. A control itself only knows that it was
/// changed; an edit ends here: when it was saved or dropped, when the program has put something else in its
/// place, and when the editor shows another row.
class UnsavedEdits {
  public:
    /// `actions` must outlive this object.
    UnsavedEdits(WindowActions& actions, RefreshQueue& queue);

    /// OfSMBConf is both the share editor and the SMB server's settings.
    enum class Pages { All, OfSMBConf, ShareEditor, SMBSettings };

    /// Says that the operation has saved its page.
    void noteSaved(const std::string& operation);

    /// Says that those pages now show what was read, even where a user has entered the same.
    void forget(Pages which);

    /// Returns a sentence with the titles of those pages that have unsaved changes; empty when none has.
    [[nodiscard]] std::string loss(Pages which) const;

    /// Asks whether the unsaved changes on those pages may be lost. Returns true at once when there are none.
    [[nodiscard]] bool mayBeLost(Pages which) const;

    /// Returns a function that puts the unsaved changes on those pages, as they are now, back into the
    /// controls when these have been filled again. They are then unsaved as before.
    [[nodiscard]] std::function<void()> keep(Pages which);

  private:
    void forgetReplaced();
    /// Ends the edits on each page with a control that sends the operation.
    void forgetWhereSent(const std::string& operation);
    /// Whether the page's editor shows another row than at the end of the last event.
    [[nodiscard]] bool showsOtherRow(const platform::InterfaceNode& page);

    WindowActions& actions_;
    std::map<const platform::InterfaceNode*, std::string> shownRows_; ///< the name of each editor's row
    std::set<const platform::InterfaceNode*> putBack_; ///< pages whose edits were put back in this event
    platform::Connection eventEnded_;
    platform::Connection used_;
};

} // namespace frontend
