#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace live {

/// Tells when the program is to end: Ctrl-C, a request from the system, or by Request. A signal
/// that comes later ends it at once.
class StopSignal {
public:
    /// Before any other thread is made: they inherit that these signals don't interrupt them.
    StopSignal();
    ~StopSignal();

    bool IsRequested() const;
    void Request();
    /// @return whether it was requested meanwhile
    bool WaitFor(std::chrono::nanoseconds time) const;

private:
    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    bool requested = false;
    bool leaving = false;
    std::chrono::steady_clock::time_point since;  // of the first signal
    std::thread listener;
};

}  // namespace live
