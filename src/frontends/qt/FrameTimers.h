#pragma once

#include "platform/appkit/Presenter.h"

#include <QElapsedTimer>
#include <QTimer>

#include <functional>
#include <map>
#include <memory>

/// The application's timers on Qt's event loop. Intervals are in seconds. An interval of 0 means a thousand
/// ticks per second, which are fired together once per frame, so that the processor can rest in between.
class FrameTimers {
  public:
    [[nodiscard]] platform::TimerId start(double interval, std::function<void()> fire);
    void stop(platform::TimerId timer);

  private:
    struct Timer {
        QTimer clock;
        QElapsedTimer sinceTick;
        std::function<void()> fire;
        bool catchesUp = false; ///< interval 0
    };

    void tick(platform::TimerId id);

    std::map<platform::TimerId, std::shared_ptr<Timer>> timers_;
    platform::TimerId last_ = 0;
};
