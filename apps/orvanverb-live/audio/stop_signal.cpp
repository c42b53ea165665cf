#include "orvanverb-live/audio/stop_signal.h"

#include <pthread.h>
#include <unistd.h>

#include <csignal>

#include "orvanverb/common/interrupt.h"
#include "orvanverb/common/messages.h"

namespace live {

namespace {

// A terminal that closes, or a machine that goes down, sends several kinds.
constexpr std::chrono::seconds sameWish{1};

sigset_t StopSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, number);
    return signals;
}

/// The usual course of a signal, which says what becomes of files.
[[noreturn]] void EndAtOnce(int number, sigset_t const& signals) {
    program::Say("orvanverb-live: ended at once, by a second signal");
    program::CatchSignals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    raise(number);
    _exit(128 + number);  // whoever started the program has it ignore the signal
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
            const auto now = std::chrono::steady_clock::now();
            if (!requested) since = now;
            if (now - since > sameWish) EndAtOnce(number, signals);
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
    // It waits for this signal, which ends nothing. NOLINTNEXTLINE(bugprone-bad-signal-to-kill-thread)
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
