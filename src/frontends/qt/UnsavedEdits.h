#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/WindowActions.h"

#include <map>
#include <string>

namespace frontend {

/// Knows what a user has changed in the main window and not saved. A control itself only knows that it was
/// changed, not that it was saved since.
class UnsavedEdits {
  public:
    /// `actions` must outlive this object.
    UnsavedEdits(WindowActions& actions, RefreshQueue& queue);

    /// Says that the operation has saved its page.
    void noteSaved(const std::string& operation);

    /// Returns the titles of the pages with unsaved changes; empty when there are none.
    [[nodiscard]] std::string pages() const;

  private:
    void forgetReplaced();

    WindowActions& actions_;
    std::map<const platform::Element*, std::string> saved_; ///< contents when they were last saved
    platform::Connection eventEnded_;
};

} // namespace frontend
