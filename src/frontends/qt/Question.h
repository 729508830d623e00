#pragma once

#include "frontends/qt/RunProgress.h"

#include <QApplication>

#include <memory>

/// The user is asked something: the cursor is theirs, and the time that they take is not the work's.
class Question {
  public:
    /// `progress` is kept; it may be null, or become so meanwhile.
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
