#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace platform {

/// Keeps one slot of a Signal connected for as long as it lives. Move-only; outliving the signal is harmless.
class Connection {
  public:
    Connection() = default;

    explicit Connection(std::function<void()> disconnect) : disconnect_(std::move(disconnect)) {}

    Connection(Connection&& other) noexcept : disconnect_(std::exchange(other.disconnect_, nullptr)) {}

    Connection& operator=(Connection&& other) noexcept {
        if (this != &other) {
            reset();
            disconnect_ = std::exchange(other.disconnect_, nullptr);
        }
        return *this;
    }

    ~Connection() { reset(); }

    void reset() {
        if (auto disconnect = std::exchange(disconnect_, nullptr)) {
            disconnect();
        }
    }

  private:
    std::function<void()> disconnect_;
};

/// Calls its connected slots, in the order in which they were connected, when something happens. Slots may
/// connect and disconnect while the signal is being emitted: a disconnected slot is no longer called, a new
/// one is called from the next time on.
template <class... Arguments>
class Signal {
  public:
    using Slot = std::function<void(Arguments...)>;

    Signal() = default;
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    [[nodiscard]] Connection connect(Slot slot) {
        auto entry = std::make_shared<Slot>(std::move(slot));
        slots_->push_back(entry);
        return Connection([slots = std::weak_ptr<Slots>(slots_), entry] {
            *entry = nullptr;
            if (auto alive = slots.lock()) {
                std::erase(*alive, entry);
            }
        });
    }

    void emit(Arguments... arguments) const {
        if (slots_->empty()) {
            return;
        }
        const Slots calling = *slots_;
        for (const auto& entry : calling) {
            if (*entry) {
                const Slot slot = *entry; // a slot that disconnects itself stays alive until it returns
                slot(arguments...);
            }
        }
    }

  private:
    using Slots = std::vector<std::shared_ptr<Slot>>;
    std::shared_ptr<Slots> slots_ = std::make_shared<Slots>();
};

} // namespace platform
