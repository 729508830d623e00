#pragma once

#include "platform/appkit/Presenter.h"

#include <QElapsedTimer>
#include <QTimer>

#include <functional>
#include <map>
#include <memory>

namespace frontend {

/// The application's timers on Qt's event loop. All have the interval 0, which means a thousand ticks per
/// second. They are fired together once per frame, so that the processor can rest in between.
class FrameTimers {
  public:
    [[nodiscard]] platform::TimerId start(std::function<void()> fire);
    void stop(platform::TimerId timer);

  private:
    struct Timer {
        QTimer clock;
        QElapsedTimer sinceTick;
        std::function<void()> fire;
    };

    void tick(platform::TimerId id);

    std::map<platform::TimerId, std::shared_ptr<Timer>> timers_;
    platform::TimerId last_ = 0;
};

} // namespace frontend
