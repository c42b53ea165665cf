#include "orvanverb/design/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace program {

void ForEachNumber(std::size_t count, std::function<void(std::size_t)> const& function) {
    std::atomic<std::size_t> next = 0;
    std::exception_ptr thrown;
    std::mutex throwing;
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < std::max(1u, std::thread::hardware_concurrency()); ++i)
        threads.emplace_back([&] {
            try {
                for (std::size_t number = next++; number < count; number = next++) function(number);
            } catch (...) {
                next = count;
                const std::lock_guard lock(throwing);
                thrown = std::current_exception();
            }
        });
    for (std::thread& thread : threads) thread.join();
    if (thrown) std::rethrow_exception(thrown);
}

}  // namespace program
