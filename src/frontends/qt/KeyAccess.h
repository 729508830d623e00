#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <vector>

class QKeySequence;
class QMenu;
class QMenuBar;

namespace frontend {

/// Keeps all of the application's windows and menus usable with the keyboard alone: Tab follows the reading
/// order, and titles have mnemonics (Mnemonics.h). When a window's contents change, titles without a mnemonic
/// get one, and the others keep theirs, so that a key that was learned does not come to mean something else:
/// first the menu bar's, then the page's, then the drawer's and the foot's, so that what comes and
/// goes there does not change the others. If a letter is used on the page and beside it, the use nearer to
/// the focus counts. Create it after the Qt application object.
class KeyAccess : public QObject {
  public:
    KeyAccess();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    /// Uses the nearest widget with a letter that several widgets have. Returns false when none has it.
    static bool useNearest(const QKeySequence& key);
    void settleSoon(QWidget* window);
    void settleWaiting();

    std::vector<QPointer<QWidget>> waiting_; ///< windows and menus
};

} // namespace frontend
