#pragma once

#include "frontends/qt/WindowActions.h"

#include <map>
#include <string>

/// Knows what a user has changed in the main window and not saved. A control alone knows that it was changed,
/// not that it was saved since.
class UnsavedEdits {
  public:
    /// `actions` is kept.
    explicit UnsavedEdits(WindowActions& actions);

    /// The titles of the pages with such changes; empty where there is none.
    [[nodiscard]] std::string pages() const;

  private:
    void noteSaved(const std::string& operation);

    WindowActions& actions_;
    std::map<const platform::Element*, std::string> saved_; ///< what controls held when they were saved last
    platform::Connection used_;
};
