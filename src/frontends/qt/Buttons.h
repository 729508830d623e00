#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSMatrix.h"

#include <QAbstractButton>

#include <vector>

/// The widget of a push button or check box. `withImage`: it shows its model's image, and stands without a
/// frame.
[[nodiscard]] QAbstractButton* makeButton(NSButton& button, bool withImage, RefreshQueue& queue);

/// The key that presses a button of this window, or an empty text: "\r" or "\033".
[[nodiscard]] QString keyEquivalentOf(const QAbstractButton& button);

/// The widget of a matrix of check cells.
class Matrix : public QWidget {
    Q_OBJECT

  public:
    Matrix(NSMatrix& matrix, RefreshQueue& queue);

  private:
    void load();

    NSMatrix& matrix_;
    std::vector<QAbstractButton*> cells_; ///< row by row
};
