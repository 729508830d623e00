#pragma once

#include "access/Answer.h"

#include <QDialog>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QTreeWidget;

/// Answers "why can't Ann write?": for one share who may do what with it, or for one user what they may do
/// with each share. The reason, and what would help, stand below the row that is selected. It changes
/// nothing.
class AccessDialog : public QDialog {
  public:
    /// What it asks. `begin` is called once before the questions of one list: what has been read for them is
    /// then remembered up to the next list.
    struct Questions {
        std::vector<std::string> shares;
        std::vector<std::string> users;
        std::function<void()> begin;
        std::function<accesscheck::Answer(const std::string& share, const std::optional<std::string>& user)>
            ask;
    };

    /// Shows the share, or, without one, the user; without either the first share.
    AccessDialog(Questions questions, const std::optional<std::string>& share,
                 const std::optional<std::string>& user, QWidget* parent);

  private:
    void fill();
    void showReason();
    [[nodiscard]] bool isAboutShare() const;

    Questions questions_;
    std::vector<accesscheck::Answer> answers_; ///< in the list's order
    QComboBox* subject_ = nullptr;             ///< the shares, then the guest and the users
    QTreeWidget* list_ = nullptr;
    QLabel* reason_ = nullptr;
};
