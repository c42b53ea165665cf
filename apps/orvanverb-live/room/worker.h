#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace live {

/// Does what takes long, one thing after the other, on a thread of its own that gives way to everything else.
class Worker {
public:
    Worker();
    /// Ends behind the job that runs; those that wait are left out.
    ~Worker();

    /// @param job  mustn't throw
    void Do(std::function<void()> job);

    /// Whether a job runs or waits.
    bool IsBusy() const;

private:
    void Run();

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> jobs;  // the first one runs
    bool ends = false;
    std::thread thread;
};

}  // namespace live
