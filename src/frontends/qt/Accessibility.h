#pragma once

/// Tells screen readers what Qt cannot know: that a sheet is a dialog, a drawer and a row of check cells are
/// groups, and which line says what has just been done. For as long as it lives; made once the Qt application
/// object is there.
class Accessibility {
  public:
    Accessibility();
    ~Accessibility();
    Accessibility(const Accessibility&) = delete;
    Accessibility& operator=(const Accessibility&) = delete;
};
