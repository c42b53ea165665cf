#include "orvanverb/common/interrupt.h"

#include <limits.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstring>
#include <string_view>

namespace program {

namespace {

/// Where the handler finds the names: it may neither allocate nor lock.
struct Slot {
    enum State : int { free, filling, used };
    std::atomic<int> state = free;
    char path[PATH_MAX];
};
static_assert(std::atomic<int>::is_always_lock_free);
std::array<Slot, 8> slots;  // a rendering writes two files at a time

void Say(std::string_view text) {
    // Nothing is left to be done about a failure.
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
}

extern "C" void RemoveAndEnd(int number) {
    bool removed = false;
    for (Slot const& slot : slots)
        if (slot.state.load() == Slot::used) removed = unlink(slot.path) == 0 || removed;
    if (removed) {
        if (isatty(STDERR_FILENO) != 0) Say("\r\033[K");  // the line that tells how far the work is
        Say("orvanverb: interrupted, nothing written\n");
    }
    raise(number);  // by now its usual course, which it takes when this function returns
}

}  // namespace

void CatchSignals() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2}) {
        struct sigaction action {};
        if (sigaction(number, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
        action.sa_handler = RemoveAndEnd;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(number, &action, nullptr);
    }
    for (const int number : {SIGPIPE, SIGXFSZ}) signal(number, SIG_IGN);
}

RemovedOnSignal::RemovedOnSignal(std::string const& path) : slot(-1) {
    if (path.size() >= PATH_MAX) return;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        int expected = Slot::free;
        if (!slots[i].state.compare_exchange_strong(expected, Slot::filling)) continue;
        std::memcpy(slots[i].path, path.c_str(), path.size() + 1);
        slots[i].state = Slot::used;
        slot = static_cast<int>(i);
        return;
    }
}

RemovedOnSignal::~RemovedOnSignal() {
    if (slot >= 0) slots[static_cast<std::size_t>(slot)].state = Slot::free;
}

}  // namespace program
