#include "frontends/qt/Binding.h"

#include "platform/appkit/NSApplication.h"

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>

namespace frontend {

RefreshQueue::~RefreshQueue() {
    for (Binding* binding : waiting_) {
        if (binding != nullptr) {
            binding->queue_ = nullptr;
        }
    }
}

void RefreshQueue::add(Binding* binding) {
    waiting_.push_back(binding);
    if (!scheduled_) {
        scheduled_ = true;
        QTimer::singleShot(0, this, [this] { flush(); });
    }
}

void RefreshQueue::remove(Binding* binding) {
    std::replace(waiting_.begin(), waiting_.end(), binding, static_cast<Binding*>(nullptr));
}

void RefreshQueue::flush() {
    scheduled_ = false;
    if (isHeld_) {
        return; // flush() is called again at the end of the current event
    }
    // A refresh may mark other bindings. They are appended and refreshed in this pass, which would invalidate
    // iterators.
    std::size_t next = 0;
    while (next < waiting_.size()) {
        if (Binding* binding = std::exchange(waiting_[next], nullptr)) {
            binding->waiting_ = false;
            binding->refresh_();
        }
        ++next;
    }
    waiting_.clear();
}

void RefreshQueue::runUserEvent(const std::function<void()>& event) {
    if (running_ == 0) {
        ++userEvent_;
    }
    ++running_;
    NSApp().dispatch(event);
    --running_;
    flush();
    if (running_ == 0) {
        eventEnded.emit();
    }
}

Binding::Binding(QObject* owner, RefreshQueue& queue, platform::Signal<>& signal,
                 std::function<void()> refresh)
    : QObject(owner), queue_(&queue), refresh_(std::move(refresh)) {
    connect(&queue, &QObject::destroyed, this, [this] { queue_ = nullptr; });
    connection_ = signal.connect([this] { markDirty(); });
    refresh_();
}

Binding::~Binding() {
    if (waiting_ && queue_ != nullptr) {
        queue_->remove(this);
    }
}

void Binding::markDirty() {
    if (!waiting_ && queue_ != nullptr) {
        waiting_ = true;
        queue_->add(this);
    }
}

QString breakable(const QString& text) {
    constexpr int longest = 24; // characters that fit into every dialog
    constexpr QChar mayBreakHere(u'\u200B');
    QString broken;
    int length = 0;
    for (const QChar each : text) {
        length = each.isSpace() ? 0 : length + 1;
        if (length > longest && !each.isLowSurrogate() && !each.isMark()) {
            broken += mayBreakHere;
            length = 1;
        }
        broken += each;
    }
    return broken;
}

void afterFirstPaint(QObject* owner, std::function<void()> work) {
    // The time counts from when the event loop runs again: at the start the tables are filled before that.
    constexpr auto whenPainted = std::chrono::milliseconds(50);
    QTimer::singleShot(0, owner, [owner, whenPainted, work = std::move(work)] {
        QTimer::singleShot(whenPainted, owner, work);
    });
}

} // namespace frontend
