#pragma once

#include "frontends/qt/RunProgress.h"

#include <QApplication>

#include <memory>

namespace frontend {

/// Lives while the user is asked something: shows the normal cursor, and keeps the user's time out of the
/// action's progress.
class Question {
  public:
    /// Keeps a reference to `progress`, which may be null or become null meanwhile.
    explicit Question(const std::unique_ptr<RunProgress>& progress)
        : progress_(progress), isWaiting_(QApplication::overrideCursor() != nullptr) {
        if (isWaiting_) {
            QApplication::setOverrideCursor(Qt::ArrowCursor);
        }
    }

    ~Question() {
        if (isWaiting_) {
            QApplication::restoreOverrideCursor();
        }
        if (progress_ != nullptr) {
            progress_->wasInterrupted();
        }
    }

    Question(const Question&) = delete;
    Question& operator=(const Question&) = delete;

  private:
    const std::unique_ptr<RunProgress>& progress_;
    bool isWaiting_;
};

} // namespace frontend
