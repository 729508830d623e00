#pragma once

#include "access/Doctor.h"

#include <QDialog>

#include <functional>

class QLabel;
class QPlainTextEdit;
class QTreeWidget;

/// What is wrong with the computer: a list, and for the row that is selected the place and the command that
/// mends it. It changes nothing.
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
