#pragma once

#include "access/Doctor.h"

#include <QDialog>

#include <functional>

class QLabel;
class QPlainTextEdit;
class QTreeWidget;

namespace frontend {

/// Lists what is wrong with the computer, and shows where the selected fault is and the command that mends
/// it. It changes nothing.
class FindingsDialog : public QDialog {
  public:
    FindingsDialog(std::function<accesscheck::Examination()> examine, QWidget* parent);

  private:
    void fill();
    void showFinding();

    std::function<accesscheck::Examination()> examine_;
    accesscheck::Examination found_;
    QLabel* summary_ = nullptr;
    QTreeWidget* list_ = nullptr;
    QPlainTextEdit* details_ = nullptr;
};

} // namespace frontend
