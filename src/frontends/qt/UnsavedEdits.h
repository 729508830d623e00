#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/WindowActions.h"

#include <map>
#include <string>

/// Knows what a user has changed in the main window and not saved. A control alone knows that it was changed,
/// not that it was saved since.
class UnsavedEdits {
  public:
    /// `actions` is kept.
    UnsavedEdits(WindowActions& actions, RefreshQueue& queue);

    /// The operation has saved what stands on its page.
    void noteSaved(const std::string& operation);

    /// The titles of the pages with such changes; empty where there is none.
    [[nodiscard]] std::string pages() const;

  private:
    void forgetReplaced();

    WindowActions& actions_;
    std::map<const platform::Element*, std::string> saved_; ///< what controls held when they were saved last
    platform::Connection eventEnded_;
};
