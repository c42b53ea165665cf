#include "orvanverb-live/room/worker.h"

#include <sys/resource.h>

#include <utility>

namespace live {

Worker::Worker() : thread([this] { Run(); }) {}

Worker::~Worker() {
    {
        const std::lock_guard lock(mutex);
        ends = true;
    }
    changed.notify_one();
    thread.join();
}

void Worker::Do(std::function<void()> job) {
    {
        const std::lock_guard lock(mutex);
        jobs.push_back(std::move(job));
    }
    changed.notify_one();
}

bool Worker::IsBusy() const {
    const std::lock_guard lock(mutex);
    return !jobs.empty();
}

void Worker::Run() {
    constexpr int least = 19;
    setpriority(PRIO_PROCESS, 0, least);  // on Linux of this thread, and of those that a job makes
    std::unique_lock lock(mutex);
    while (true) {
        changed.wait(lock, [this] { return ends || !jobs.empty(); });
        if (ends) return;
        std::function<void()>& job = jobs.front();  // others may come behind it meanwhile
        lock.unlock();
        job();
        lock.lock();
        jobs.pop_front();
    }
}

}  // namespace live
