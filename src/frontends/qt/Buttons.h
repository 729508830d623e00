#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/WindowActions.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSMatrix.h"

#include <QAbstractButton>

#include <vector>

namespace frontend {

/// Makes the widget for the node's push button or check box. `node` and `actions` must outlive it.
[[nodiscard]] QAbstractButton* makeButton(const platform::InterfaceNode& node, WindowActions& actions,
                                          RefreshQueue& queue);

/// Returns the model of a button that makeButton made, or null for any other button.
[[nodiscard]] const NSButton* modelOfButton(const QAbstractButton& button);

/// True when a key of the menu "Page", or of a row, does the same as the button.
[[nodiscard]] bool hasKeys(const QWidget& button);

/// Returns the key that presses the button in its window, "\r" or "\033", or an empty string.
[[nodiscard]] QString keyEquivalentOf(const QAbstractButton& button);

/// The widget for a matrix of check cells.
class Matrix : public QWidget {
    Q_OBJECT

  public:
    Matrix(NSMatrix& matrix, RefreshQueue& queue);

  private:
    void load();

    NSMatrix& matrix_;
    std::vector<QAbstractButton*> cells_; ///< row by row
};

} // namespace frontend
