#pragma once

#include <QEvent>
#include <QObject>
#include <QTimer>
#include <QWidget>

#include <cstdlib>

/// Ends the program, at once and without tidying up, when a window has been painted with all that is in it.
/// Watches the whole application; begin() says from when on a paint counts.
class EndAtFirstPaint : public QObject {
  public:
    void begin() { counts_ = true; }

    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (counts_ && event->type() == QEvent::Paint && widget != nullptr && widget->isWindow()) {
            // The next turn of the event loop: what is in the window is painted in this one.
            QTimer::singleShot(0, [] { std::_Exit(EXIT_SUCCESS); });
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    bool counts_ = false;
};
