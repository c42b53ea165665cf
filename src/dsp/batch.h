#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "kernels/kernels.h"

namespace orvandsp {

/// Collects jobs, one per channel, and hands them on in batches that fill the widest kernel.
/// @tparam Run  called with a span of jobs, at most kernels::maxLanes
template <typename Job, typename Run>
class Batch {
public:
    explicit Batch(Run newRun) : run(newRun) {}

    void Add(Job const& job) {
        AddNew([&](Job& added) { added = job; });
    }
    /// Adds a job that `make` writes where it stays: long ones take longer to copy than to make.
    template <typename Make>
    void AddNew(Make make) {
        make(jobs[count++]);
        if (count == jobs.size()) Finish();
    }

    /// Runs what is left. To be called behind the last Add.
    void Finish() {
        if (count > 0) run(std::span<Job const>(jobs.data(), count));
        count = 0;
    }

private:
    Run run;
    std::array<Job, kernels::maxLanes> jobs;  // undefined behind count
    std::size_t count = 0;
};

}  // namespace orvandsp
