#pragma once

#include "review/TextDifference.h"

#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>

#include <vector>

namespace frontend {

// Parts that the dialogs for reading have in common. The caller owns each part, and puts it into a layout.

/// Makes a list of plain rows. A screen reader calls it `spoken`. The column `widest` takes the remaining
/// width, if that is enough to read it; else the list scrolls.
[[nodiscard]] QTreeWidget* makeList(const char* name, const QString& spoken, const QStringList& titles,
                                    int widest);

/// Makes a read-only text for the details of a list's row.
[[nodiscard]] QPlainTextEdit* makeDetails(const char* name);

/// Makes the row of buttons with "Close", which is the default and ends the dialog.
[[nodiscard]] QDialogButtonBox* makeButtons(QDialog& dialog);

/// Adds another button to that row.
QPushButton* addButton(QDialogButtonBox& buttons, const QString& title);

/// Returns the lines that a file loses and gains, with "- " or "+ " before each.
[[nodiscard]] QString changedLines(const std::vector<review::LineChange>& changes);

} // namespace frontend
