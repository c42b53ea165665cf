#include "orvanverb-live/audio/stop_signal.h"

#include <pthread.h>
#include <unistd.h>

#include <csignal>

namespace live {

namespace {

sigset_t StopSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, number);
    return signals;
}

}  // namespace

StopSignal::StopSignal() {
    const sigset_t signals = StopSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);
    listener = std::thread([this, signals] {
        for (int number = 0; sigwait(&signals, &number) == 0;) {
            const std::lock_guard lock(mutex);
            if (leaving) return;
            if (requested) _exit(128 + number);
            requested = true;
            changed.notify_all();
        }
    });
}

StopSignal::~StopSignal() {
    {
        const std::lock_guard lock(mutex);
        leaving = true;
    }
    pthread_kill(listener.native_handle(), SIGTERM);
    listener.join();
}

bool StopSignal::IsRequested() const {
    const std::lock_guard lock(mutex);
    return requested;
}

void StopSignal::Request() {
    const std::lock_guard lock(mutex);
    requested = true;
    changed.notify_all();
}

bool StopSignal::WaitFor(std::chrono::nanoseconds time) const {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, time, [this] { return requested; });
}

}  // namespace live
