#pragma once

namespace frontend {

/// Tells screen readers what Qt cannot know: that a sheet is a dialog, that a drawer and a row of check cells
/// are groups, and which line reports the last action. It works during its lifetime. Create it after the Qt
/// application object.
class Accessibility {
  public:
    Accessibility();
    ~Accessibility();
    Accessibility(const Accessibility&) = delete;
    Accessibility& operator=(const Accessibility&) = delete;
};

} // namespace frontend
