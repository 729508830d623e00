#pragma once

#include <QEvent>
#include <QObject>
#include <QTimer>
#include <QWidget>

#include <cstdlib>

/// Ends the program immediately, without cleaning up, when a window has been painted with all its contents.
/// Watches the whole application; paints count from begin() on.
class EndAtFirstPaint : public QObject {
  public:
    void begin() { counts_ = true; }

    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (counts_ && event->type() == QEvent::Paint && widget != nullptr && widget->isWindow()) {
            // Wait for the next turn of the event loop: the window's contents are painted in this one.
            QTimer::singleShot(0, [] { std::_Exit(EXIT_SUCCESS); });
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    bool counts_ = false;
};
