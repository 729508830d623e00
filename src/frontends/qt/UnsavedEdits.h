#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/WindowActions.h"

#include <functional>
#include <map>
#include <string>

namespace frontend {

/// Knows what a user has changed in the main window and not saved. A control itself only knows that it was
/// changed, not that it was saved since.
class UnsavedEdits {
  public:
    /// `actions` must outlive this object.
    UnsavedEdits(WindowActions& actions, RefreshQueue& queue);

    /// OfSMBConf is both the share editor and the SMB server's settings.
    enum class Pages { All, OfSMBConf, ShareEditor, SMBSettings };

    /// Says that the operation has saved its page.
    void noteSaved(const std::string& operation);

    /// Returns a sentence with the titles of those pages that have unsaved changes; empty when none has.
    [[nodiscard]] std::string loss(Pages which) const;

    /// Asks whether the unsaved changes on those pages may be lost. Returns true at once when there are none.
    [[nodiscard]] bool mayBeLost(Pages which) const;

    /// Returns a function that puts the unsaved changes on those pages, as they are now, back into the
    /// controls when these have been filled again. They are then unsaved as before.
    [[nodiscard]] std::function<void()> keep(Pages which) const;

  private:
    void forgetReplaced();
    [[nodiscard]] bool isSaved(const platform::Element* control, const std::string& edit) const;
    [[nodiscard]] bool isUnsaved(const platform::InterfaceNode& page, Pages which) const;

    WindowActions& actions_;
    std::map<const platform::Element*, std::string> saved_; ///< contents when they were last saved
    platform::Connection eventEnded_;
};

} // namespace frontend
