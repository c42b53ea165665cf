#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

/// Work on four channels at once.
///
/// A recursive filter waits for its own last output: on one channel the processor idles most of the time, and four
/// channels side by side take as long as one. Every lane does what the code for one channel does, operation by
/// operation, so that the bits of a channel don't depend on its company.
namespace orvandsp {

/// What every x86-64 and 64-bit ARM processor works on at once.
constexpr std::size_t numLanes = 4;

/// A sample, a coefficient or a state of each of four channels. Operators act on each lane by itself.
using Float4 [[gnu::vector_size(numLanes * sizeof(float))]] = float;

/// Four objects, one per lane.
template <typename T>
using PerLane = std::array<T, numLanes>;

inline Float4 Load(float const* samples) noexcept {
    Float4 result;
    std::memcpy(&result, samples, sizeof result);
    return result;
}

inline void Store(float* samples, Float4 value) noexcept {
    std::memcpy(samples, &value, sizeof value);
}

/// Takes one field of each of four records.
template <typename Record>
Float4 Gather(PerLane<Record> const& records, float Record::*field) noexcept {
    return Float4{records[0].*field, records[1].*field, records[2].*field, records[3].*field};
}

/// Rows to columns: lane i of row j changes places with lane j of row i.
inline void Transpose(PerLane<Float4>& rows) noexcept {
    const Float4 low01 = __builtin_shufflevector(rows[0], rows[1], 0, 4, 1, 5);
    const Float4 high01 = __builtin_shufflevector(rows[0], rows[1], 2, 6, 3, 7);
    const Float4 low23 = __builtin_shufflevector(rows[2], rows[3], 0, 4, 1, 5);
    const Float4 high23 = __builtin_shufflevector(rows[2], rows[3], 2, 6, 3, 7);
    rows[0] = __builtin_shufflevector(low01, low23, 0, 1, 4, 5);
    rows[1] = __builtin_shufflevector(low01, low23, 2, 3, 6, 7);
    rows[2] = __builtin_shufflevector(high01, high23, 0, 1, 4, 5);
    rows[3] = __builtin_shufflevector(high01, high23, 2, 3, 6, 7);
}

/// Reads four values of each of four arrays; row i holds value i of every lane.
inline PerLane<Float4> LoadRows(PerLane<float const*> const& arrays, std::size_t first) noexcept {
    PerLane<Float4> rows = {Load(arrays[0] + first), Load(arrays[1] + first), Load(arrays[2] + first),
                            Load(arrays[3] + first)};
    Transpose(rows);
    return rows;
}

/// Writes what LoadRows reads.
inline void StoreRows(PerLane<float*> const& arrays, std::size_t first, PerLane<Float4> rows) noexcept {
    Transpose(rows);
    for (std::size_t lane = 0; lane < numLanes; ++lane) Store(arrays[lane] + first, rows[lane]);
}

/// Runs four channels, sample by sample, through a filter that takes a Float4 and returns one.
/// @param outputs, inputs  an output may be the input of the same lane
/// @param filter           by value, so that its state stays in registers
/// @return the filter with its state behind the last sample
template <typename Filter>
Filter FilterFourChannels(PerLane<float*> const& outputs, PerLane<float const*> const& inputs, std::size_t numSamples,
                          Filter filter) {
    std::size_t k = 0;
    for (; k + numLanes <= numSamples; k += numLanes) {
        PerLane<Float4> frames = LoadRows(inputs, k);
        for (Float4& frame : frames) frame = filter(frame);
        StoreRows(outputs, k, frames);
    }
    for (; k < numSamples; ++k) {
        const Float4 frame = filter(Float4{inputs[0][k], inputs[1][k], inputs[2][k], inputs[3][k]});
        for (std::size_t lane = 0; lane < numLanes; ++lane) outputs[lane][k] = frame[lane];
    }
    return filter;
}

/// One filter behind the other.
template <typename First, typename Second>
struct InSeries {
    Float4 operator()(Float4 x) noexcept { return second(first(x)); }
    First first;
    Second second;
};

/// A filter that does nothing.
struct PassThrough {
    Float4 operator()(Float4 x) const noexcept { return x; }
};

/// Collects jobs, one per channel, and hands them on in fours.
///
/// The last four repeat their last job where jobs are missing. A run that computes a channel in several lanes computes
/// the same bits in each; one that works channel by channel must stop behind the jobs that are there.
/// @tparam Run  called with four jobs, and with the number of those that aren't repeated
template <typename Job, typename Run>
class InFours {
public:
    explicit InFours(Run newRun) : run(newRun) {}

    void Add(Job const& job) {
        jobs[count++] = job;
        if (count == numLanes) Finish();
    }

    /// Runs what is left. To be called behind the last Add.
    void Finish() {
        if (count == 0) return;
        std::fill(jobs.begin() + static_cast<std::ptrdiff_t>(count), jobs.end(), jobs[count - 1]);
        run(jobs, count);
        count = 0;
    }

private:
    Run run;
    PerLane<Job> jobs{};
    std::size_t count = 0;
};

}  // namespace orvandsp
