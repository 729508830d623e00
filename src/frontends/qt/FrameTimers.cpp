#include "frontends/qt/FrameTimers.h"

#include "platform/appkit/NSApplication.h"

#include <algorithm>

namespace frontend {

namespace {

constexpr int frameTime = 16;           // milliseconds
constexpr qint64 mostTicksAtOnce = 100; // after a pause of the process, not all missed ticks are made up for

} // namespace

platform::TimerId FrameTimers::start(std::function<void()> fire) {
    const platform::TimerId id = ++last_;
    auto timer = std::make_shared<Timer>();
    timer->fire = std::move(fire);
    timer->sinceTick.start();
    timers_.emplace(id, timer);
    QObject::connect(&timer->clock, &QTimer::timeout, &timer->clock, [this, id] { tick(id); });
    timer->clock.start(frameTime);
    return id;
}

void FrameTimers::stop(platform::TimerId timer) {
    if (const auto found = timers_.find(timer); found != timers_.end()) {
        found->second->clock.stop();
        timers_.erase(found);
    }
}

void FrameTimers::tick(platform::TimerId id) {
    const auto found = timers_.find(id);
    if (found == timers_.end()) {
        return;
    }
    const std::shared_ptr<Timer> timer =
        found->second; // keeps it alive during its tick, even when it stops itself
    const qint64 ticks = std::min(timer->sinceTick.restart(), mostTicksAtOnce);
    for (qint64 done = 0; done < ticks && timers_.contains(id); ++done) {
        NSApp().dispatch(timer->fire);
    }
}

} // namespace frontend
