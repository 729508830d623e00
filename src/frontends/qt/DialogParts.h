#pragma once

#include "review/TextDifference.h"

#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>

#include <string>
#include <vector>

// What the dialogs that only show something have in common. Each part is the caller's, who puts it into a
// layout.

/// A list of plain rows, which a screen reader calls `spoken`. `widest` is the column that takes the room
/// that is left.
[[nodiscard]] QTreeWidget* makeList(const char* name, const QString& spoken, const QStringList& titles,
                                    int widest);

/// A text to be read beside a list.
[[nodiscard]] QPlainTextEdit* makeDetails(const char* name);

/// The row of buttons, with "Close", which is the default and ends the dialog.
[[nodiscard]] QDialogButtonBox* makeButtons(QDialog& dialog);

/// Another button of that row.
QPushButton* addButton(QDialogButtonBox& buttons, const QString& title);

/// A run as a person would type it, as a line.
[[nodiscard]] QString runLine(const std::string& tool, const std::vector<std::string>& arguments);

/// The lines that a file loses and gets, each behind its sign.
[[nodiscard]] QString changedLines(const std::vector<review::LineChange>& changes);
