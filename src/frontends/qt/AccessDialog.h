#pragma once

#include "access/Answer.h"

#include <QDialog>

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QTreeWidget;

namespace frontend {

/// Answers questions such as "why can't Ann write?". For one share it lists who may do what with it; for one
/// user, what they may do with each share. Below the list it shows the reason for the selected row, and what
/// would help. It changes nothing.
class AccessDialog : public QDialog {
  public:
    /// Where the dialog gets its answers. It calls `begin` once before the questions for a list, so that what
    /// was read for one question can be reused until the next list.
    struct Questions {
        std::vector<std::string> shares;
        std::vector<std::string> users;
        std::function<void()> begin;
        std::function<accesscheck::Answer(const std::string& share, const std::optional<std::string>& user)>
            ask;
    };

    /// Shows `share`; without one, shows `user`; without either, shows the first share.
    AccessDialog(Questions questions, const std::optional<std::string>& share,
                 const std::optional<std::string>& user, QWidget* parent);

  private:
    void fill();
    void showReason();
    [[nodiscard]] bool isAboutShare() const;

    Questions questions_;
    std::vector<accesscheck::Answer> answers_; ///< in the order of the list
    QComboBox* subject_ = nullptr;             ///< the shares, then the guest and the users
    QTreeWidget* list_ = nullptr;
    QLabel* reason_ = nullptr;
};

} // namespace frontend
