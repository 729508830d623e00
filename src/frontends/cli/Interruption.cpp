#include "frontends/cli/Interruption.h"

#include <csignal>
#include <cstddef>

namespace frontend {

namespace {

volatile std::sig_atomic_t received = 0; ///< the signal that came last; 0 for none
bool isHeldBack = false;

extern "C" void noteSignal(int signal) {
    received = signal;
}

} // namespace

bool Interruption::hasCome() {
    return received != 0;
}

void Interruption::begin() {
    if (isHeldBack) {
        return;
    }
    isHeldBack = true;
    isActive_ = true;
    for (std::size_t index = 0; index < signals.size(); ++index) {
        ::sigaction(signals[index], nullptr, &before_[index]);
        if (before_[index].sa_handler != SIG_IGN) {
            struct sigaction action {};

            action.sa_handler = &noteSignal;
            action.sa_flags = SA_RESTART; // only waiting for the person, in poll, is interrupted
            ::sigaction(signals[index], &action, nullptr);
        }
    }
}

Interruption::~Interruption() {
    if (!isActive_) {
        return;
    }
    for (std::size_t index = 0; index < signals.size(); ++index) {
        ::sigaction(signals[index], &before_[index], nullptr);
    }
    isHeldBack = false;
    if (received != 0) {
        ::raise(received);
    }
}

} // namespace frontend
