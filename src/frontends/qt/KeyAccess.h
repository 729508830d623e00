#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <vector>

class QKeySequence;
class QMenu;
class QMenuBar;

/// Keeps all of the application's windows and menus usable with keys alone: Tab goes through a window as it
/// is read, and titles have letters (Mnemonics.h). A window's letters are settled anew when what it shows has
/// changed; those of its menu bar come first, then those of its page, then those of its drawer and of its
/// foot, so that what comes and goes there moves no others. Where a letter stands for something on the page
/// and for something beside it, the one counts that is nearer to the cursor. Made once the Qt application
/// object is there.
class KeyAccess : public QObject {
  public:
    KeyAccess();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    /// Does what the letter stands for that several have; false when nothing has it.
    static bool useNearest(const QKeySequence& key);
    void settleSoon(QWidget* window);
    void settleWaiting();

    std::vector<QPointer<QWidget>> waiting_; ///< windows and menus
};
